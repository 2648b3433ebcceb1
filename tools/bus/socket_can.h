#ifndef MDF_TOOLS_BUS_SOCKET_CAN_H_
#define MDF_TOOLS_BUS_SOCKET_CAN_H_

#include <cstdint>
#include <optional>
#include <string>

#include "reader/bus/bus_frame.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A frame as Linux gives it to programs.
struct SocketCanFrame {
  enum Flag : std::uint32_t { extended = 0x80000000, remote = 0x40000000, error = 0x20000000 };
  enum FdFlag : std::uint8_t { bit_rate_switch = 1, error_state = 2, fd = 4 };

  std::uint32_t id = 0;  ///< with flags
  bool is_fd = false;
  std::uint8_t fd_flags = 0;  ///< without the one that says that it is one of CAN FD
  std::uint8_t length = 0;
  std::string data;  ///< so many bytes; none of a remote frame
};

/// None for a frame of another bus, or one of more bytes than CAN has.
std::optional<SocketCanFrame> socketCanOf(const BusFrame& frame);

/// Takes everything over that such a frame says. The frame's data lasts as long as that of the
/// other one.
void setFrame(const SocketCanFrame& socket, BusFrame& frame);

/// What a data length code stands for, or the next one that is enough for so many bytes.
std::uint8_t lengthCodeOf(std::size_t length);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_SOCKET_CAN_H_
