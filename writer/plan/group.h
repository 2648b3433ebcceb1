#ifndef MDF_WRITER_PLAN_GROUP_H_
#define MDF_WRITER_PLAN_GROUP_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "../../mdf/framework/wire.h"
#include "channel_plan.h"

namespace mdf_writer {

class Group;

/// A channel of one group, as the group's operations take it.
struct ChannelRef {
  const Group* group = nullptr;  ///< none where the plan of the channel is wrong
  std::uint32_t index = 0;       ///< among the group's channels
};

/// A channel whose values are a T, or arrays of them.
template <class T>
struct Channel : ChannelRef {
  std::uint32_t at = 0;  ///< in the record
  std::uint32_t elements = 1;
};

/// A channel of integers of any number of bits.
template <class T>
struct BitsChannel : ChannelRef {};

/// A channel of texts or bytes of at most so many bytes; shorter ones end with zeros.
struct FixedChannel : ChannelRef {};

/// A channel of texts or bytes of any length.
struct VariableChannel : ChannelRef {};

/// A kind of record: its channels, and the record that is being put together. Set what has changed,
/// then let a recording append it; what is not set stays as it was, 0 at first.
///
/// A set...() returns false, and stores nothing, where the value does not fit or the channel is one
/// of another group.
class Group {
 public:
  /// What the records of a group are in the order of.
  enum class Order {
    time,   ///< a first channel "time" in seconds, which a recording gets in nanoseconds
    index,  ///< their numbers, as a first channel "index" that takes no bytes
    own     ///< a master channel that is added as a field
  };

  Group(std::string name, Order order);
  ~Group() = default;
  Group(const Group&) = delete;
  Group& operator=(const Group&) = delete;

  const std::string& name() const { return name_; }

  std::string comment;
  Source source;

  /// Its records are events of a bus, one each, such as frames. To be set before a structure is
  /// added that is such an event.
  bool is_bus_event = false;

  /// Lengths in seconds of intervals over which the records are condensed, too: for each of them
  /// the file gets a sample reduction, for viewers of long recordings. Needs the order of time.
  std::vector<double> reductions;

  /// Whether channels may have bits in common, as those of multiplexed signals.
  bool has_shared_bits = false;

  /// Numbers as the machine has them: integers of 8 to 64 bits, float, double.
  template <class T>
  Channel<T> addChannel(std::string name, std::string unit = {}, Conversion conversion = {}) {
    return addArray<T>(std::move(name), {}, std::move(unit), std::move(conversion));
  }

  /// An array of numbers in each record, of so many in each dimension, the outermost first.
  template <class T>
  Channel<T> addArray(std::string name, std::vector<std::uint32_t> dimensions,
                      std::string unit = {}, Conversion conversion = {}) {
    ChannelPlan plan = named(std::move(name), std::move(unit), std::move(conversion));
    plan.type = typeOf<T>();
    plan.bits = 8 * sizeof(T);
    plan.dimensions = std::move(dimensions);
    Channel<T> channel;
    static_cast<ChannelRef&>(channel) = addAtEnd(std::move(plan));
    channel.at = channels_[channel.index].byte_offset;
    channel.elements = static_cast<std::uint32_t>(channels_[channel.index].elements());
    return channel;
  }

  /// Integers of 1 to 64 bits, signed if T is. They follow on the bits of the channel added before
  /// if that does not end with a byte, and fit with those before them into 8 bytes from there.
  template <class T>
  BitsChannel<T> addBits(std::string name, std::uint32_t bits, std::string unit = {},
                         Conversion conversion = {}) {
    static_assert(std::is_integral_v<T>);
    ChannelPlan plan = named(std::move(name), std::move(unit), std::move(conversion));
    plan.type = typeOf<T>();
    plan.bits = bits;
    return {addBitsAtEnd(std::move(plan), 8 * sizeof(T))};
  }

  /// Texts in UTF-8, and bytes: of at most so many bytes, or of any number.
  FixedChannel addText(std::string name, std::uint32_t bytes, Conversion conversion = {});
  FixedChannel addBytes(std::string name, std::uint32_t bytes);
  VariableChannel addText(std::string name, Conversion conversion = {});
  VariableChannel addBytes(std::string name);

  /// A channel of bytes that the channels from `first` to the last one added become members of, in
  /// the order in which they were added.
  ChannelRef addStructure(std::string name, const ChannelRef& first);

