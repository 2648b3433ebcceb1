#ifndef MDF_WRITER_STREAM_REDUCTION_H_
#define MDF_WRITER_STREAM_REDUCTION_H_

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../plan/group.h"
#include "data_stream.h"

namespace mdf_writer {

/// A number in a record, and what an interval has had of it. Numbers are kept as keys that are in
/// the order of the numbers, whatever their type.
class ReducedNumber {
 public:
  /// `element` counts in an array, from 0.
  ReducedNumber(const ChannelPlan& channel, std::uint64_t element);

  static bool canReduce(const ChannelPlan& channel);

  void begin();
  void add(std::string_view data, std::string_view invalidation);

  /// Puts the mean, the least and the greatest number into three records, and whether there was a
  /// valid one. Where there was none, the records stay as they are.
  void put(char* mean, char* least, char* greatest, char* invalidation) const;

  /// Puts the number into a record that is nearest to another one.
  void set(char* data, double number) const;

 private:
  enum class Kind { natural, integer, real_32, real_64 };

  std::uint64_t load(std::string_view data) const;
  void store(char* data, std::uint64_t key) const;
  std::uint64_t keyOf(std::uint64_t bits) const;
  double numberOf(std::uint64_t key) const;
  std::uint64_t meanKey() const;
  std::size_t byteAt(std::size_t from_lowest) const;

  Kind kind_;
  bool is_big_endian_;
  std::uint32_t at_;
  std::uint32_t bit_;
  std::uint32_t bits_;
  std::optional<std::uint32_t> invalidation_bit_;
  bool has_value_ = false;   ///< a valid one, be it not a number
  std::uint64_t count_ = 0;  ///< of numbers
  double sum_ = 0;
  std::uint64_t least_ = 0;
  std::uint64_t greatest_ = 0;
};

/// Condenses a group's records: for each interval in which there are some a record of means, one of
/// least and one of greatest numbers, then the invalidation bytes. Their time is that of the
/// interval's beginning; what is no number stays as in the interval's first record.
class Reduction {
 public:
  Reduction(const Group& group, double seconds, DataStream& stream);

  /// Whether a record of this time does not belong to the interval that is open.
  bool endsBefore(std::int64_t nanoseconds) const {
    return is_open_ && intervalOf(nanoseconds) != interval_;
  }

  /// Takes a record.
  void add(std::int64_t nanoseconds, std::string_view data, std::string_view invalidation);

  /// Ends the interval that is open, if one is, after so many records in all. False when the file
  /// takes no more.
  bool end(std::uint64_t records);

  /// Whether another interval fits into the stream's block.
  bool hasRoom() const { return stream_->hasRoom(result_.size()); }

  /// After the file took no more: drops intervals of which it has not all records, or not all of
  /// what they became.
  bool cut(std::uint64_t records);

  std::uint64_t cycles() const { return cycles_; }
  DataStream* stream() const { return stream_; }

 private:
  double intervalOf(std::int64_t nanoseconds) const {
    return std::floor(static_cast<double>(nanoseconds) / 1e9 / seconds_);
  }

  void begin(std::string_view data, std::string_view invalidation);

  DataStream* stream_;
  double seconds_;
  std::vector<ReducedNumber> numbers_;
  std::size_t data_bytes_;
  std::string result_;                     ///< of the interval
  std::vector<std::uint64_t> records_at_;  ///< how many there were, for each in the stream's block
  std::uint64_t cycles_ = 0;
  double interval_ = 0;  ///< the number of the one that is open
  bool is_open_ = false;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_REDUCTION_H_
