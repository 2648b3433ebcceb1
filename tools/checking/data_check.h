#ifndef MDF_TOOLS_CHECKING_DATA_CHECK_H_
#define MDF_TOOLS_CHECKING_DATA_CHECK_H_

#include <cstdint>
#include <optional>

#include "reader/blocks/block_fields.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// How many bytes of data a block states that it holds, unzipped. Nothing for an offset without a
/// block, and for types that hold no data or are unknown.
std::optional<std::uint64_t> dataBytesOf(const Subject& subject, std::uint64_t offset);

/// Check the contents of blocks whose shape is right.
void checkAttachment(Subject& subject, const BlockFields& block, std::uint32_t index);
void checkZippedData(Subject& subject, const BlockFields& block, std::uint32_t index);
void checkDataList(const Subject& subject, const BlockFields& block, std::uint32_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_DATA_CHECK_H_
