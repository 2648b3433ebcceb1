#ifndef MDF_READER_VALUES_LOOKUP_H_
#define MDF_READER_VALUES_LOOKUP_H_

#include <cstddef>
#include <utility>
#include <vector>

namespace mdf_reader {

/// Which of some keys a number is.
class KeyTable {
 public:
  explicit KeyTable(const std::vector<double>& keys);

  /// The index of the first key that is the number; the count of keys when none is.
  std::size_t find(double number) const;

 private:
  std::vector<std::pair<double, std::size_t>> keys_;  ///< in ascending order
  std::size_t count_;
};

/// Which of some ranges a number lies in.
class RangeTable {
 public:
  explicit RangeTable(std::vector<std::pair<double, double>> ranges);

  /// The index of the first range with the number in it; the count of ranges when there is none.
  /// The upper limit belongs to the range for integers; for reals only where it equals the lower
  /// one.
  std::size_t find(double number, bool is_integer) const;

 private:
  std::vector<std::pair<double, double>> ranges_;
  bool is_ordered_;
};

/// Values at points.
class PointTable {
 public:
  /// @param pairs the points, each followed by its value.
  explicit PointTable(const std::vector<double>& pairs);

  bool isEmpty() const { return points_.empty(); }

  /// The value on the line between the two points around x; outside all points, the value of the
  /// nearest. There is at least one point.
  double between(double x) const;

  /// The value of the point nearest to x; in the middle of two, that of the lower one.
  double nearest(double x) const;

 private:
  using Point = std::pair<double, double>;
  std::vector<Point>::const_iterator notBelow(double x) const;

  std::vector<Point> points_;  ///< in ascending order
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_LOOKUP_H_
