#include "matlab_names.h"

#include <algorithm>
#include <array>

namespace mdf_tools {

namespace {

constexpr std::size_t longest = 63;

constexpr std::array<std::string_view, 20> words{
    "break",      "case",   "catch",    "classdef", "continue", "else",      "elseif",
    "end",        "for",    "function", "global",   "if",       "otherwise", "parfor",
    "persistent", "return", "spmd",     "switch",   "try",      "while"};

bool isLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isAllowed(char character) {
  return isLetter(character) || (character >= '0' && character <= '9') || character == '_';
}

std::string validName(std::string_view name) {
  std::string valid;
  bool is_run = false;  // of characters that are not allowed
  for (const char character : name) {
    if (isAllowed(character)) {
      valid += is_run ? "_" : "";
      valid += character;
    }
    is_run = !isAllowed(character);
  }
  if (valid.empty() || !isLetter(valid.front()) ||
      std::find(words.begin(), words.end(), valid) != words.end()) {
    valid.insert(0, 1, 'x');
  }
  return valid.substr(0, longest);
}

}  // namespace

std::string MatlabNames::add(std::string_view name) {
  const std::string valid = validName(name);
  std::string given = valid;
  for (std::size_t number = 2; !given_.insert(given).second; ++number) {
    const std::string end = '_' + std::to_string(number);
    given = valid.substr(0, longest - end.size()) + end;
  }
  return given;
}

}  // namespace mdf_tools
