#ifndef MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_
#define MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_

#include <cstddef>
#include <string_view>

namespace mdf_tools {

/// Types of blocks that are drawn in the same colour.
enum class BlockFamily { file, group, channel, conversion, text, data, other };
inline constexpr std::size_t family_count = 7;

/// The family of a type by its letters, including types of later versions and the identification
/// ("ID").
BlockFamily familyOf(std::string_view letters);

/// A colour as "#80b1d3".
std::string_view colourOf(BlockFamily family);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_BLOCK_FAMILY_H_
