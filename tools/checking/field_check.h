#ifndef MDF_TOOLS_CHECKING_FIELD_CHECK_H_
#define MDF_TOOLS_CHECKING_FIELD_CHECK_H_

#include <cstdint>

#include "reader/blocks/block_fields.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Checks what the fields of one block, whose shape is right, say against each other, its links and
/// its length.
void checkFields(const Subject& subject, const BlockFields& block, std::uint32_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_FIELD_CHECK_H_
