#ifndef MDF_TOOLS_VIEWING_SERIES_STORE_H_
#define MDF_TOOLS_VIEWING_SERIES_STORE_H_

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <tuple>

#include "series.h"

namespace mdf_tools {

/// Which series is meant: of which file, since it was opened last, and which column of which table.
struct SeriesKey {
  std::size_t file = 0;
  std::size_t revision = 0;
  std::size_t table = 0;
  std::size_t column = 0;

  bool operator==(const SeriesKey& other) const {
    return std::tie(file, revision, table, column) ==
           std::tie(other.file, other.revision, other.table, other.column);
  }
};

/// Series that were built, as far as memory allows: those not used for longest go first. Any number
/// of threads may use it.
class SeriesStore {
 public:
  /// @param most bytes of memory for all series; the one used last stays in any case.
  explicit SeriesStore(std::size_t most) : most_(most) {}

  /// The series, which is built if it is not there.
  std::shared_ptr<Series> get(const SeriesKey& key,
                              const std::function<std::shared_ptr<Series>()>& build);

  /// Forgets the series of a file.
  void forget(std::size_t file);

  /// Bytes of memory of all series.
  std::size_t size() const;

 private:
  struct Entry {
    SeriesKey key;
    std::shared_ptr<Series> series;
  };

  std::shared_ptr<Series> find(const SeriesKey& key);
  void add(const SeriesKey& key, const std::shared_ptr<Series>& series);
  std::size_t sizeOfAll() const;

  std::size_t most_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;  ///< the one used last comes first
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERIES_STORE_H_
