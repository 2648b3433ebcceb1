#include "capture_reader.h"

#include <mdf_writer/mdf_writer.h>

#include <algorithm>
#include <cstring>

namespace mdf_tools {

namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::uint16_t socket_can = 227;
constexpr std::uint32_t section_block = 0x0A0D0D0A;  // the same in both orders of bytes
constexpr std::uint32_t byte_order = 0x1A2B3C4D;
constexpr std::uint32_t pcap_microseconds = 0xA1B2C3D4;
constexpr std::uint32_t pcap_nanoseconds = 0xA1B23C4D;
constexpr std::size_t most_block_bytes = std::size_t{1} << 24U;
constexpr std::size_t most_interfaces = 10'000;

std::uint32_t loadLe(const char* bytes) { return mdf_v4_10::detail::loadLe<std::uint32_t>(bytes); }

std::uint32_t swapped(std::uint32_t number) {
  return (number >> 24U) | ((number >> 8U) & 0xFF00U) | ((number << 8U) & 0xFF0000U) |
         (number << 24U);
}

bool isPcap(std::uint32_t magic) { return magic == pcap_microseconds || magic == pcap_nanoseconds; }

std::size_t padded(std::size_t bytes) { return (bytes + 3) / 4 * 4; }

}  // namespace

bool CaptureReader::isOne(std::string_view beginning) {
  if (beginning.size() < 4) {
    return false;
  }
  const std::uint32_t magic = loadLe(beginning.data());
  return magic == section_block || isPcap(magic) || isPcap(swapped(magic));
}

std::string CaptureReader::place() const { return "the block at offset " + std::to_string(at_); }

/// A number of what was read last, 0 where that ends before it.
template <class T>
T CaptureReader::numberAt(std::size_t at) const {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < sizeof(T) && at + i < bytes_.size(); ++i) {
    const std::size_t shift = 8 * (is_swapped_ ? sizeof(T) - 1 - i : i);
    number |= std::uint64_t{static_cast<unsigned char>(bytes_[at + i])} << shift;
  }
  return static_cast<T>(number);
}

/// Adds bytes to those read; false where there are none at all.
bool CaptureReader::read(std::size_t count) {
  const std::size_t before = bytes_.size();
  bytes_.resize(before + count);
  const std::size_t got = source_(&bytes_[before], count);
  position_ += got;
  bytes_.resize(before + got);
  if (got < count && !bytes_.empty()) {
    throw UnfitFrame{0, "the file ends within it"};
  }
  return got == count;
}

const LoggedFrame* CaptureReader::next() {
  bool is_there = has_begun_ || begin();
  for (has_frame_ = false; is_there && !has_frame_;) {
    bytes_.clear();
    at_ = position_;
    is_there = is_pcapng_ ? readBlock() : readPacket();
  }
  return is_there ? &logged_ : nullptr;
}

bool CaptureReader::begin() {
  has_begun_ = true;
  if (!read(4) || !isOne(bytes_)) {
    throw CaptureFault{"expected a capture, found something else"};
  }
  const std::uint32_t magic = loadLe(bytes_.data());
  is_pcapng_ = magic == section_block;
  if (is_pcapng_) {
    return readBlock();
  }
  is_swapped_ = !isPcap(magic);
  if (!read(20)) {
    throw CaptureFault{"the file ends within its header"};
  }
  Interface interface;
  interface.name = "can0";
  interface.units = numberAt<std::uint32_t>(0) == pcap_nanoseconds ? 1'000'000'000 : 1'000'000;
  interface.link_type = numberAt<std::uint16_t>(is_swapped_ ? 22 : 20);
  if (interface.link_type != socket_can) {
    throw CaptureFault{refusalOf(interface)};
  }
  interfaces_ = {interface};
  return true;
}

std::string CaptureReader::refusalOf(const Interface& interface) {
  return "expected packets with the link type " + std::to_string(socket_can) +
         ", frames of SocketCAN, found the link type " + std::to_string(interface.link_type);
}

