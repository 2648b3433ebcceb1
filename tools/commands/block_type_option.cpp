#include "block_type_option.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "reader/blocks/block_type.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Whether there is such a type; the identification is shown like a block.
bool isKnownType(std::string_view letters) {
  return letters == "ID" || (!letters.empty() && typeOf(letters).letters == letters);
}

std::string upperCase(std::string letters) {
  std::transform(letters.begin(), letters.end(), letters.begin(), [](char each) {
    return each >= 'a' && each <= 'z' ? static_cast<char>(each - 'a' + 'A') : each;
  });
  return letters;
}

}  // namespace

std::string expectBlockType(std::string& letters) {
  letters = upperCase(letters);
  return isKnownType(letters) ? std::string()
                              : "there is no block type \"" + letters +
                                    "\"; types have two letters, such as CN or CC";
}

}  // namespace mdf_tools
