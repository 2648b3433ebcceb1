#ifndef MDF_READER_BLOCKS_RAW_BLOCK_H_
#define MDF_READER_BLOCKS_RAW_BLOCK_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "block_type.h"

namespace mdf_reader {

class InputFile;

/// What the common header says about a block of any type, known or not. Nothing of it is trusted:
/// linksThere() says how many links can be read.
struct RawBlock {
  static constexpr std::size_t header_size = 24;
  static constexpr std::size_t link_size = 8;

  std::uint64_t offset = 0;
  std::array<char, 4> id{};  ///< as stored: "##" and the two type letters
  std::uint64_t length = 0;
  std::uint64_t link_count = 0;  ///< as stored, which may be less than linkCount()

  bool hasId() const { return id[0] == '#' && id[1] == '#'; }
  std::string_view letters() const { return {id.data() + 2, 2}; }

  /// Unknown where the identifier does not begin with "##".
  const BlockType& type() const { return typeOf(hasId() ? letters() : ""); }

  /// The identifier for a message or a line of output.
  std::string name() const;

  /// The links that the block has by its header. They may not fit in its length or in the file.
  std::uint64_t linkCount() const;

  /// Whether the length holds the header and the links.
  bool holdsItsLinks() const;
};

/// Reads a header; nothing when the file ends within it.
std::optional<RawBlock> readRawBlock(InputFile& file, std::uint64_t offset);

/// Whether the file holds as many bytes as the block says it has.
bool isWhole(const InputFile& file, const RawBlock& block);

/// How many links can be read: as far as the block's length and the file reach.
std::uint64_t linksThere(const InputFile& file, const RawBlock& block);

/// The link at an index; 0 when it is not there.
std::uint64_t linkAt(InputFile& file, const RawBlock& block, std::uint64_t index);

using LinkVisitor = std::function<void(std::uint64_t index, std::int64_t link)>;

/// Visits the links that are there, in order. They are read piece by piece; the visitor may read
/// elsewhere in the file.
void forEachLink(InputFile& file, const RawBlock& block, const LinkVisitor& visit);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_RAW_BLOCK_H_