bool CaptureReader::readPacket() {
  if (!read(16)) {
    return false;
  }
  const Interface& interface = interfaces_[0];
  const auto size = numberAt<std::uint32_t>(8);
  const std::uint64_t seconds = numberAt<std::uint32_t>(0);
  if (size > most_block_bytes) {
    throw CaptureFault{place() + " states a length of " + std::to_string(size) + " bytes"};
  }
  if (!read(size) && size > 0) {
    throw UnfitFrame{0, "the file ends within it"};
  }
  setTime(interface, seconds * interface.units + numberAt<std::uint32_t>(4));
  takePacket(interface, std::string_view(bytes_).substr(16), numberAt<std::uint32_t>(12));
  return true;
}

bool CaptureReader::readBlock() {
  if (!read(8 - bytes_.size())) {
    return false;
  }
  if (numberAt<std::uint32_t>(0) == section_block) {
    read(4);
    is_swapped_ = loadLe(&bytes_[8]) != byte_order;
    interfaces_.clear();
  }
  const auto length = numberAt<std::uint32_t>(4);
  if (length < bytes_.size() + 4 || length % 4 != 0 || length > most_block_bytes) {
    throw CaptureFault{place() + " states a length of " + std::to_string(length) + " bytes"};
  }
  read(length - bytes_.size());
  switch (numberAt<std::uint32_t>(0)) {
    case section_block:
      if (numberAt<std::uint32_t>(8) != byte_order) {
        throw CaptureFault{place() + " begins a section without its order of bytes"};
      }
      break;
    case 1:
      addInterface();
      break;
    case 2:
    case 3:
      throw UnfitFrame{0, "the packet has no time, or an obsolete form"};
    case 6:
      takeEnhanced();
      break;
    default:  // names of hosts, statistics and others
      break;
  }
  return true;
}

/// Options follow one another: code, length, value, up to four bytes' end.
template <class Take>
void CaptureReader::forEachOption(std::size_t at, const Take& take) const {
  const std::size_t end = bytes_.size() - 4;
  while (at + 4 <= end) {
    const auto code = numberAt<std::uint16_t>(at);
    const auto length = numberAt<std::uint16_t>(at + 2);
    if (code == 0 || length > end - at - 4) {
      break;
    }
    take(code, at + 4, length);
    at += 4 + padded(length);
  }
}

void CaptureReader::addInterface() {
  if (interfaces_.size() == most_interfaces) {
    throw CaptureFault{place() + " describes more than " + std::to_string(most_interfaces) +
                       " interfaces"};
  }
  Interface interface;
  interface.link_type = numberAt<std::uint16_t>(8);
  interface.name = "can" + std::to_string(interfaces_.size());
  forEachOption(16, [&](unsigned code, std::size_t at, std::size_t length) {
    if (code == 2 && length > 0) {
      interface.name = nameIn(std::string_view(bytes_).substr(at, length));
    } else if (code == 9 && length == 1) {
      setResolution(numberAt<std::uint8_t>(at), interface);
    } else if (code == 14 && length == 8) {
      interface.offset_seconds = numberAt<std::int64_t>(at);
    }
  });
  interfaces_.push_back(interface);
}

std::string CaptureReader::nameIn(std::string_view text) const {
  constexpr std::size_t most = 100;
  text = text.substr(0, text.find('\0'));
  if (text.empty() || text.size() > most || !mdf_writer::isUtf8(text)) {
    throw CaptureFault{place() + " has an interface without a name that a bus can have"};
  }
  return std::string(text);
}

/// The highest bit says that the unit is a power of 1/2 and not of 1/10.
void CaptureReader::setResolution(std::uint8_t stored, Interface& interface) const {
  constexpr unsigned is_binary = 0x80;
  const unsigned exponent = stored & ~is_binary;
  interface.binary_digits = (stored & is_binary) != 0 ? exponent : 0;
  if (exponent > ((stored & is_binary) != 0 ? 63U : 18U)) {
    throw CaptureFault{place() + " has an interface with times of too small a unit"};
  }
  interface.units = 1;
  for (unsigned i = 0; i < exponent && interface.binary_digits == 0; ++i) {
    interface.units *= 10;
  }
}

