#include "shown_number.h"

#include <array>
#include <cstdio>

namespace mdf_tools {

std::string shownNumber(double number) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.6g", number);
  return text.data();
}

}  // namespace mdf_tools
