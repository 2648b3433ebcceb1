#ifndef MDF_TOOLS_CHANGING_BLOCK_MENDING_H_
#define MDF_TOOLS_CHANGING_BLOCK_MENDING_H_

#include <cstdint>
#include <vector>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// A number of 8 bytes that is written over the one in a file.
struct NumberChange {
  std::uint64_t at;
  std::uint64_t number;
};

/// Lengths and link counts of blocks that cannot be right, where the other one of the two and the
/// block's type tell what they were; link counts of data and texts, which have no links.
std::vector<NumberChange> mendedHeaders(InputFile& file, const FindingSink& report);

/// Links that lead to a block of a type that they must not lead to, or to one that is cut off. They
/// become nil, or lead to the next block in the list of one that is cut off.
std::vector<NumberChange> mendedLinks(InputFile& file, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_BLOCK_MENDING_H_
