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
  addFrom(0);
}

Series::Series(Source source, ColumnType type, Outline outline)
    : source_(std::move(source)), is_numeric_(isNumber(type)), outline_(std::move(outline)) {}

void Series::addFrom(std::size_t bucket) {
  source_({bucket * Pyramid::bucket_size},
          [this](const std::vector<double>& times, const ColumnData& values) {
            outline_.add(times, values);
          });
  outline_.finish();
}

/// Whether full buckets are the same when they are read again.
bool Series::areSame(std::size_t begin, std::size_t end, bool in_order) const {
  Outline again = outline_.from(begin);
  source_(recordsOf(begin, end), [&](const std::vector<double>& times, const ColumnData& values) {
    again.add(times, values);
  });
  return again.fullBuckets() == end - begin && outline_.agrees(begin, again) &&
         (!in_order || again.axis().outOfOrder() == 0);
}

/// Where the last records are out of order, their room may have been taken before their contents.
bool Series::goOn() {
  constexpr std::size_t last = 16;
  const std::size_t full = outline_.fullBuckets();
  if (full == 0 || !areSame(full - std::min(full, last), full, true) ||
      !areSame(full / 2, full / 2 + 1, false) || !areSame(0, 1, false)) {
    return false;
  }
  samples_ = {};
  outline_.reopen();
  addFrom(full);
  return true;
}

SampleRange Series::recordsOf(std::size_t begin, std::size_t end) const {
  return {begin * Pyramid::bucket_size,
          std::min<std::uint64_t>(end * Pyramid::bucket_size, axis().records())};
}

bool Series::areKept(std::size_t begin, std::size_t end) const {
  return samples_.begin <= begin && end <= samples_.end;
}

Series::Samples Series::read(std::size_t begin, std::size_t end) const {
  Samples samples{begin, end, {}, {}};
  const SampleRange range = recordsOf(begin, end);
  samples.times.reserve(static_cast<std::size_t>(range.end - range.begin));
  samples.numbers.reserve(samples.times.capacity());
  TimeOrder order(axis().begin(begin));
  source_(range, [&](const std::vector<double>& times, const ColumnData& values) {
    const std::vector<double> numbers = values.reals();
    for (std::size_t row = 0; row < times.size(); ++row) {
      samples.numbers.push_back(order.take(times[row]) ? numbers[row] : Extent::none);
      samples.times.push_back(std::max(order.latest(), axis().first()));
    }
  });
  return samples;
}

/// The samples of buckets, with some around them to be had the next time.
const Series::Samples& Series::samples(std::size_t begin, std::size_t end) {
  if (!areKept(begin, end)) {
    const std::size_t around = (std::max(end - begin, buckets_kept) - (end - begin)) / 2;
    samples_ = read(begin - std::min(begin, around), std::min(axis().buckets(), end + around));
  }
  return samples_;
}

Trace Series::trace(const Window& window) {
  const std::size_t reaching = axis().firstReaching(window.from);
  const std::size_t begin = reaching - std::min<std::size_t>(reaching, 1);
  const std::size_t end = std::min(axis().firstAfter(window.to) + 1, axis().buckets());
  if (begin >= end || axis().isEmpty()) {
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
    const double time = std::max(axis().begin(bucket), axis().first());
    const double pixel = std::floor((time - window.from) / width);
    const std::size_t next =
        std::clamp(axis().firstAfter(window.from + (pixel + 1) * width), bucket + 1, end);
    trace.add(time, axis().end(next - 1), outline_.pyramid().of(bucket, next));
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
  const std::size_t begin = axis().firstReaching(from);
  const std::size_t end = std::min(axis().firstAfter(to), axis().buckets());
  if (begin >= end) {
    return {};
  }
  Extent extent = edge(begin, from, to);
  if (end - begin > 2) {
    extent.append(outline_.pyramid().of(begin + 1, end - 1));
  }
  if (end - begin > 1) {
    extent.append(edge(end - 1, from, to));
  }
  return extent;
}

/// The last sample up to a time in some buckets.
std::optional<SampleAt> Series::lastIn(std::size_t begin, std::size_t end, double time) const {
  TimeOrder order(axis().begin(begin));
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

std::optional<SampleAt> Series::at(double time) const {
  const std::size_t end = std::min(axis().firstAfter(time), axis().buckets());
  if (end == 0 || axis().isEmpty()) {
    return std::nullopt;
  }
  const std::size_t begin = end - std::min<std::size_t>(end, 2);
  std::optional<SampleAt> found = lastIn(begin, end, time);
  if (found || begin == 0) {
    return found;
  }
  // All of these are out of order: the latest time is that of a sample long before.
  const std::size_t latest = axis().firstReaching(axis().begin(begin));
  return lastIn(latest, latest + 1, time);
}

std::size_t Series::size() const {
  const auto kept =
      static_cast<std::size_t>(std::min<std::uint64_t>(axis().records(), 2 * most_kept));
  return sizeof(Series) + outline_.size() + (is_numeric_ ? kept * 2 * sizeof(double) : 0);
}

}  // namespace mdf_tools
