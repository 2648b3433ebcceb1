#ifndef MDF_TOOLS_VIEWING_VIEWED_FILE_H_
#define MDF_TOOLS_VIEWING_VIEWED_FILE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "file_stamp.h"
#include "outline_cache.h"
#include "reader/summary/json_type.h"
#include "series_store.h"
#include "wrong_request.h"

namespace mdf_tools {

/// Which samples are wanted as a table.
struct CsvRequest {
  std::size_t table = 0;
  std::vector<std::size_t> columns;
  double from = 0;
  double to = 0;
};

/// A measurement file that is being looked at. Any number of threads may use it; they take turns.
/// A file that changes on the disk is opened again by refresh(); what was kept of one that has
/// grown is added to.
class ViewedFile {
 public:
  /// @param number its own among the files.
  /// @param store must outlast it, and so must the cache.
  /// @param cache where outlines are looked for and kept; null for nowhere.
  /// @throws Unreadable when it cannot be opened or is no file of MDF 4.
  ViewedFile(std::string path, std::size_t number, SeriesStore& store,
             OutlineCache* cache = nullptr);

  const std::string& path() const { return path_; }

  /// Opens the file again if it has changed since. Returns how often that was so.
  std::size_t refresh();

  /// What is in the file: facts, tables with their columns, events, attachments, findings so far.
  /// One line, made once for each revision.
  std::string describe();
  /// What `mdf check` finds in it: the first 1,000 of it, and how many there are.
  Json findings();
  /// What is told of a column.
  Json describeColumn(std::size_t table, std::size_t column);

  /// Does something with a column's series.
  /// @throws WrongRequest where there is no such column.
  void withSeries(std::size_t table, std::size_t column,
                  const std::function<void(Series& series)>& use);

  /// Frames of buses from a time on, so many at most.
  Json frames(std::optional<double> from, std::size_t most);

  /// Samples as comma-separated values.
  /// @throws WrongRequest where they are too many to be handed out at once.
  std::string csv(const CsvRequest& request);

 private:
  void open();
  const ViewedColumn& column(std::size_t table, std::size_t column) const;
  std::string identityOf(std::size_t table, std::size_t column) const;
  std::string place(std::size_t table, std::size_t column) const;
  std::string cacheKey(const std::string& identity) const;
  void cache(const SeriesKey& key, KeptSeries& kept);
  std::shared_ptr<KeptSeries> build(std::size_t table, std::size_t column);
  std::shared_ptr<KeptSeries> upToDate(std::size_t table, std::size_t column);
  Json tablesAsJson() const;
  Json facts();

  std::string path_;
  std::size_t number_;
  SeriesStore& store_;
  OutlineCache* cache_;
  std::mutex mutex_;
  std::mutex checking_;
  std::size_t revision_ = 0;
  FileStamp stamp_;
  bool is_at_rest_ = false;   ///< it had been left alone when it was opened, and can be opened now
  bool is_continued_ = true;  ///< the file was never in the way since it was opened
  std::unique_ptr<Measurement> file_;
  std::vector<ViewedTable> tables_;
  std::string description_;  ///< "" until somebody asks
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_VIEWED_FILE_H_
