#ifndef MDF_READER_VALUES_TABLE_H_
#define MDF_READER_VALUES_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "../blocks/finding.h"
#include "../data/records.h"
#include "../model/description.h"
#include "column.h"
#include "conversion.h"
#include "selection.h"

namespace mdf_reader {

class InputFile;

/// Takes sentences for people that are not about a problem.
using NoteSink = std::function<void(const std::string& sentence)>;

/// The samples of one channel group, or of one element of an array in it whose elements have
/// records of their own: a column for each wanted channel, the master channel's first.
class Table {
 public:
  Table(const ChannelGroup& group, std::vector<Column> columns, bool has_master)
      : group_(group), columns_(std::move(columns)), has_master_(has_master) {}

  const ChannelGroup& group() const { return group_; }
  std::vector<Column>& columns() { return columns_; }
  const std::vector<Column>& columns() const { return columns_; }

  /// Whether the first column is the master channel's.
  bool hasMaster() const { return has_master_; }

 private:
  const ChannelGroup& group_;
  std::vector<Column> columns_;
  bool has_master_;
};

/// Receives a table, and then each of its samples.
class TableVisitor {
 public:
  TableVisitor() = default;
  virtual ~TableVisitor() = default;
  TableVisitor(const TableVisitor&) = delete;
  TableVisitor& operator=(const TableVisitor&) = delete;

  virtual void begin(Table& table) = 0;
  /// Says whether to go on.
  virtual bool sample(Table& table, const Sample& sample) = 0;
  virtual void end() = 0;
};

/// Visits the channel groups of a file, except those that hold values of others and those without a
/// wanted channel. Memory does not grow with the samples. Returns how many tables there were.
std::size_t visitTables(InputFile& file, const Selection& selection, TableVisitor& visitor,
                        const FindingSink& report, const NoteSink& note);

/// Goes over the records of a file as visitTables() does, and reports what that would, but for the
/// conversions. Of the values those alone are looked for that do not stand in the records.
void examineTables(InputFile& file, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_TABLE_H_
