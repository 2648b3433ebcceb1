#include "pcapng_writer.h"

#include "socket_can.h"

namespace mdf_tools {

namespace {

template <class T>
void addNumber(T number, std::string& out) {
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    out += static_cast<char>(static_cast<unsigned char>(number >> (8 * i)));
  }
}

void addBigEndian(std::uint32_t number, std::string& out) {
  for (unsigned shift = 32; shift > 0; shift -= 8) {
    out += static_cast<char>(static_cast<unsigned char>(number >> (shift - 8)));
  }
}

void pad(std::string& out, std::size_t bytes) { out.append((4 - bytes % 4) % 4, '\0'); }

void addOption(std::uint16_t code, std::string_view value, std::string& out) {
  addNumber(code, out);
  addNumber(static_cast<std::uint16_t>(value.size()), out);
  out += value;
  pad(out, value.size());
}

/// A block states its length at both ends.
void addBlock(std::uint32_t type, const std::string& body, std::string& out) {
  const auto length = static_cast<std::uint32_t>(body.size() + 12);
  addNumber(type, out);
  addNumber(length, out);
  out += body;
  addNumber(length, out);
}

/// The identifier in network order, then as struct canfd_frame has it in memory.
std::string packetOf(const SocketCanFrame& frame) {
  std::string packet;
  addBigEndian(frame.id, packet);
  packet += static_cast<char>(frame.length);
  packet += static_cast<char>(frame.is_fd ? frame.fd_flags | SocketCanFrame::fd : 0);
  packet.append(2, '\0');
  return packet + frame.data;
}

}  // namespace

void PcapngWriter::begin(std::string& out) {
  constexpr std::uint32_t section = 0x0A0D0D0A;
  std::string body;
  addNumber(std::uint32_t{0x1A2B3C4D}, body);
  addNumber(std::uint16_t{1}, body);  // the version
  addNumber(std::uint16_t{0}, body);
  addNumber(~std::uint64_t{0}, body);  // its length is not stated
  addBlock(section, body, out);
}

std::uint32_t PcapngWriter::interfaceOf(std::string_view bus, std::string& out) {
  constexpr std::uint32_t description = 1;
  constexpr std::uint16_t socket_can = 227;
  const auto found = interfaces_.find(bus);
  if (found != interfaces_.end()) {
    return found->second;
  }
  std::string body;
  addNumber(socket_can, body);
  addNumber(std::uint16_t{0}, body);
  addNumber(std::uint32_t{0}, body);  // packets have any length
  addOption(2, bus.substr(0, UINT16_MAX), body);
  addOption(9, "\x09", body);  // units of time are 10^-9 seconds
  addOption(0, "", body);
  addBlock(description, body, out);
  const auto number = static_cast<std::uint32_t>(interfaces_.size());
  interfaces_.emplace(bus, number);
  return number;
}

bool PcapngWriter::add(const BusFrame& frame, std::string& out) {
  constexpr std::uint32_t enhanced_packet = 6;
  const auto nanoseconds = nanosecondsOf(frame, start_);
  const auto socket = socketCanOf(frame);
  if (!socket || !nanoseconds || *nanoseconds < 0) {
    return false;
  }
  std::string body;
  addNumber(interfaceOf(frame.bus, out), body);
  const auto time = static_cast<std::uint64_t>(*nanoseconds);
  addNumber(static_cast<std::uint32_t>(time >> 32U), body);
  addNumber(static_cast<std::uint32_t>(time), body);
  const std::string packet = packetOf(*socket);
  addNumber(static_cast<std::uint32_t>(packet.size()), body);
  addNumber(static_cast<std::uint32_t>(packet.size()), body);
  body += packet;
  pad(body, packet.size());
  if (frame.direction != BusFrame::Direction::unknown) {
    const bool is_received = frame.direction == BusFrame::Direction::received;
    addOption(2, std::string(1, is_received ? '\1' : '\2') + std::string(3, '\0'), body);
    addOption(0, "", body);
  }
  addBlock(enhanced_packet, body, out);
  return true;
}

}  // namespace mdf_tools
