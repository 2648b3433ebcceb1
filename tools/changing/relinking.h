#ifndef MDF_TOOLS_CHANGING_RELINKING_H_
#define MDF_TOOLS_CHANGING_RELINKING_H_

#include <cstdint>
#include <string>
#include <vector>

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Blocks of a damaged file that no link leads to, found by their headers between the others, and
/// the links that are to lead to them again.
struct Relinking {
  struct Block {
    std::uint64_t offset;
    std::string letters;
    std::uint64_t bytes;
  };
  struct PutBack {
    Block block;
    Block parent;
    std::string role;     ///< of the link: "dg_dg_next"
    std::uint64_t place;  ///< of the link in the file
  };
  std::vector<PutBack> put_back;
  std::vector<Block> lost;  ///< all whose place nobody can tell
};

/// Finds such blocks and the places where they belong, as far as there is one place for each:
/// - Data groups, attachments, events and entries of the history have one list each, and go to its
///   end, one after another. A data group must have channel groups that are lost with it.
/// - A block in a data list lies between its neighbours; a list goes on where its last block ends.
/// - Other blocks of groups, channels, hierarchies and data go to the only link of the kind that
///   leads nowhere or, where no such link is broken, to the only one that is empty.
/// Texts, sources and conversions stay lost: nobody can tell which one a link has led to.
///
/// Time is in proportion to the file, but for sorting.
Relinking relinkingOf(InputFile& file);

/// "put back ##DG at 400 (0x190) of 64 bytes: dg_dg_next of ##DG at 200 (0xc8) leads to it".
std::string sentenceOf(const Relinking::PutBack& put_back);
std::string sentenceOf(const Relinking::Block& lost);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RELINKING_H_
