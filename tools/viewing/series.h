#ifndef MDF_TOOLS_VIEWING_SERIES_H_
#define MDF_TOOLS_VIEWING_SERIES_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "outline.h"
#include "sample_reader.h"
#include "trace.h"

namespace mdf_tools {

/// A sample as it is shown at a cursor.
struct SampleAt {
  double time = 0;
  std::string value;  ///< "" where it is invalid
};

/// The samples of a column, ready to be looked at from any distance. It is built by reading the
/// column once; where few records are looked at, these are read again. One thread at a time.
class Series {
 public:
  /// Reads samples, of some records or of all.
  using Source = std::function<void(const SampleRange& range, const SampleVisitor& visit)>;

  /// Reads all samples.
  Series(Source source, ColumnType type);
  /// Takes what was kept of all samples before.
  Series(Source source, ColumnType type, Outline outline);

  /// Adds samples that have come since. False where those kept are not the same any more, as far as
  /// is seen from the first, the middle and the last of them: it can then not be used any longer.
  bool goOn();

  /// Whether it has numbers, or texts.
  bool isNumeric() const { return is_numeric_; }
  const Outline& outline() const { return outline_; }
  const Axis& axis() const { return outline_.axis(); }
  /// What the texts change to; empty for numbers.
  const Bands& bands() const { return outline_.bands(); }

  /// The curve of numbers, from the sample before the window to the one after it.
  Trace trace(const Window& window);
  /// What the samples from one time to another are like, both included.
  Extent extent(double from, double to) const;
  /// The last sample up to a time; nothing before the first one.
  std::optional<SampleAt> at(double time) const;

  /// Bytes of memory, those that samples read again may take included.
  std::size_t size() const;

 private:
  /// Samples that were read again.
  struct Samples {
    std::size_t begin = 0;  ///< their buckets
    std::size_t end = 0;
    std::vector<double> times;  ///< which do not fall
    std::vector<double> numbers;
  };

  std::optional<SampleAt> lastIn(std::size_t begin, std::size_t end, double time) const;
  void addFrom(std::size_t bucket);
  bool areSame(std::size_t begin, std::size_t end, bool in_order) const;
  SampleRange recordsOf(std::size_t begin, std::size_t end) const;
  bool areKept(std::size_t begin, std::size_t end) const;
  Samples read(std::size_t begin, std::size_t end) const;
  const Samples& samples(std::size_t begin, std::size_t end);
  Trace coarseTrace(std::size_t begin, std::size_t end, const Window& window) const;
  Extent edge(std::size_t bucket, double from, double to) const;

  Source source_;
  bool is_numeric_;
  Outline outline_;
  Samples samples_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERIES_H_
