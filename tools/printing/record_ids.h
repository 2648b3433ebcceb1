#ifndef MDF_TOOLS_PRINTING_RECORD_IDS_H_
#define MDF_TOOLS_PRINTING_RECORD_IDS_H_

#include <cstdint>
#include <optional>

#include "reader/blocks/block_fields.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// The size of a data group's record ids, without reading the data: the length of the data and the
/// counts of its records tell which of the sizes that the code may stand for it is. Nothing where
/// these leave it open.
std::optional<std::uint64_t> recordIdBytes(InputFile& file, const BlockFields& data_group);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_RECORD_IDS_H_
