#ifndef MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_
#define MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_

#include <string_view>

#include "reader/blocks/block_type.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The family of a type by its letters; the identification ("ID") has one, too.
BlockFamily familyOf(std::string_view letters);

/// A colour as "#80b1d3".
std::string_view colourOf(BlockFamily family);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_
