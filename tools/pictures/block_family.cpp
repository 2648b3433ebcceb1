#include "block_family.h"

#include <array>

namespace mdf_tools {

namespace {

struct Family {
  BlockFamily family;
  std::string_view types;  ///< letters with blanks between
  std::string_view colour;
};

constexpr std::array<Family, family_count> families = {{
    {BlockFamily::file, "ID HD FH AT EV CH", "#a9bcc6"},
    {BlockFamily::group, "DG CG SI SR", "#8dbde0"},
    {BlockFamily::channel, "CN CA", "#9bd68b"},
    {BlockFamily::conversion, "CC", "#fdbb6e"},
    {BlockFamily::text, "TX MD", "#f7ec84"},
    {BlockFamily::data, "DT SD RD DZ DL HL LD DV DI RV RI GD", "#c3afe0"},
    {BlockFamily::other, "", "#f5b5cf"},
}};

bool holds(std::string_view types, std::string_view letters) {
  for (std::size_t at = 0; at < types.size(); at += 3) {
    if (types.substr(at, 2) == letters) {
      return true;
    }
  }
  return false;
}

}  // namespace

BlockFamily familyOf(std::string_view letters) {
  for (const Family& each : families) {
    if (holds(each.types, letters)) {
      return each.family;
    }
  }
  return BlockFamily::other;
}

std::string_view colourOf(BlockFamily family) {
  return families.at(static_cast<std::size_t>(family)).colour;
}

}  // namespace mdf_tools
