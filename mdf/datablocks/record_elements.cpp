#include "record_elements.h"

#include <algorithm>
#include <array>
#include <ostream>

#include "../framework/wire.h"

namespace mdf_v4_10 {

namespace {

template <class Number>
std::array<char, sizeof(Number)> bytesOf(Number value) {
  std::array<char, sizeof(Number)> bytes;
  detail::storeLe(bytes.data(), value);
  return bytes;
}

template <class Id, class Timestamp>
std::ostream& writeIdAndTimestamp(std::ostream& os, Id id, Timestamp timestamp) {
  os.write(bytesOf(id).data(), sizeof id);
  return os.write(bytesOf(timestamp).data(), sizeof timestamp);
}

}  // namespace

std::ostream& operator<<(std::ostream& os, const IDTSDATABLOCK& element) {
  return writeIdAndTimestamp(os, element.id, element.timestamp);
}

std::ostream& operator<<(std::ostream& os, const IDTSDATABLOCK64& element) {
  return writeIdAndTimestamp(os, element.id, element.timestamp);
}

std::ostream& operator<<(std::ostream& os, const VALUEDATABLOCK& element) {
  const auto bytes = bytesOf(element.value);
  return os.write(bytes.data(), static_cast<std::streamsize>(
                                    std::min<std::size_t>(element.valsize, bytes.size())));
}

}  // namespace mdf_v4_10
