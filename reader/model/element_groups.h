#ifndef MDF_READER_MODEL_ELEMENT_GROUPS_H_
#define MDF_READER_MODEL_ELEMENT_GROUPS_H_

#include "../blocks/finding.h"
#include "description.h"

namespace mdf_reader {

class InputFile;

/// Gives the elements of arrays that have records of their own a channel group each. The first
/// element keeps the existing group; the others come after it, or after its data group where they
/// have data of their own. What prevents this is reported, and such a group stays as it is, without
/// elements.
std::vector<DataGroup> splitElements(InputFile& file, std::vector<DataGroup> data_groups,
                                     const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_ELEMENT_GROUPS_H_
