#ifndef MDF_READER_COLUMNS_TABLES_H_
#define MDF_READER_COLUMNS_TABLES_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../blocks/finding.h"
#include "../data/record_span.h"
#include "batch.h"
#include "query.h"

namespace mdf_reader {

class Column;
class InputFile;
class Records;

/// Takes sentences for people that are not about a problem.
using NoteSink = std::function<void(const std::string& sentence)>;

/// A channel group as batches of columns, the master channel's first, or one element of an array in
/// it whose elements have records of their own.
class Table {
 public:
  ~Table();
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  const TableHead& head() const { return *head_; }
  const ChannelGroup& group() const { return *head_->group; }

  /// The next records; null after the last ones. A batch lasts until the next call. It has at least
  /// one row and at most Query::batch_rows, fewer where rows are long.
  const Batch* next();
  /// Gives away the batch of the last call of next(), to be kept as long as wanted. Null where that
  /// gave none.
  std::unique_ptr<const Batch> take();

 private:
  friend class Tables;

  /// What its rows are made of.
  struct Source {
    std::shared_ptr<Records> of;  ///< what the records are of
    std::unique_ptr<RecordCursor> records;
    std::vector<Column> columns;
    bool has_more = false;  ///< than the query's limits allow, see Tables::all()
  };

  /// @param head what is known but for its columns.
  Table(TableHead head, Source source, const Query& query);

  bool hasRange() const { return !has_more_ && (query_.from || query_.to); }
  bool findRun();
  bool readOn();
  RecordSpan nextRecords();
  void skipFirst(std::uint64_t count);
  void narrow();
  double masterAt(std::uint64_t number);
  void skip(std::size_t count);
  bool isInRange(std::size_t index) const;
  bool isNext() const;
  void add();

  std::shared_ptr<const TableHead> head_;
  std::shared_ptr<Records> of_;
  std::vector<Column> columns_;
  std::unique_ptr<RecordCursor> records_;
  bool has_more_;
  const Query& query_;
  std::size_t batch_rows_;
  std::uint64_t position_ = 0;      ///< number of the next record to come
  std::uint64_t end_ = UINT64_MAX;  ///< numbers from here on are not wanted
  std::size_t stride_ = 1;
  std::unique_ptr<Batch> batch_;  ///< null where it was given away
  std::size_t rows_before_ = 0;   ///< of the batch that was, or as many as are expected
  bool has_texts_ = false;
  std::size_t most_at_once_ = 1;  ///< records, whose values fit the processor's cache
  std::size_t at_once_ = 1;       ///< the same, by the length of the texts so far

  RecordSpan pending_;                     ///< records that were read, and not yet taken or skipped
  std::size_t run_ = 0;                    ///< how many of them are wanted
  ColumnData masters_{ColumnType::uint8};  ///< their master channel, where its values are limited
  std::size_t master_row_ = 0;             ///< the first one's
};

/// The tables of a file: its channel groups, except those that hold values of others and those
/// without a wanted channel. Memory does not grow with the samples.
class Tables {
 public:
  /// What it is given must outlast it.
  Tables(InputFile& file, const Query& query, const FindingSink& report, const NoteSink& note);
  ~Tables();
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  /// The next table, in place of the one before; null after the last one.
  Table* next();

  /// The table of a channel group of dataGroups(), in place of the one before and of next(); null
  /// where it has no columns. Groups are best read in the order of the file.
  Table* of(const DataGroup& data_group, const ChannelGroup& group);

  /// All tables at a time, in place of next(), to be read side by side: each reads the file by
  /// itself, and none may outlast this object. `first`, `last` and `stride` of the query hold for
  /// the base alone, and where records are looked up for `from` and `to`, one more comes on each
  /// side; where they are not, all do.
  /// @param base a table that comes even where it has no more to show than its master; null for
  /// none.
  std::vector<std::unique_ptr<Table>> all(const ChannelGroup* base);

  /// The channel groups of the file, by their data groups, those of array elements too.
  const std::vector<DataGroup>& dataGroups() const;

  /// What the header block of the file says.
  const Header& header() const;

  /// What is known of the first so many tables before records are read, whichever come next.
  std::vector<TableHead> heads(std::size_t most);

  /// How many tables with wanted channels there were so far.
  std::size_t count() const;

 private:
  friend void examineTables(InputFile& file, const FindingSink& report);
  class Walk;
  std::unique_ptr<Walk> walk_;
};

/// Goes over the records of a file as reading all its tables does, and reports what that would, but
/// for the conversions. Of the values those alone are looked for that do not stand in the records.
void examineTables(InputFile& file, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_TABLES_H_
