#include "socket_can.h"

#include <algorithm>

namespace mdf_tools {

namespace {

/// The classes of error frames, and what their bytes 2 and 3 say, are those of linux/can/error.h.
constexpr std::uint32_t protocol = 0x08;
constexpr std::uint32_t no_acknowledgement = 0x20;
constexpr char overload = 0x20;
constexpr char checksum_place = 0x08;
constexpr char kinds[] = {0, 0x01, 0x02, 0x04, 0, 0};  // nothing, bit, form, stuffing

void setError(const BusFrame& frame, SocketCanFrame& socket) {
  if (frame.error_class) {
    socket.id = SocketCanFrame::error | *frame.error_class;
    socket.data = frame.data.substr(0, 8);
    socket.length = static_cast<std::uint8_t>(socket.data.size());
    return;
  }
  const bool is_unacknowledged = frame.error == BusFrame::Error::acknowledgement;
  socket.id = SocketCanFrame::error | (is_unacknowledged ? no_acknowledgement : protocol);
  socket.length = 8;
  socket.data.assign(8, '\0');
  socket.data[2] =
      frame.kind == BusFrame::Kind::overload ? overload : kinds[static_cast<int>(frame.error)];
  socket.data[3] = frame.error == BusFrame::Error::checksum ? checksum_place : '\0';
}

BusFrame::Error errorOf(const SocketCanFrame& socket) {
  using Error = BusFrame::Error;
  if ((socket.id & no_acknowledgement) != 0) {
    return Error::acknowledgement;
  }
  if ((socket.id & protocol) == 0 || socket.data.size() < 4) {
    return Error::unknown;
  }
  if (socket.data[3] == checksum_place) {
    return Error::checksum;
  }
  for (const Error error : {Error::bit, Error::form, Error::stuffing}) {
    if (socket.data[2] == kinds[static_cast<int>(error)]) {
      return error;
    }
  }
  return Error::unknown;
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

std::uint8_t lengthCodeOf(std::size_t length) {
  std::uint8_t code = 0;
  while (code < 15 && dataLengthOf(code, true) < length) {
    ++code;
  }
  return code;
}

void setFrame(const SocketCanFrame& socket, BusFrame& frame) {
  constexpr std::uint32_t most_extended = 0x1FFFFFFF;
  const bool is_error = (socket.id & SocketCanFrame::error) != 0;
  frame.kind = is_error                                    ? BusFrame::Kind::error
               : (socket.id & SocketCanFrame::remote) != 0 ? BusFrame::Kind::remote
                                                           : BusFrame::Kind::data;
  frame.error = is_error ? errorOf(socket) : BusFrame::Error::unknown;
  frame.error_class = is_error ? std::optional(socket.id & most_extended) : std::nullopt;
  frame.id = is_error ? 0 : socket.id & most_extended;
  frame.is_extended = !is_error && (socket.id & SocketCanFrame::extended) != 0;
  frame.is_fd = socket.is_fd;
  frame.has_bit_rate_switch = (socket.fd_flags & SocketCanFrame::bit_rate_switch) != 0;
  frame.has_error_state = (socket.fd_flags & SocketCanFrame::error_state) != 0;
  frame.length = socket.length;
  frame.data = socket.data;
}

}  // namespace mdf_tools
