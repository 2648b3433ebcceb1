#include "outline_file.h"

#include <libdeflate.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "framework/wire.h"

namespace mdf_tools {

using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::string_view letters = "MDFVIEW\n";
constexpr std::uint64_t version = 1;
constexpr std::size_t number_bytes = 8;
constexpr std::size_t head_bytes = 4 * number_bytes;
constexpr std::size_t extent_numbers = 8;
constexpr double infinity = std::numeric_limits<double>::infinity();

std::uint64_t checksumOf(std::string_view bytes) {
  return libdeflate_crc32(0, bytes.data(), bytes.size());
}

template <class Number>
void addNumber(Number number, std::string& bytes) {
  static_assert(sizeof number == number_bytes);
  char stored[number_bytes];
  storeLe(stored, number);
  bytes.append(stored, number_bytes);
}

/// Whether samples can be like this.
bool isPossible(const Extent& extent, std::uint64_t samples) {
  const auto isWithin = [&](double number) {
    return extent.minimum <= number && number <= extent.maximum;
  };
  return extent.values <= samples && extent.gaps == samples - extent.values &&
         (extent.values == 0 || (isWithin(extent.first) && isWithin(extent.last) &&
                                 std::isfinite(extent.minimum) && std::isfinite(extent.maximum)));
}

}  // namespace

/// Takes numbers and texts off the front of bytes. Where there are too few, it fails for good.
class OutlineFile::Taker {
 public:
  explicit Taker(std::string_view bytes) : bytes_(bytes) {}

  std::string_view text(std::uint64_t length) {
    if (length > bytes_.size()) {
      fail();
    }
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(length, bytes_.size()));
    const std::string_view found = bytes_.substr(0, taken);
    bytes_.remove_prefix(taken);
    return found;
  }
  template <class Number>
  Number number() {
    const std::string_view found = text(sizeof(Number));
    return has_failed_ ? Number{} : loadLe<Number>(found.data());
  }
  std::uint64_t count() { return number<std::uint64_t>(); }

  /// Whether so many things of some bytes each can still come.
  bool has(std::uint64_t things, std::size_t bytes) {
    if (things > bytes_.size() / bytes) {
      fail();
    }
    return !has_failed_;
  }
  void fail() {
    has_failed_ = true;
    bytes_ = {};
  }
  /// Whether nothing failed, and nothing is left.
  bool isComplete() const { return !has_failed_ && bytes_.empty(); }

  void take(Axis& axis);
  void take(Pyramid& pyramid, std::uint64_t records);
  void take(Bands& bands);

 private:
  Extent extent();
  void takeRuns(Bands& bands, std::uint64_t texts);

  std::string_view bytes_;
  bool has_failed_ = false;
};

void OutlineFile::Taker::take(Axis& axis) {
  axis.records_ = count();
  axis.out_of_order_ = count();
  axis.out_of_order_before_ = count();
  axis.first_ = number<double>();
  const auto latest = number<double>();
  const std::uint64_t rest = axis.records_ % Pyramid::bucket_size;
  const std::uint64_t buckets = axis.records_ / Pyramid::bucket_size + (rest == 0 ? 0 : 1);
  if (!has(buckets, number_bytes)) {
    return;
  }
  axis.begins_.reserve(static_cast<std::size_t>(buckets));
  for (std::uint64_t i = 0; i < buckets; ++i) {
    axis.begins_.push_back(number<double>());
  }
  axis.order_ = TimeOrder(latest);
  // Comparisons with what is no number do not hold.
  double before = -infinity;
  bool are_in_order = axis.first_ <= latest && latest < infinity;
  for (const double begin : axis.begins_) {
    are_in_order = are_in_order && begin >= before && (begin == -infinity || begin >= axis.first_);
    before = begin;
  }
  const bool begins_before_all = axis.begins_.empty() || axis.begins_.front() == -infinity;
  if (!are_in_order || before > latest || !begins_before_all ||
      axis.isEmpty() != (latest == -infinity) || axis.out_of_order_ > axis.records_ ||
      axis.out_of_order_before_ > axis.out_of_order_) {
    fail();
  }
}

Extent OutlineFile::Taker::extent() {
  Extent extent;
  extent.values = count();
  extent.gaps = count();
  for (double* const member : {&extent.minimum, &extent.maximum, &extent.first, &extent.last,
                               &extent.mean, &extent.squares}) {
    *member = number<double>();
  }
  return extent;
}