  /// A channel with everything stated, its place in the record, too. For records that are appended
  /// as bytes.
  ChannelRef addField(ChannelPlan plan);

  /// Gives a channel an invalidation bit, if it has none: its values can be said to be invalid.
  void mayBeInvalid(const ChannelRef& channel);

  /// What else is said of a channel, to be added to: comment, source, ranges.
  ChannelNotes& describe(const ChannelRef& channel);

  const std::vector<ChannelPlan>& channels() const { return channels_; }

  template <class T, class Value>
  bool set(const Channel<T>& channel, Value value) {
    if (channel.group != this || !fits<T>(value)) {
      return false;
    }
    mdf_v4_10::detail::storeLe(&record_[channel.at], static_cast<T>(value));
    return true;
  }

  /// All elements of an array, the last dimension varying fastest.
  template <class T>
  bool set(const Channel<T>& channel, const T* values, std::size_t count) {
    if (channel.group != this || count != channel.elements) {
      return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
      mdf_v4_10::detail::storeLe(&record_[channel.at + i * sizeof(T)], values[i]);
    }
    return true;
  }

  template <class T, class Value>
  bool set(const BitsChannel<T>& channel, Value value) {
    return fits<T>(value) && setBits(channel, static_cast<std::uint64_t>(value), value < 0);
  }

  bool set(const FixedChannel& channel, std::string_view value);
  bool set(const VariableChannel& channel, std::string_view value);

  /// Whether the channel's values in the records to come are valid, until it is said otherwise;
  /// they are at first. False for a channel without an invalidation bit.
  bool setValid(const ChannelRef& channel, bool valid);

  /// What is wrong with the group's plan, as a sentence; empty for nothing.
  std::string fault() const;

  /// Bytes of a record, without those of its invalidation bits, and those.
  std::uint32_t dataBytes() const { return static_cast<std::uint32_t>(record_.size()); }
  std::uint32_t invalidationBytes() const { return static_cast<std::uint32_t>(invalid_.size()); }

 private:
  friend class Plan;
  friend class Recording;

  template <class T>
  static constexpr ChannelPlan::DataType typeOf() {
    static_assert(std::is_arithmetic_v<T> && sizeof(T) <= 8, "a number of at most 64 bits");
    if (std::is_floating_point_v<T>) {
      return mdf_v4_10::CNBLOCK::CN_DATATYPE_FLOAT_LE;
    }
    return std::is_signed_v<T> ? mdf_v4_10::CNBLOCK::CN_DATATYPE_INT_LE
                               : mdf_v4_10::CNBLOCK::CN_DATATYPE_UINT_LE;
  }

  /// Whether a T holds a value without another one becoming of it, but for digits of floats.
  template <class T, class Value>
  static constexpr bool fits(Value value) {
    static_assert(std::is_arithmetic_v<Value>, "a number");
    if constexpr (std::is_floating_point_v<T>) {
      return true;
    } else {
      static_assert(std::is_integral_v<Value>, "round a float before it is set as an integer");
      return static_cast<Value>(static_cast<T>(value)) == value &&
             (static_cast<T>(value) < 0) == (value < 0);
    }
  }

  static ChannelPlan named(std::string name, std::string unit, Conversion conversion);
  ChannelRef addAtEnd(ChannelPlan plan);
  ChannelRef addBitsAtEnd(ChannelPlan plan, std::uint32_t most);
  ChannelRef addVariable(std::string name, ChannelPlan::DataType type, Conversion conversion);
  ChannelRef addFixed(std::string name, std::uint32_t bytes, ChannelPlan::DataType type,
                      Conversion conversion);
  bool setBits(const ChannelRef& channel, std::uint64_t value, bool negative);
  std::string faultOfNames() const;
  std::string faultOfPlaces() const;
  std::string faultOfMembers() const;

  std::string name_;
  Order order_;
  std::vector<ChannelPlan> channels_;
  ChannelNotes no_channel_;  ///< for who asks for a channel of another group
  std::vector<char> record_;
  std::vector<char> invalid_;        ///< its invalidation bytes
  std::vector<std::string> values_;  ///< of channels of variable length, by the channel's index
  std::size_t index_ = 0;            ///< in the plan
  const void* plan_ = nullptr;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_GROUP_H_
