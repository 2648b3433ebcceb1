#include "memory_samples.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>

namespace mdf_tests {

using namespace mdf_tools;

namespace {

using Fill = std::function<void(std::size_t begin, std::size_t count, ColumnData& column)>;

Series::Source inPieces(const MemorySamples& samples, ColumnType type, const Fill& fill) {
  return [&samples, type, fill](const SampleRange& range, const SampleVisitor& visit) {
    constexpr std::size_t piece = 1000;
    const std::vector<double>& times = samples.times;
    const auto end = static_cast<std::size_t>(std::min<std::uint64_t>(range.end, times.size()));
    for (auto begin = static_cast<std::size_t>(range.begin); begin < end; begin += piece) {
      const std::size_t count = std::min(piece, end - begin);
      samples.read += count;
      ColumnData column(type);
      fill(begin, count, column);
      visit({&times[begin], &times[begin] + count}, column);
    }
  };
}

}  // namespace

Series::Source MemorySamples::source() const {
  return inPieces(*this, ColumnType::float64,
                  [this](std::size_t begin, std::size_t count, ColumnData& column) {
                    std::copy_n(&numbers[begin], count, column.extend<double>(count));
                  });
}

Series::Source MemorySamples::texts() const {
  return inPieces(*this, ColumnType::text,
                  [this](std::size_t begin, std::size_t count, ColumnData& column) {
                    for (std::size_t i = begin; i < begin + count; ++i) {
                      if (std::isfinite(numbers[i])) {
                        column.add(std::string(1, std::to_string(std::lround(numbers[i])).back()));
                      } else {
                        column.addNulls(1);
                      }
                    }
                  });
}

MemorySamples MemorySamples::first(std::size_t count) const {
  const auto some = static_cast<std::ptrdiff_t>(count);
  return {{times.begin(), times.begin() + some}, {numbers.begin(), numbers.begin() + some}};
}

MemorySamples randomSamples(std::mt19937& random, std::size_t count, Times kind) {
  MemorySamples samples;
  double time = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const bool is_burst = kind == Times::in_bursts && random() % 500 == 0;
    const bool is_still = kind == Times::equal && random() % 100 != 0;
    time += is_burst ? 1000 : is_still ? 0 : 0.5;
    time -= kind == Times::falling && random() % 300 == 0 ? 40 : 0;
    samples.times.push_back(kind == Times::falling && random() % 1000 == 1 ? gap : time);
    const auto what = random() % 50;
    samples.numbers.push_back(what == 0   ? gap
                              : what == 1 ? infinity
                                          : static_cast<double>(random() % 100000) - 50000);
  }
  samples.times.front() = 0;
  return samples;
}

}  // namespace mdf_tests
