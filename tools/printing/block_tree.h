#ifndef MDF_TOOLS_PRINTING_BLOCK_TREE_H_
#define MDF_TOOLS_PRINTING_BLOCK_TREE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "reader/blocks/finding.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// How much of a file's tree is wanted.
struct TreeOptions {
  std::uint64_t from = header_block_offset;
  std::size_t most_depth = SIZE_MAX;  ///< levels below the first block
  std::uint64_t list_limit = 100;     ///< entries of a list or blocks of a chain before the rest
                                      ///< is left out
  bool with_texts = true;             ///< text and metadata blocks
};

/// A link of a file seen as a tree, or its first block.
struct TreeEntry {
  enum Kind {
    block,     ///< a block that is reached the first time; what is below it follows
    shared,    ///< one that was reached before
    cycle,     ///< one above this one, or earlier in the same chain
    nothing,   ///< there is no block
    left_out,  ///< the rest of a list or chain that is too long
  };
  Kind kind = block;
  std::size_t depth = 0;
  std::uint64_t from = 0;  ///< the block with the link; 0 for the first block
  std::string role;        ///< the link's name
  std::uint64_t offset = 0;
  RawBlock raw;               ///< unless there is no block; the first of those left out
  std::uint64_t count = 0;    ///< how many are left out
  bool was_left_out = false;  ///< a shared one that was left out before
};

/// Returns whether to go on.
using TreeVisitor = std::function<bool(const TreeEntry&)>;

/// Goes through the blocks that a block leads to, as a tree: each block is expanded where it is
/// reached first. The blocks of a chain ("cn_cn_next") are on one level. Links that lead nowhere
/// are reported and visited. Time and memory are proportional to the file, whatever it contains.
void walkTree(InputFile& file, const TreeOptions& options, const FindingSink& report,
              const TreeVisitor& visit);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_BLOCK_TREE_H_
