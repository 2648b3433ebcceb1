#ifndef MDF_TOOLS_RECORDING_SIGNAL_SOURCE_H_
#define MDF_TOOLS_RECORDING_SIGNAL_SOURCE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// What a channel says about the values of a signal.
struct Signal {
  std::string name;
  std::string unit;  ///< empty for a number without a unit
  mdf_v4_10::CNBLOCK::MDF_CN_DATATYPES_t data_type;
  mdf_v4_10::UINT32 bytes;  ///< of each value; 0 of a text

  bool isText() const { return data_type == mdf_v4_10::CNBLOCK::CN_DATATYPE_STRING_UTF8; }
};

Signal float64Signal(std::string name, std::string unit);
Signal float32Signal(std::string name, std::string unit);
Signal uint64Signal(std::string name, std::string unit);
Signal textSignal(std::string name, std::string unit);

/// A value as the low bytes of 64 bits.
mdf_v4_10::UINT64 bitsOf(double value);
mdf_v4_10::UINT64 bitsOf(float value);

/// A value from the low bytes of 64 bits.
template <class T>
T valueOf(mdf_v4_10::UINT64 bits) {
  static_assert(sizeof(T) == 4 || sizeof(T) == 8);
  const auto low = static_cast<std::uint32_t>(bits);
  T value;
  std::memcpy(&value, sizeof value == sizeof low ? static_cast<const void*>(&low) : &bits,
              sizeof value);
  return value;
}

/// A part of a signal's name: everything except ASCII letters, digits, dot and minus becomes an
/// underscore.
std::string namePart(std::string_view text);

/// Limits how often something happens.
class Pace {
 public:
  /// Both in seconds.
  explicit Pace(double interval, double first_time = 0) : interval_(interval), next_(first_time) {}

  /// True when it is time again.
  bool isDue(double seconds) {
    const bool due = seconds >= next_;
    next_ = due ? seconds + interval_ : next_;
    return due;
  }

 private:
  double interval_;
  double next_;
};

/// Signals that come from the same place and are sampled together. The constructor settles which
/// ones there are. One that vanishes afterwards, with a CPU or a network interface that is taken
/// away, keeps its last value.
class SignalSource {
 public:
  SignalSource() = default;
  virtual ~SignalSource() = default;
  SignalSource(const SignalSource&) = delete;
  SignalSource& operator=(const SignalSource&) = delete;

  /// Brings the values up to date. `seconds` is the time since any moment before, the same at each
  /// call; a source whose values change slowly, or are slow to read, is not read each time.
  virtual void sample(double seconds) = 0;

  const std::vector<Signal>& signals() const { return signals_; }

  /// The bits of each signal's value, in the order of the signals.
  const std::vector<mdf_v4_10::UINT64>& values() const { return values_; }

 protected:
  void add(Signal signal, mdf_v4_10::UINT64 value);
  void set(std::size_t index, mdf_v4_10::UINT64 value) { values_[index] = value; }

 private:
  std::vector<Signal> signals_;
  std::vector<mdf_v4_10::UINT64> values_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_SIGNAL_SOURCE_H_
