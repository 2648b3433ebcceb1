#include "bus_frame.h"

#include <array>

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

}  // namespace mdf_reader
