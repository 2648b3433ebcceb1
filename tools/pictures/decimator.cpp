#include "decimator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace mdf_tools {

namespace {

/// Computing with larger numbers than this overflows.
constexpr double most = 1e300;

bool canBeDrawn(double number) { return std::abs(number) <= most; }

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();

constexpr std::size_t at_once = Abscissa::at_once;

/// The lowest and the highest of numbers, and whether all can be drawn. Where only their sum is too
/// large, they are said not to be.
struct Ends {
  double lowest;
  double highest;
  bool can_be_drawn;
};

template <class Number>
Number lower(Number a, Number b) {
  return b < a ? b : a;
}

template <class Number>
Number higher(Number a, Number b) {
  return b > a ? b : a;
}

/// What is left of numbers of which the four quarters are merged, again and again. The compiler
/// merges several numbers at a time, which it must not do from one to the next.
template <class Number>
struct Merged {
  static constexpr std::size_t quarter = at_once / 4;
  std::array<Number, quarter> lowest;
  std::array<Number, quarter> highest;
  std::array<Number, quarter> sum;  ///< of reals

  explicit Merged(const Number* y) {
    for (std::size_t i = 0; i < quarter; ++i) {
      const Number a = y[i];
      const Number b = y[i + quarter];
      const Number c = y[i + 2 * quarter];
      const Number d = y[i + 3 * quarter];
      lowest[i] = lower(lower(a, b), lower(c, d));
      highest[i] = higher(higher(a, b), higher(c, d));
      if constexpr (std::is_floating_point_v<Number>) {
        sum[i] = (a + b) + (c + d);
      }
    }
    merge<quarter / 2>();
  }

  template <std::size_t Half>
  void merge() {
    for (std::size_t i = 0; i < Half; ++i) {
      lowest[i] = lower(lowest[i], lowest[i + Half]);
      highest[i] = higher(highest[i], highest[i + Half]);
      if constexpr (std::is_floating_point_v<Number>) {
        sum[i] += sum[i + Half];
      }
    }
    if constexpr (Half > 1) {
      merge<Half / 2>();
    }
  }
};

/// Of `at_once` numbers. A sum of reals is finite only where they are.
template <class Number>
Ends endsOf(const Number* y) {
  const Merged<Number> merged(y);
  const auto lowest = static_cast<double>(merged.lowest[0]);
  const auto highest = static_cast<double>(merged.highest[0]);
  bool can_be_drawn = canBeDrawn(lowest) && canBeDrawn(highest);
  if constexpr (std::is_floating_point_v<Number>) {
    can_be_drawn = can_be_drawn && std::isfinite(merged.sum[0]);
  }
  return {lowest, highest, can_be_drawn};
}

template <class Number>
std::size_t firstOf(const Number* y, double value) {
  std::size_t i = 0;
  while (static_cast<double>(y[i]) != value) {
    ++i;
  }
  return i;
}

bool isGap(const Point& point) { return std::isnan(point.y); }

}  // namespace

Abscissa::Abscissa(const double* x, std::size_t count) : x_(x), count_(count) {
  for (std::size_t begin = 0; begin + at_once <= count; begin += at_once) {
    const Ends ends = endsOf(x + begin);
    pieces_.push_back({ends.can_be_drawn ? ends.lowest : no_number, ends.highest});
  }
}

void Decimator::Column::add(const Point& point) {
  if (is_empty) {
    first = lowest = highest = point;
    is_empty = false;
  }
  if (point.y < lowest.y) {
    lowest = point;
  }
  if (point.y > highest.y) {
    highest = point;
  }
  last = point;
  ends_in_gap = false;
}

/// Adds points where all can be drawn. Most are neither lower nor higher than those before.
template <class Number>
bool Decimator::Column::addPiece(const Abscissa& x, std::size_t begin, const Number* y) {
  const Ends ends = endsOf(y);
  if (!ends.can_be_drawn) {
    return false;
  }
  const auto point = [&](std::size_t i) { return Point{x[begin + i], static_cast<double>(y[i])}; };
  add(point(0));
  if (ends.lowest < lowest.y) {
    lowest = point(firstOf(y, ends.lowest));
  }
  if (ends.highest > highest.y) {
    highest = point(firstOf(y, ends.highest));
  }
  last = point(at_once - 1);
  return true;
}

/// Merges the column on the right into this one.
void Decimator::Column::append(const Column& right) {
  if (right.is_empty) {
    return;
  }
  if (is_empty) {
    *this = right;
    return;
  }
  lowest = right.lowest.y < lowest.y ? right.lowest : lowest;
  highest = right.highest.y > highest.y ? right.highest : highest;
  last = right.last;
  ends_in_gap = right.ends_in_gap;
}

