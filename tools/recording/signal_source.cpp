#include "signal_source.h"

#include <utility>

namespace mdf_tools {

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::UINT64;

Signal float64Signal(std::string name, std::string unit) {
  return {std::move(name), std::move(unit), CNBLOCK::CN_DATATYPE_FLOAT_LE, 8};
}

Signal float32Signal(std::string name, std::string unit) {
  return {std::move(name), std::move(unit), CNBLOCK::CN_DATATYPE_FLOAT_LE, 4};
}

Signal uint64Signal(std::string name, std::string unit) {
  return {std::move(name), std::move(unit), CNBLOCK::CN_DATATYPE_UINT_LE, 8};
}

Signal textSignal(std::string name, std::string unit) {
  return {std::move(name), std::move(unit), CNBLOCK::CN_DATATYPE_STRING_UTF8, 0};
}

UINT64 bitsOf(double value) {
  UINT64 bits = 0;
  static_assert(sizeof bits == sizeof value);
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

UINT64 bitsOf(float value) {
  std::uint32_t bits = 0;
  static_assert(sizeof bits == sizeof value);
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::string namePart(std::string_view text) {
  std::string part(text);
  for (char& character : part) {
    const bool allowed =
        (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
        (character >= '0' && character <= '9') || character == '.' || character == '-';
    if (!allowed) {
      character = '_';
    }
  }
  return part;
}

void SignalSource::add(Signal signal, UINT64 value) {
  signals_.push_back(std::move(signal));
  values_.push_back(value);
}

}  // namespace mdf_tools
