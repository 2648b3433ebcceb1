#include "block_type_option.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <string_view>

#include "reader/blocks/block_layout.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

bool isKnownType(std::string_view letters) {
  // The identification, and block types of versions that came later.
  constexpr std::string_view others = "ID LD DV DI RV RI GD";
  return findLayout(letters) != nullptr ||
         (letters.size() == 2 && letters.find(' ') == letters.npos &&
          others.find(letters) != others.npos);
}

std::string upperCase(std::string letters) {
  std::transform(letters.begin(), letters.end(), letters.begin(), [](char each) {
    return each >= 'a' && each <= 'z' ? static_cast<char>(each - 'a' + 'A') : each;
  });
  return letters;
}

}  // namespace

CLI::Validator isBlockType() {
  return CLI::Validator(
      [](std::string& letters) {
        letters = upperCase(letters);
        return isKnownType(letters) ? std::string()
                                    : "there is no block type \"" + letters +
                                          "\"; types have two letters, such as CN or CC";
      },
      "");
}

}  // namespace mdf_tools
