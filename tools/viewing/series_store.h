#ifndef MDF_TOOLS_VIEWING_SERIES_STORE_H_
#define MDF_TOOLS_VIEWING_SERIES_STORE_H_

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>

#include "series.h"

namespace mdf_tools {

/// Which series is meant: of which file, and which column of which table.
struct SeriesKey {
  std::size_t file = 0;
  std::size_t table = 0;
  std::size_t column = 0;

  bool operator==(const SeriesKey& other) const {
    return std::tie(file, table, column) == std::tie(other.file, other.table, other.column);
  }
};

/// A series, and what it was built from.
struct KeptSeries {
  Series series;
  std::string identity;      ///< what its column is
  std::size_t revision = 0;  ///< how often the file had changed
  bool is_cached = false;
};

/// Series that were built, as far as memory allows: those not used for longest go first. Any number
/// of threads may use it.
class SeriesStore {
 public:
  /// @param most bytes of memory for all series; the one used last stays in any case.
  explicit SeriesStore(std::size_t most) : most_(most) {}

  /// The series; null if it is not there.
  std::shared_ptr<KeptSeries> find(const SeriesKey& key);
  /// Takes a series, which does not grow as long as it is here.
  void add(const SeriesKey& key, const std::shared_ptr<KeptSeries>& series);
  /// Forgets a series.
  void forget(const SeriesKey& key);

  /// Forgets the series of a file.
  void forget(std::size_t file);

  /// Bytes of memory of all series.
  std::size_t size() const;

 private:
  struct Entry {
    SeriesKey key;
    std::shared_ptr<KeptSeries> series;
  };

  std::size_t sizeOfAll() const;

  std::size_t most_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;  ///< the one used last comes first
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERIES_STORE_H_
