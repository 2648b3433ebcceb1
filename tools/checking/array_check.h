#ifndef MDF_TOOLS_CHECKING_ARRAY_CHECK_H_
#define MDF_TOOLS_CHECKING_ARRAY_CHECK_H_

#include <cstdint>
#include <optional>

#include "reader/blocks/block_fields.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Checks that a channel array whose shape is right has the links and numbers that its dimensions,
/// flags and storage require. Returns how many elements it has, where UINT64_MAX stands for any
/// larger number too; nothing when the sizes of its dimensions are missing, or blocks overlap too
/// much.
std::optional<std::uint64_t> checkArray(Subject& subject, const BlockFields& block,
                                        std::uint32_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_ARRAY_CHECK_H_
