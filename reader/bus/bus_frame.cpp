#include "bus_frame.h"

#include <fnmatch.h>

#include <algorithm>
#include <array>

#include "../bytes/number_texts.h"

namespace mdf_reader {

std::string_view kindName(const BusFrame& frame) {
  constexpr std::array<std::string_view, 5> names = {"data", "remote", "error", "overload", "lin"};
  return frame.kind == BusFrame::Kind::lin_error ? frame.name
                                                 : names[static_cast<std::size_t>(frame.kind)];
}

std::string_view directionName(const BusFrame& frame) {
  constexpr std::array<std::string_view, 3> names = {"", "Rx", "Tx"};
  return names[static_cast<std::size_t>(frame.direction)];
}

std::string_view errorName(const BusFrame& frame) {
  constexpr std::array<std::string_view, 6> names = {"", "bit", "form", "stuffing", "crc", "ack"};
  return names[static_cast<std::size_t>(frame.error)];
}

std::string idText(const BusFrame& frame) {
  std::string text;
  if (frame.hasId()) {
    addHexDigits(frame.id, frame.is_extended ? 8 : frame.isLin() ? 2 : 3, text);
  }
  return text;
}

bool isBus(const std::string& pattern, std::string_view bus) {
  const std::string name(bus);
  const std::string number = name.substr(std::min(name.find_first_of("0123456789"), name.size()));
  return pattern == number || fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

}  // namespace mdf_reader
