#include "decimator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace mdf_tools {

namespace {

/// Computing with larger numbers than this overflows.
constexpr double most = 1e300;

bool canBeDrawn(double number) { return std::abs(number) <= most; }

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();

struct Ends {
  double lowest;
  double highest;
};

/// The lowest and the highest of at least one number. Lanes side by side let the compiler compare
/// several numbers at a time.
Ends endsOf(const double* y, std::size_t count) {
  constexpr std::size_t lanes = 8;
  std::array<double, lanes> lowest;
  std::array<double, lanes> highest;
  lowest.fill(y[0]);
  highest.fill(y[0]);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      lowest[lane] = y[i + lane] < lowest[lane] ? y[i + lane] : lowest[lane];
      highest[lane] = y[i + lane] > highest[lane] ? y[i + lane] : highest[lane];
    }
  }
  for (; i < count; ++i) {
    lowest[0] = std::min(lowest[0], y[i]);
    highest[0] = std::max(highest[0], y[i]);
  }
  return {*std::min_element(lowest.begin(), lowest.end()),
          *std::max_element(highest.begin(), highest.end())};
}

/// Whether all points are between two values of x, and can be drawn.
bool areBetween(const double* x, const double* y, std::size_t count, double from, double to) {
  unsigned others = 0;
  for (std::size_t i = 0; i < count; ++i) {
    others |= static_cast<unsigned>(!(from < x[i])) | static_cast<unsigned>(!(x[i] < to)) |
              static_cast<unsigned>(!canBeDrawn(y[i]));
  }
  return others == 0;
}

bool isGap(const Point& point) { return std::isnan(point.y); }

}  // namespace

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

/// Most points are neither lower nor higher than those before: that is seen of some at a time, and
/// which one it is only where it is one.
void Decimator::Column::add(const double* x, const double* y, std::size_t count) {
  const Ends ends = endsOf(y, count);
  if (is_empty || ends.lowest < lowest.y || ends.highest > highest.y) {
    for (std::size_t i = 0; i < count; ++i) {
      add({x[i], y[i]});
    }
  }
  last = {x[count - 1], y[count - 1]};
  ends_in_gap = false;
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

void Decimator::add(const double* x, const double* y, std::size_t count) {
  constexpr std::size_t at_once = 64;
  for (std::size_t begin = 0; begin < count; begin += at_once) {
    const std::size_t some = std::min(at_once, count - begin);
    if (!columns_.empty() && areBetween(x + begin, y + begin, some, inside_from_, inside_to_)) {
      columns_[last_column_].add(x + begin, y + begin, some);
      continue;
    }
    for (std::size_t i = begin; i < begin + some; ++i) {
      add(x[i], y[i]);
    }
  }
}

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
