#include "bus_database.h"

namespace mdf_reader {

namespace {

/// Where the signal's last bit is, in bits from the highest bit of the first byte downwards. In
/// this order the bits of a big-endian signal follow one another.
std::uint32_t lastDownwards(const BusSignal& signal) {
  return signal.start_bit / 8 * 8 + (7 - signal.start_bit % 8) + signal.bits - 1;
}

}  // namespace

std::uint32_t firstByteOf(const BusSignal& signal) { return signal.start_bit / 8; }

std::uint32_t endByteOf(const BusSignal& signal) {
  const std::uint32_t last =
      signal.is_big_endian ? lastDownwards(signal) : signal.start_bit + signal.bits - 1;
  return last / 8 + 1;
}

std::uint32_t lowestBitOf(const BusSignal& signal) {
  return signal.is_big_endian ? 7 - lastDownwards(signal) % 8 : signal.start_bit % 8;
}

}  // namespace mdf_reader