void CaptureReader::takeEnhanced() {
  constexpr std::size_t packet_place = 28;
  const auto number = numberAt<std::uint32_t>(8);
  const auto size = numberAt<std::uint32_t>(20);
  if (number >= interfaces_.size() || bytes_.size() < packet_place + 4 ||
      size > bytes_.size() - packet_place - 4) {
    throw UnfitFrame{0, "the packet is longer than its block, or of no interface"};
  }
  const Interface& interface = interfaces_[number];
  setTime(interface,
          std::uint64_t{numberAt<std::uint32_t>(12)} << 32U | numberAt<std::uint32_t>(16));
  logged_.frame.direction = BusFrame::Direction::unknown;
  forEachOption(
      packet_place + padded(size), [&](unsigned code, std::size_t at, std::size_t length) {
        const unsigned direction = code == 2 && length == 4 ? numberAt<std::uint32_t>(at) & 3U : 0;
        if (direction == 1 || direction == 2) {
          logged_.frame.direction =
              direction == 1 ? BusFrame::Direction::received : BusFrame::Direction::sent;
        }
      });
  takePacket(interface, std::string_view(bytes_).substr(packet_place, size),
             numberAt<std::uint32_t>(24));
}

void CaptureReader::setTime(const Interface& interface, std::uint64_t time) {
  constexpr unsigned enough_digits = 30;
  std::uint64_t seconds = 0;
  std::uint64_t rest = 0;
  if (const unsigned digits = interface.binary_digits; digits > 0) {
    seconds = time >> digits;
    rest = time & ((std::uint64_t{1} << digits) - 1);
    const unsigned kept = std::min(digits, enough_digits);
    rest = ((rest >> (digits - kept)) * std::uint64_t{second}) >> kept;
  } else {
    constexpr std::uint64_t nanoseconds = second;
    seconds = time / interface.units;
    rest = time % interface.units;
    rest = interface.units <= nanoseconds ? rest * (nanoseconds / interface.units)
                                          : rest / (interface.units / nanoseconds);
  }
  const std::int64_t offset = interface.offset_seconds;
  if (seconds > std::uint64_t{last_log_second} ||
      offset > last_log_second - static_cast<std::int64_t>(seconds) ||
      offset < -static_cast<std::int64_t>(seconds)) {
    throw UnfitFrame{0, "expected a time from 1970 to 2261, found another"};
  }
  logged_.nanoseconds =
      (static_cast<std::int64_t>(seconds) + offset) * second + static_cast<std::int64_t>(rest);
}

/// The identifier in network order with its flags, the length, flags of CAN FD, two bytes for
/// nothing, and the data, which may have padding.
void CaptureReader::takePacket(const Interface& interface, std::string_view packet,
                               std::uint64_t whole) {
  constexpr std::size_t head = 8;
  constexpr std::size_t most_data = 64;
  constexpr std::uint32_t most_standard = 0x7FF;
  if (interface.link_type != socket_can) {
    throw UnfitFrame{0, refusalOf(interface)};
  }
  if (packet.size() < whole || packet.size() < head) {
    throw UnfitFrame{0, "the packet was cut off: it has " + std::to_string(packet.size()) + " of " +
                            std::to_string(std::max<std::uint64_t>(whole, head)) + " bytes"};
  }
  socket_ = {};
  socket_.id = swapped(loadLe(packet.data()));
  socket_.length = static_cast<std::uint8_t>(packet[4]);
  const auto flags = static_cast<std::uint8_t>(packet[5]);
  socket_.is_fd = (flags & SocketCanFrame::fd) != 0 || packet.size() == head + most_data;
  const bool has_data = (socket_.id & SocketCanFrame::remote) == 0;
  const std::size_t most = socket_.is_fd ? most_data : 8;
  if (socket_.length > most || (has_data && packet.size() - head < socket_.length)) {
    throw UnfitFrame{0, "the frame states " + std::to_string(socket_.length) +
                            " bytes of data, which it cannot have or has not"};
  }
  if ((socket_.id & (SocketCanFrame::extended | SocketCanFrame::error)) == 0) {
    socket_.id &= most_standard | SocketCanFrame::remote;
  }
  socket_.fd_flags = socket_.is_fd ? static_cast<std::uint8_t>(flags & 3U) : std::uint8_t{0};
  socket_.data = has_data ? packet.substr(head, socket_.length) : std::string_view();
  setFrame(socket_, logged_.frame);
  logged_.frame.bus = interface.name;
  has_frame_ = true;
}

}  // namespace mdf_tools
