#include "master_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace mdf_reader {

namespace {

/// Guesses before bisection takes over.
constexpr int most_guesses = 12;

using Seen = std::map<std::uint64_t, double>::value_type;

/// How far after the left of two records a straight line through both has a value.
std::uint64_t distance(const Seen& left, const Seen& right, double value) {
  const double part = (value - left.second) / (right.second - left.second);
  const std::uint64_t width = right.first - left.first;
  if (!(part > 0 && part < 1)) {
    return part >= 1 ? width : part <= 0 ? 0 : width / 2;
  }
  return static_cast<std::uint64_t>(std::ceil(part * static_cast<double>(width)));
}

}  // namespace

MasterSearch::MasterSearch(std::uint64_t begin, std::uint64_t end, MasterAt master)
    : begin_(begin), end_(end), master_(std::move(master)) {
  value(begin_);
  value(end_ - 1);
}

std::uint64_t MasterSearch::firstFrom(double limit) {
  return first(limit, [limit](double value) { return value >= limit; });
}

std::uint64_t MasterSearch::firstAfter(double limit) {
  return first(limit, [limit](double value) { return value > limit; });
}

void MasterSearch::look() {
  constexpr std::uint64_t looks = 16;
  for (std::uint64_t i = 1; i < looks; ++i) {
    value(begin_ + (end_ - begin_) / looks * i);
  }
}

bool MasterSearch::isGrowing() const {
  const auto falls = [](const Seen& left, const Seen& right) {
    return !(left.second <= right.second);
  };
  return !std::isnan(seen_.begin()->second) &&
         std::adjacent_find(seen_.begin(), seen_.end(), falls) == seen_.end();
}

double MasterSearch::value(std::uint64_t number) {
  const auto [place, is_new] = seen_.try_emplace(number, 0.0);
  if (is_new) {
    place->second = master_(number);
  }
  return place->second;
}

/// Keeps two records: the limit is reached after the left one, and not after the right one. Guesses
/// that hit the same side again go further and further from it, so that both come near.
template <class IsReached>
std::uint64_t MasterSearch::first(double limit, const IsReached& is_reached) {
  auto right = std::find_if(seen_.begin(), seen_.end(),
                            [&](const Seen& each) { return is_reached(each.second); });
  if (right == seen_.begin() || right == seen_.end()) {
    return right == seen_.end() ? end_ : begin_;
  }
  auto left = std::prev(right);
  bool was_right = false;
  std::uint64_t times = 1;
  for (int guesses = 0; right->first - left->first > 1; ++guesses) {
    const std::uint64_t width = right->first - left->first;
    std::uint64_t step = width / 2;
    if (guesses < most_guesses) {
      const std::uint64_t guess =
          std::clamp<std::uint64_t>(distance(*left, *right, limit), 1, width - 1);
      step = was_right ? width - std::min(width - 1, (width - guess) * times)
                       : std::min(width - 1, guess * times);
    }
    const std::uint64_t number = left->first + step;
    const bool is_right = is_reached(value(number));
    times = is_right == was_right ? 2 * times : 1;
    was_right = is_right;
    (is_right ? right : left) = seen_.find(number);
  }
  return right->first;
}

}  // namespace mdf_reader
