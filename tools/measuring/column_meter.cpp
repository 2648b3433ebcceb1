#include "column_meter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <string_view>

#include "numbers.h"

namespace mdf_tools {

namespace {

constexpr std::size_t at_once = 1024;  // numbers, which stay in the cache
constexpr std::size_t lane_count = 8;  // that do not wait for one another

/// Folds numbers in lanes, and these with one another.
template <class Result, class T, class Function>
Result fold(const T* values, std::size_t count, Result start, const Function& function) {
  std::array<Result, lane_count> lanes;
  lanes.fill(start);
  std::size_t i = 0;
  for (; i + lane_count <= count; i += lane_count) {
    for (std::size_t lane = 0; lane < lane_count; ++lane) {
      lanes[lane] = function(lanes[lane], values[i + lane]);
    }
  }
  for (; i < count; ++i) {
    lanes[0] = function(lanes[0], values[i]);
  }
  return std::accumulate(lanes.begin() + 1, lanes.end(), lanes[0], function);
}

/// Mean of numbers that come in parts, and the sum of the squares of their differences from it.
/// What the mean loses by rounding is made up for with the next part.
class Moments {
 public:
  void add(std::uint64_t count, double mean, double squares) {
    const auto before = static_cast<double>(count_);
    count_ += count;
    const double share = static_cast<double>(count) / static_cast<double>(count_);
    const double difference = mean - mean_;
    const double change = difference * share - excess_;
    const double next = mean_ + change;
    excess_ = (next - mean_) - change;
    mean_ = next;
    squares_ += squares + difference * difference * before * share;
  }

  std::uint64_t count() const { return count_; }
  double mean() const { return mean_; }
  double deviation() const { return std::sqrt(squares_ / (static_cast<double>(count_) - 1)); }

 private:
  std::uint64_t count_ = 0;
  double mean_ = 0;
  double excess_ = 0;  ///< of the mean
  double squares_ = 0;
};

template <class T>
class NumberMeter : public ColumnMeter {
 public:
  void add(const ColumnData& column) override {
    const T* const values = column.values<T>();
    std::array<T, at_once> chosen;
    invalid_ += column.nullCount();
    for (std::size_t begin = 0; begin < column.rows(); begin += at_once) {
      const std::size_t count = std::min(at_once, column.rows() - begin);
      if (column.nullCount() == 0 && areFinite(values + begin, count)) {
        addFinite(values + begin, count);
      } else {
        addFinite(chosen.data(), choose(column, begin, count, chosen.data()));
      }
    }
  }

  ColumnStatistics statistics() const override {
    ColumnStatistics statistics;
    statistics.values = moments_.count();
    statistics.invalid = invalid_;
    statistics.not_finite = not_finite_;
    if (moments_.count() > 0) {
      statistics.first = valueOf(first_);
      statistics.last = valueOf(last_);
      statistics.minimum = valueOf(minimum_);
      statistics.maximum = valueOf(maximum_);
      statistics.mean = finiteOrNone(static_cast<double>(origin_) + moments_.mean());
    }
    if (moments_.count() > 1) {
      statistics.deviation = finiteOrNone(moments_.deviation());
    }
    return statistics;
  }

 private:
  /// 0 times a number that is not finite is NaN.
  static bool areFinite(const T* values, std::size_t count) {
    if constexpr (std::is_floating_point_v<T>) {
      return fold(values, count, T{}, [](T sum, T value) { return sum + 0 * value; }) == 0;
    } else {
      return true;
    }
  }

  /// Copies the values that are there and finite; returns how many they are.
  std::size_t choose(const ColumnData& column, std::size_t begin, std::size_t count, T* to) {
    const T* const values = column.values<T>();
    std::size_t chosen = 0;
    for (std::size_t row = begin; row < begin + count; ++row) {
      const bool is_valid = column.isValid(row);
      const bool is_finite = isFinite(values[row]);
      not_finite_ += is_valid && !is_finite ? 1 : 0;
      to[chosen] = values[row];
      chosen += is_valid && is_finite ? 1 : 0;
    }
    return chosen;
  }

  void addFinite(const T* values, std::size_t count) {
    if (count == 0) {
      return;
    }
    if (moments_.count() == 0) {
      first_ = minimum_ = maximum_ = values[0];
      origin_ = std::is_integral_v<T> ? values[0] : T{};
    }
    last_ = values[count - 1];
    minimum_ = fold(values, count, minimum_, [](T a, T b) { return b < a ? b : a; });
    maximum_ = fold(values, count, maximum_, [](T a, T b) { return a < b ? b : a; });
    addMoments(values, count);
  }

  /// Differences from the first of the values have fewer digits to lose than the values.
  void addMoments(const T* values, std::size_t count) {
    const T near = values[0];
    std::array<double, at_once> differences;
    std::transform(values, values + count, differences.begin(),
                   [near](T value) { return differenceOf(value, near); });
    const double mean =
        fold(differences.data(), count, 0.0, [](double sum, double each) { return sum + each; }) /
        static_cast<double>(count);
    std::transform(differences.begin(), differences.begin() + count, differences.begin(),
                   [mean](double each) { return (each - mean) * (each - mean); });
    const double squares =
        fold(differences.data(), count, 0.0, [](double sum, double each) { return sum + each; });
    moments_.add(count, differenceOf(near, origin_) + mean, squares);
  }

  std::uint64_t invalid_ = 0;
  std::uint64_t not_finite_ = 0;
  T first_{};
  T last_{};
  T minimum_{};
  T maximum_{};
  T origin_{};       ///< of integers the first one: large ones differ where doubles do not
  Moments moments_;  ///< of the differences from it
};

/// Texts, and bytes as the digits that stand for them.
class TextMeter : public ColumnMeter {
 public:
  explicit TextMeter(ColumnType type) : type_(type) {}

  void add(const ColumnData& column) override {
    const std::size_t rows = column.rows();
    statistics_.invalid += column.nullCount();
    if (column.nullCount() == rows) {
      return;
    }
    if (statistics_.values == 0) {
      std::size_t row = 0;
      while (!column.isValid(row)) {
        ++row;
      }
      statistics_.first = beginningOf(column.text(row));
    }
    std::size_t row = rows - 1;
    while (!column.isValid(row)) {
      --row;
    }
    statistics_.last = beginningOf(column.text(row));
    statistics_.values += rows - column.nullCount();
  }

  ColumnStatistics statistics() const override { return statistics_; }

 private:
  std::string beginningOf(std::string_view value) const {
    constexpr std::size_t most = 1000;
    const bool is_text = type_ == ColumnType::text;
    std::size_t size = std::min(value.size(), is_text ? most : most / 2);
    const bool is_cut = size < value.size();
    while (is_cut && is_text && size > 0 && isInsideCharacter(value[size])) {
      --size;
    }
    std::string text;
    if (is_text) {
      text = value.substr(0, size);
    } else {
      printBytes(value.substr(0, size), text);
    }
    return is_cut ? text + "..." : text;
  }

  static bool isInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
  }

  ColumnType type_;
  ColumnStatistics statistics_;
};

}  // namespace

std::unique_ptr<ColumnMeter> columnMeterFor(ColumnType type) {
  if (!isNumber(type)) {
    return std::make_unique<TextMeter>(type);
  }
  return withNumberType(type, [](auto zero) -> std::unique_ptr<ColumnMeter> {
    return std::make_unique<NumberMeter<decltype(zero)>>();
  });
}

}  // namespace mdf_tools
