#ifndef MDF_READER_BUS_BUS_FRAME_H_
#define MDF_READER_BUS_BUS_FRAME_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mdf_reader {

/// A frame that a logger saw on a bus, or an error that took its place.
struct BusFrame {
  enum class Kind : std::uint8_t { data, remote, error, overload, lin, lin_error };
  enum class Direction : std::uint8_t { unknown, received, sent };
  /// What the bits of a CAN error frame were wrong in, as the format numbers it.
  enum class Error : std::uint8_t { unknown, bit, form, stuffing, checksum, acknowledgement };

  bool isLin() const { return kind == Kind::lin || kind == Kind::lin_error; }
  bool hasId() const { return kind == Kind::data || kind == Kind::remote || kind == Kind::lin; }

  double time = 0;                   ///< in seconds since the measurement was started
  std::optional<int> time_decimals;  ///< how many decimal places suffice for it, where known
  std::string_view bus;              ///< "can1"
  std::string_view name;             ///< of its kind in the file: "CAN_DataFrame"
  Kind kind = Kind::data;
  Direction direction = Direction::unknown;
  Error error = Error::unknown;
  std::uint32_t id = 0;
  bool is_extended = false;  ///< the identifier has 29 bits
  bool is_fd = false;        ///< a frame of CAN FD
  bool has_bit_rate_switch = false;
  bool has_error_state = false;  ///< its sender was error passive
  /// Of an error frame, the bits of its class as Linux numbers them, where the file has them; its
  /// data tells more then.
  std::optional<std::uint32_t> error_class;
  std::optional<std::uint16_t> number;  ///< in the log that it came from, modulo 65536
  std::uint64_t length = 0;             ///< of the data, as the frame states it
  std::string_view data;                ///< as far as it was recorded, never longer than that
};

/// Words for what a frame is, which way it went, and what is wrong with it; "" for unknown.
std::string_view kindName(const BusFrame& frame);
std::string_view directionName(const BusFrame& frame);
std::string_view errorName(const BusFrame& frame);

/// The identifier as people write it: three digits, or eight for one of 29 bits.
std::string idText(const BusFrame& frame);

/// Whether a bus is meant: by its name, a pattern of it, or the number in it.
bool isBus(const std::string& pattern, std::string_view bus);

/// The bytes of data that a data length code stands for.
std::uint64_t dataLengthOf(std::uint64_t code, bool is_fd);

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_BUS_FRAME_H_
