#include "block_family.h"

#include <array>
#include <cstddef>

namespace mdf_tools {

BlockFamily familyOf(std::string_view letters) {
  return letters == "ID" ? BlockFamily::file : typeOf(letters).family;
}

std::string_view colourOf(BlockFamily family) {
  static constexpr std::array<std::string_view, family_count> colours = {
      "#a9bcc6", "#8dbde0", "#9bd68b", "#fdbb6e", "#f7ec84", "#c3afe0", "#f5b5cf"};
  return colours.at(static_cast<std::size_t>(family));
}

}  // namespace mdf_tools
