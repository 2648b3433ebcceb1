#ifndef MDF_TOOLS_VIEWING_AXIS_H_
#define MDF_TOOLS_VIEWING_AXIS_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "pyramid.h"

namespace mdf_tools {

/// Has the times of records never fall. A record without a finite time, and one whose time is
/// earlier than one before, is out of order until a time is as late as the latest one: it is not
/// drawn, and stands at that latest time.
class TimeOrder {
 public:
  /// Goes on after a time; -infinity for the first record.
  explicit TimeOrder(double latest) : latest_(latest) {}

  /// Takes the next record's time; false where it is out of order.
  bool take(double time) {
    if (time >= latest_ && std::abs(time) < std::numeric_limits<double>::infinity()) {
      latest_ = time;
      return true;
    }
    return false;
  }
  /// Where the record stands.
  double latest() const { return latest_; }

 private:
  double latest_;
};

/// The times of the records of a table, as far as buckets of a pyramid need them.
class Axis {
 public:
  Axis() = default;
  /// Of records after others, of which the latest stands at a time.
  explicit Axis(double latest) : order_(latest) {}

  /// Adds the next record's time; false where it is out of order.
  bool add(double time);
  /// Adds the times of the next records if none is out of order, and else none of them.
  /// @param count not more than room().
  bool addInOrder(const double* times, std::size_t count);
  /// How many records the current bucket still takes.
  std::size_t room() const {
    return Pyramid::bucket_size - static_cast<std::size_t>(records_ % Pyramid::bucket_size);
  }
  /// Forgets the records of a last bucket that is not full.
  void reopen();

  std::uint64_t records() const { return records_; }
  std::size_t buckets() const { return begins_.size(); }
  /// How many records are out of order.
  std::uint64_t outOfOrder() const { return out_of_order_; }

  /// Whether no record is in order.
  bool isEmpty() const { return first_ == before_all; }

  /// The time that a bucket's first record comes after, or at: what TimeOrder goes on from.
  double begin(std::size_t bucket) const { return begins_[bucket]; }
  /// The time at which the last record of a bucket stands.
  double end(std::size_t bucket) const {
    return bucket + 1 < begins_.size() ? begins_[bucket + 1] : order_.latest();
  }
  /// The times of the first and the last record in order; both -infinity where there is none.
  double first() const { return first_; }
  double last() const { return order_.latest(); }

  /// The first bucket that may have a record at a time or after it: all before end earlier.
  std::size_t firstReaching(double time) const;
  /// The first bucket all of whose records are after a time.
  std::size_t firstAfter(double time) const;

  /// Bytes of memory.
  std::size_t size() const { return sizeof(Axis) + begins_.capacity() * sizeof(double); }

 private:
  friend class OutlineFile;

  static constexpr double before_all = -std::numeric_limits<double>::infinity();

  void beginBucket();

  TimeOrder order_{before_all};
  double first_ = before_all;
  std::uint64_t records_ = 0;
  std::uint64_t out_of_order_ = 0;
  std::uint64_t out_of_order_before_ = 0;  ///< when the last bucket began
  std::vector<double> begins_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_AXIS_H_
