#ifndef MDF_READER_BUS_BUS_DATABASE_H_
#define MDF_READER_BUS_BUS_DATABASE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace mdf_reader {

/// A text that stands for a raw value.
struct ValueText {
  std::int64_t value = 0;  ///< of an unsigned signal of 64 bits, what its bits are as a signed one
  std::string text;
};

/// When a signal is there: its message's switch has a value in one of these ranges, and whatever
/// the switch itself depends on, too.
struct Multiplexing {
  std::size_t by = 0;  ///< which of the message's signals is the switch
  std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;  ///< least and greatest raw value
};

/// A number in the data of a message.
struct BusSignal {
  enum class Type : std::uint8_t { unsigned_integer, signed_integer, single_float, double_float };

  std::string name;
  std::string unit;
  std::string comment;
  /// Of its least significant bit, counted from the least significant bit of the first byte; where
  /// its bytes are big-endian, of its most significant bit.
  std::uint32_t start_bit = 0;
  std::uint32_t bits = 0;  ///< 1 to 64; 32 and 64 for floats
  bool is_big_endian = false;
  Type type = Type::unsigned_integer;
  double factor = 1;  ///< a physical value is offset + factor * raw value
  double offset = 0;
  std::optional<std::pair<double, double>> range;  ///< least and greatest physical value
  std::vector<ValueText> texts;
  bool is_switch = false;                    ///< its value says which other signals are there
  std::optional<Multiplexing> multiplexing;  ///< none for a signal that is always there
};

/// The first byte of the data that the signal has bits in.
std::uint32_t firstByteOf(const BusSignal& signal);
/// One past the last byte of the data that the signal has bits in.
std::uint32_t endByteOf(const BusSignal& signal);
/// Which bit of its byte the signal's least significant one is, 0 to 7. That byte is the first one
/// that the signal has bits in; where its bytes are big-endian, the last one.
std::uint32_t lowestBitOf(const BusSignal& signal);

/// What is in the data of frames with an identifier.
struct BusMessage {
  std::string name;
  std::string sender;  ///< "" for none
  std::string comment;
  std::uint32_t id = 0;
  bool is_extended = false;          ///< the identifier has 29 bits
  bool is_fd = false;                ///< it comes in frames of CAN FD
  bool is_j1939 = false;             ///< of its identifier, the parameter group alone counts
  std::uint32_t length = 0;          ///< of the data, in bytes; at most 64
  std::optional<double> cycle_time;  ///< in seconds, where it is sent in a cycle
  std::vector<BusSignal> signals;    ///< each lies within the data
};

/// The messages of a bus, in the order in which they are described.
struct BusDatabase {
  std::string comment;
  std::vector<BusMessage> messages;  ///< no two with the same identifier
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_BUS_DATABASE_H_
