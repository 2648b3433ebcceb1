#ifndef MDF_TOOLS_CHECKING_BLOCK_CHECK_H_
#define MDF_TOOLS_CHECKING_BLOCK_CHECK_H_

#include <cstdint>
#include <string_view>

#include "reader/blocks/block_fields.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Checks a block's place, length, number of links and counts. Returns whether its fields and what
/// follows them are all there.
bool checkShape(const Subject& subject, const BlockFields& block, std::uint32_t index);

/// Checks that a block has so many links after those of its type, or room for so many 8-byte
/// numbers after its fields; see countText().
void checkMoreLinks(const Subject& subject, const BlockFields& block, std::uint32_t index,
                    std::uint64_t promised);
void checkNumbers(const Subject& subject, const BlockFields& block, std::uint32_t index,
                  std::string_view fields, std::uint64_t promised);

/// Checks where each of a block's links leads.
void checkLinks(const Subject& subject, const BlockFields& block, std::uint32_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_BLOCK_CHECK_H_