/// Larger buckets are made again.
void OutlineFile::Taker::take(Pyramid& pyramid, std::uint64_t records) {
  constexpr std::uint64_t full = Pyramid::bucket_size;
  if (!has(records / full, extent_numbers * number_bytes)) {
    return;
  }
  for (std::uint64_t left = records; left > 0; left -= std::min(left, full)) {
    const Extent bucket = extent();
    if (!isPossible(bucket, std::min(left, full))) {
      return fail();
    }
    pyramid.closeBucket(bucket);
  }
}

void OutlineFile::Taker::takeRuns(Bands& bands, std::uint64_t texts) {
  const std::uint64_t runs = count();
  if (runs > Bands::most_runs + 1 || !has(runs, 2 * number_bytes)) {
    return fail();
  }
  double before = -infinity;
  for (std::uint64_t i = 0; i < runs; ++i) {
    const auto time = number<double>();
    const std::uint64_t code = count();
    const bool is_known = code < texts || code == Bands::no_text || code == Bands::several;
    if (!is_known || !(time >= before) || !std::isfinite(time)) {
      return fail();
    }
    bands.runs_.push_back({time, static_cast<std::uint32_t>(code)});
    before = time;
  }
}

void OutlineFile::Taker::take(Bands& bands) {
  const std::uint64_t texts = count();
  if (texts > Bands::most_texts || !has(texts, number_bytes)) {
    return fail();
  }
  for (std::uint64_t i = 0; i < texts; ++i) {
    const std::uint64_t length = count();
    const std::string_view shown = text(std::min<std::uint64_t>(length, Bands::longest_text));
    if (length > Bands::longest_text || bands.codeOf(shown) != i) {
      return fail();
    }
  }
  takeRuns(bands, texts);
}

/// Adds the parts of an outline to bytes.
class OutlineFile::Maker {
 public:
  explicit Maker(std::string& bytes) : bytes_(bytes) {}

  void addCount(std::uint64_t count) { addNumber(count, bytes_); }
  void addText(std::string_view text) {
    addCount(text.size());
    bytes_ += text;
  }
  void add(const Axis& axis) {
    addCount(axis.records_);
    addCount(axis.out_of_order_);
    addCount(axis.out_of_order_before_);
    addNumber(axis.first_, bytes_);
    addNumber(axis.last(), bytes_);
    for (const double begin : axis.begins_) {
      addNumber(begin, bytes_);
    }
  }
  void add(const Pyramid& pyramid) {
    for (std::size_t i = 0; i < pyramid.buckets(); ++i) {
      const Extent& extent = pyramid.bucket(i);
      addCount(extent.values);
      addCount(extent.gaps);
      for (const double number : {extent.minimum, extent.maximum, extent.first, extent.last,
                                  extent.mean, extent.squares}) {
        addNumber(number, bytes_);
      }
    }
  }
  void add(const Bands& bands) {
    addCount(bands.texts_.size());
    for (const std::string& text : bands.texts_) {
      addText(text);
    }
    addCount(bands.runs_.size());
    for (const Bands::Run& run : bands.runs_) {
      addNumber(run.time, bytes_);
      addCount(run.code);
    }
  }

 private:
  std::string& bytes_;
};

std::string OutlineFile::withHead(std::string_view contents) {
  std::string bytes(letters);
  addNumber(version, bytes);
  addNumber(std::uint64_t{contents.size()}, bytes);
  addNumber(checksumOf(contents), bytes);
  return bytes.append(contents);
}

std::string OutlineFile::pack(std::string_view key, const Outline& outline) {
  std::string contents;
  contents.reserve(outline.size() + key.size());
  Maker maker(contents);
  maker.addText(key);
  maker.add(outline.axis_);
  maker.add(outline.pyramid_);
  maker.add(outline.bands_);
  maker.addCount(outline.runs_before_);
  return withHead(contents);
}

std::optional<Outline> OutlineFile::unpack(std::string_view bytes, std::string_view key) {
  Taker head(bytes.substr(0, head_bytes));
  const bool is_ours = head.text(letters.size()) == letters && head.count() == version;
  const std::string_view contents = bytes.substr(std::min(bytes.size(), head_bytes));
  if (!is_ours || head.count() != contents.size() || head.count() != checksumOf(contents)) {
    return std::nullopt;
  }
  Taker taker(contents);
  if (taker.text(taker.count()) != key) {
    return std::nullopt;
  }
  Outline outline;
  taker.take(outline.axis_);
  taker.take(outline.pyramid_, outline.axis_.records());
  taker.take(outline.bands_);
  const std::uint64_t runs_before = taker.count();
  if (!taker.isComplete() || runs_before > outline.bands_.runs()) {
    return std::nullopt;
  }
  outline.runs_before_ = static_cast<std::size_t>(runs_before);
  return outline;
}

}  // namespace mdf_tools
