#include "series.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace mdf_tools {

namespace {

/// Up to so many samples are looked at one by one for a picture.
constexpr std::size_t most_samples = std::size_t{1} << 18U;
/// A window that moves is often read with so much before and after it.
constexpr std::size_t most_kept = std::size_t{1} << 19U;

constexpr std::size_t buckets_of_samples = most_samples / Pyramid::bucket_size;
constexpr std::size_t buckets_kept = most_kept / Pyramid::bucket_size;

}  // namespace

Series::Series(Source source, ColumnType type)
    : source_(std::move(source)), is_numeric_(isNumber(type)) {
  source_({}, [this](const std::vector<double>& times, const ColumnData& values) {
    if (is_numeric_) {
      add(times, values);
    } else {
      addTexts(times, values);
    }
  });
  pyramid_.finish();
}

void Series::add(const std::vector<double>& times, const ColumnData& values) {
  const std::vector<double> numbers = values.reals();
  for (std::size_t row = 0; row < times.size(); ++row) {
    pyramid_.add(axis_.add(times[row]) ? numbers[row] : Extent::none);
  }
}

void Series::addTexts(const std::vector<double>& times, const ColumnData& values) {
  std::string text;
  for (std::size_t row = 0; row < times.size(); ++row) {
    if (!axis_.add(times[row])) {
      continue;
    }
    std::uint32_t code = Bands::no_text;
    if (values.isValid(row)) {
      text.clear();
      values.print(row, text);
      code = bands_.codeOf(text);
    }
    bands_.add(times[row], code);
  }
}

SampleRange Series::recordsOf(std::size_t begin, std::size_t end) const {
  return {begin * Pyramid::bucket_size,
          std::min<std::uint64_t>(end * Pyramid::bucket_size, axis_.records())};
}

bool Series::areKept(std::size_t begin, std::size_t end) const {
  return samples_.begin <= begin && end <= samples_.end;
}

Series::Samples Series::read(std::size_t begin, std::size_t end) const {
  Samples samples{begin, end, {}, {}};
  TimeOrder order(axis_.begin(begin));
  source_(recordsOf(begin, end), [&](const std::vector<double>& times, const ColumnData& values) {
    const std::vector<double> numbers = values.reals();
    for (std::size_t row = 0; row < times.size(); ++row) {
      samples.numbers.push_back(order.take(times[row]) ? numbers[row] : Extent::none);
      samples.times.push_back(std::max(order.latest(), axis_.first()));
    }
  });
  return samples;
}

/// The samples of buckets, with some around them to be had the next time.
const Series::Samples& Series::samples(std::size_t begin, std::size_t end) {
  if (!areKept(begin, end)) {
    const std::size_t around = (std::max(end - begin, buckets_kept) - (end - begin)) / 2;
    samples_ = read(begin - std::min(begin, around), std::min(axis_.buckets(), end + around));
  }
  return samples_;
}

Trace Series::trace(const Window& window) {
  const std::size_t reaching = axis_.firstReaching(window.from);
  const std::size_t begin = reaching - std::min<std::size_t>(reaching, 1);
  const std::size_t end = std::min(axis_.firstAfter(window.to) + 1, axis_.buckets());
  if (begin >= end || axis_.isEmpty()) {
    return {};
  }
  if (end - begin > std::max(buckets_of_samples, window.pixels)) {
    return coarseTrace(begin, end, window);
  }
  const Samples& read = samples(begin, end);
  // The line goes on to the samples beside the window.
  const std::vector<double>& times = read.times;
  auto first = std::lower_bound(times.begin(), times.end(), window.from);
  auto last = std::upper_bound(first, times.end(), window.to);
  first -= first == times.begin() ? 0 : 1;
  last += last == times.end() ? 0 : 1;
  const auto numbers = read.numbers.begin();
  return traceOf({first, last},
                 {numbers + (first - times.begin()), numbers + (last - times.begin())}, window);
}

/// A pixel begins with the first bucket that begins in it.
Trace Series::coarseTrace(std::size_t begin, std::size_t end, const Window& window) const {
  Trace trace;
  trace.is_exact = false;
  const double width = (window.to - window.from) / static_cast<double>(window.pixels);
  for (std::size_t bucket = begin; bucket < end;) {
    const double time = std::max(axis_.begin(bucket), axis_.first());
    const double pixel = std::floor((time - window.from) / width);
    const std::size_t next =
        std::clamp(axis_.firstAfter(window.from + (pixel + 1) * width), bucket + 1, end);
    trace.add(time, axis_.end(next - 1), pyramid_.of(bucket, next));
    bucket = next;
  }
  return trace;
}

/// What the samples of a bucket between two times are like.
Extent Series::edge(std::size_t bucket, double from, double to) const {
  const Samples again = areKept(bucket, bucket + 1) ? Samples() : read(bucket, bucket + 1);
  const Samples& all = areKept(bucket, bucket + 1) ? samples_ : again;
  const std::size_t first = (bucket - all.begin) * Pyramid::bucket_size;
  const std::size_t last = std::min(first + Pyramid::bucket_size, all.times.size());
  Extent extent;
  for (std::size_t i = first; i < last; ++i) {
    if (all.times[i] >= from && all.times[i] <= to) {
      extent.append(Extent::of(&all.numbers[i], 1));
    }
  }
  return extent;
}

Extent Series::extent(double from, double to) const {
  const std::size_t begin = axis_.firstReaching(from);
  const std::size_t end = std::min(axis_.firstAfter(to), axis_.buckets());
  if (begin >= end) {
    return {};
  }
  Extent extent = edge(begin, from, to);
  if (end - begin > 2) {
    extent.append(pyramid_.of(begin + 1, end - 1));
  }
  if (end - begin > 1) {
    extent.append(edge(end - 1, from, to));
  }
  return extent;
}

std::optional<SampleAt> Series::at(double time) const {
  const std::size_t end = std::min(axis_.firstAfter(time), axis_.buckets());
  if (end == 0 || axis_.isEmpty()) {
    return std::nullopt;
  }
  const std::size_t begin = end - std::min<std::size_t>(end, 2);
  TimeOrder order(axis_.begin(begin));
  std::optional<SampleAt> found;
  source_(recordsOf(begin, end), [&](const std::vector<double>& times, const ColumnData& values) {
    for (std::size_t row = 0; row < times.size(); ++row) {
      if (order.take(times[row]) && times[row] <= time) {
        found = SampleAt{times[row], {}};
        values.print(row, found->value);
      }
    }
  });
  return found;
}

std::size_t Series::size() const {
  const auto kept =
      static_cast<std::size_t>(std::min<std::uint64_t>(axis_.records(), 2 * most_kept));
  return sizeof(Series) + axis_.size() + pyramid_.size() + bands_.size() +
         (is_numeric_ ? kept * 2 * sizeof(double) : 0);
}

}  // namespace mdf_tools