void Decimator::add(double x, double y) {
  if (!canBeDrawn(x)) {
    return;
  }
  if (!canBeDrawn(y)) {
    addGap(x);
  } else if (!columns_.empty()) {
    addToColumn({x, y});
  } else {
    points_.push_back({x, y});
    if (points_.size() >= 4 * column_count_) {
      makeColumns();
    }
  }
}

template <class Number>
void Decimator::add(const Abscissa& x, const Number* y) {
  for (std::size_t begin = 0; begin < x.size(); begin += at_once) {
    const bool is_in_a_column = !columns_.empty() &&
                                x.areBetween(inside_from_, inside_to_, begin) &&
                                columns_[last_column_].addPiece(x, begin, y + begin);
    const std::size_t end = std::min(begin + at_once, x.size());
    for (std::size_t i = begin; !is_in_a_column && i < end; ++i) {
      add(x[i], static_cast<double>(y[i]));
    }
  }
}

template void Decimator::add(const Abscissa&, const std::uint8_t*);
template void Decimator::add(const Abscissa&, const std::uint16_t*);
template void Decimator::add(const Abscissa&, const std::uint32_t*);
template void Decimator::add(const Abscissa&, const std::uint64_t*);
template void Decimator::add(const Abscissa&, const std::int8_t*);
template void Decimator::add(const Abscissa&, const std::int16_t*);
template void Decimator::add(const Abscissa&, const std::int32_t*);
template void Decimator::add(const Abscissa&, const std::int64_t*);
template void Decimator::add(const Abscissa&, const float*);
template void Decimator::add(const Abscissa&, const double*);

void Decimator::addGap(double x) {
  if (!columns_.empty()) {
    columns_[last_column_].ends_in_gap = true;
  } else if (!points_.empty() && !isGap(points_.back())) {
    points_.push_back({x, no_number});
  }
}

void Decimator::makeColumns() {
  const auto [left, right] = std::minmax_element(
      points_.begin(), points_.end(), [](const Point& a, const Point& b) { return a.x < b.x; });
  constexpr double least = 1e-12;
  begin_ = left->x;
  width_ = std::max(
      {(right->x - left->x) / static_cast<double>(column_count_), std::abs(begin_) * least, least});
  columns_.resize(column_count_);
  for (const Point& point : points_) {
    if (isGap(point)) {
      columns_[last_column_].ends_in_gap = true;
    } else {
      addToColumn(point);
    }
  }
  points_ = {};
}

void Decimator::addToColumn(const Point& point) {
  if (inside_from_ < point.x && point.x < inside_to_) {
    columns_[last_column_].add(point);  // mostly so: points come one after another
    return;
  }
  const auto count = static_cast<double>(column_count_);
  while (point.x < begin_) {
    widen(true);
  }
  while (point.x - begin_ > width_ * count) {
    widen(false);
  }
  last_column_ = columnOf(point.x);
  columns_[last_column_].add(point);
  // The edges themselves are left to the division that decides.
  constexpr double edge = 1e-6;
  const auto column = static_cast<double>(last_column_);
  inside_from_ = begin_ + width_ * (column + edge);
  inside_to_ = begin_ + width_ * (column + 1 - edge);
}

std::size_t Decimator::columnOf(double x) const {
  const auto column = static_cast<std::size_t>(std::max((x - begin_) / width_, 0.0));
  return std::min(column, column_count_ - 1);
}

/// Makes columns twice as wide, with room on the right or on the left.
void Decimator::widen(bool to_the_left) {
  std::vector<Column> wider(column_count_);
  const std::size_t shift = to_the_left ? column_count_ : 0;
  for (std::size_t i = 0; i < column_count_; ++i) {
    wider[(i + shift) / 2].append(columns_[i]);
  }
  if (to_the_left) {
    begin_ -= width_ * static_cast<double>(column_count_);
  }
  width_ *= 2;
  last_column_ = (last_column_ + shift) / 2;
  columns_ = std::move(wider);
  inside_from_ = 1;
  inside_to_ = 0;
}

std::vector<Point> Decimator::points() const {
  std::vector<Point> points = points_;
  const auto add = [&](const Point& point) {
    const bool is_new = points.empty() || isGap(points.back()) || points.back().x != point.x ||
                        points.back().y != point.y;
    if (is_new) {
      points.push_back(point);
    }
  };
  for (const Column& column : columns_) {
    if (column.is_empty) {
      continue;
    }
    const bool falls_first = column.lowest.x < column.highest.x;
    add(column.first);
    add(falls_first ? column.lowest : column.highest);
    add(falls_first ? column.highest : column.lowest);
    add(column.last);
    if (column.ends_in_gap) {
      points.push_back({column.last.x, no_number});
    }
  }
  return points;
}

}  // namespace mdf_tools
