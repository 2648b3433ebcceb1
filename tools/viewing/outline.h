#ifndef MDF_TOOLS_VIEWING_OUTLINE_H_
#define MDF_TOOLS_VIEWING_OUTLINE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "axis.h"
#include "bands.h"
#include "pyramid.h"
#include "reader/columns/column_data.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What is kept of a column: where its records stand in time, and what they are like.
class Outline {
 public:
  Outline() = default;

  /// Adds what comes after.
  void add(const std::vector<double>& times, const ColumnData& values);
  /// Has the last samples told, too.
  void finish() { pyramid_.finish(); }
  /// Forgets the samples of a last bucket that is not full, so that more can be added.
  void reopen();

  const Axis& axis() const { return axis_; }
  /// Of texts, it tells their codes.
  const Pyramid& pyramid() const { return pyramid_; }
  /// What texts change to; empty for numbers.
  const Bands& bands() const { return bands_; }

  /// Buckets that are full.
  std::size_t fullBuckets() const {
    return static_cast<std::size_t>(axis_.records() / Pyramid::bucket_size);
  }
  /// An outline to which samples from a bucket on can be added, to compare.
  Outline from(std::size_t bucket) const;
  /// Whether full buckets from one on are the same as those that were read again.
  bool agrees(std::size_t bucket, const Outline& again) const;

  /// Bytes of memory.
  std::size_t size() const { return axis_.size() + pyramid_.size() + bands_.size(); }

 private:
  friend class OutlineFile;

  void addNumbers(const std::vector<double>& times, std::vector<double> numbers);
  void addTexts(const std::vector<double>& times, const ColumnData& values);

  Axis axis_;
  Pyramid pyramid_;
  Bands bands_;
  std::size_t runs_before_ = 0;  ///< those of the bands when the last bucket began
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_OUTLINE_H_
