#include "link_kinds.h"

namespace mdf_reader {

namespace {

constexpr unsigned code(char first, char second) {
  return static_cast<unsigned char>(first) * 256U + static_cast<unsigned char>(second);
}

/// All links from an index on.
constexpr std::uint32_t from(unsigned index) { return UINT32_MAX << index; }

}  // namespace

LinkKinds linkKinds(std::string_view letters) {
  switch (code(letters[0], letters[1])) {
    case code('H', 'D'):
    case code('H', 'L'):
    case code('S', 'I'):
    case code('C', 'C'):
      return {false, 0, false};
    case code('F', 'H'):
    case code('A', 'T'):
    case code('D', 'G'):
    case code('D', 'L'):
    case code('L', 'D'):
    case code('S', 'R'):
      return {true, 0, false};
    case code('C', 'H'):  // the elements are groups and channels that have their place
      return {true, from(4), true};
    case code('E', 'V'):  // parent and range are events of the list, scopes are channels
      return {true, 2U | 4U | from(5), true};
    case code('C', 'G'):  // the group of the master
      return {true, from(6), true};
    case code('C', 'N'):  // the data may be a channel group of the list
      return {true, 32U | from(8), true};
    case code('C', 'A'):
      return {false, from(1), true};
    default:
      return {false, from(0), true};
  }
}

}  // namespace mdf_reader
