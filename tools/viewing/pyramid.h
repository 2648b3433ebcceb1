#ifndef MDF_TOOLS_VIEWING_PYRAMID_H_
#define MDF_TOOLS_VIEWING_PYRAMID_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "extent.h"

namespace mdf_tools {

/// What the samples of a channel are like, in buckets of so many, in larger ones of these, and so
/// on, so that any stretch of them is told from few.
class Pyramid {
 public:
  static constexpr std::size_t bucket_size = 128;  ///< samples of the smallest buckets

  /// Adds the next samples.
  void add(const double* numbers, std::size_t count);
  /// Has the last samples told, too; before others are added, it must be opened again.
  void finish();
  /// Forgets the samples of a last bucket that is not full.
  void reopen();

  /// How many buckets there are; the last one may have fewer samples.
  std::size_t buckets() const { return levels_[0].size(); }
  const Extent& bucket(std::size_t index) const { return levels_[0][index]; }
  /// What the samples of buckets are like, from one up to another that is not included.
  Extent of(std::size_t begin, std::size_t end) const;

  /// Bytes of memory.
  std::size_t size() const;

 private:
  friend class OutlineFile;

  static constexpr std::size_t fan = 16;  ///< buckets that make a larger one

  void closeBucket(const Extent& extent);

  double pending_[bucket_size] = {};
  std::size_t pending_count_ = 0;
  std::vector<std::vector<Extent>> levels_ = std::vector<std::vector<Extent>>(1);
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_PYRAMID_H_
