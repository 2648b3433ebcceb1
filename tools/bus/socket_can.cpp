#include "socket_can.h"

#include <algorithm>

namespace mdf_tools {

namespace {

/// The classes of error frames, and what their bytes 2 and 3 say, are those of linux/can/error.h.
void setError(const BusFrame& frame, SocketCanFrame& socket) {
  constexpr std::uint32_t protocol = 0x08;
  constexpr std::uint32_t no_acknowledgement = 0x20;
  constexpr char overload = 0x20;
  constexpr char checksum_place = 0x08;
  constexpr char kinds[] = {0, 0x01, 0x02, 0x04, 0, 0};  // nothing, bit, form, stuffing
  const bool is_unacknowledged = frame.error == BusFrame::Error::acknowledgement;
  socket.id = SocketCanFrame::error | (is_unacknowledged ? no_acknowledgement : protocol);
  socket.length = 8;
  socket.data.assign(8, '\0');
  socket.data[2] =
      frame.kind == BusFrame::Kind::overload ? overload : kinds[static_cast<int>(frame.error)];
  socket.data[3] = frame.error == BusFrame::Error::checksum ? checksum_place : '\0';
}

}  // namespace

std::optional<SocketCanFrame> socketCanOf(const BusFrame& frame) {
  const std::size_t most = frame.is_fd ? 64 : 8;
  if (frame.isLin() || frame.data.size() > most) {
    return std::nullopt;
  }
  SocketCanFrame socket;
  if (!frame.hasId()) {
    setError(frame, socket);
    return socket;
  }
  socket.id = frame.id | (frame.is_extended ? SocketCanFrame::extended : 0U);
  if (frame.kind == BusFrame::Kind::remote) {
    socket.id |= SocketCanFrame::remote;
    socket.length = static_cast<std::uint8_t>(std::min<std::uint64_t>(frame.length, 8));
    return socket;
  }
  socket.is_fd = frame.is_fd;
  socket.fd_flags =
      static_cast<std::uint8_t>((frame.has_bit_rate_switch ? SocketCanFrame::bit_rate_switch : 0) |
                                (frame.has_error_state ? SocketCanFrame::error_state : 0));
  socket.length = static_cast<std::uint8_t>(frame.data.size());
  socket.data = frame.data;
  return socket;
}

}  // namespace mdf_tools
