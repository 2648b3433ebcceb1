#ifndef MDF_TOOLS_REPORTING_REPORT_TABLE_H_
#define MDF_TOOLS_REPORTING_REPORT_TABLE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "number_levels.h"
#include "printing/json_output.h"
#include "text_levels.h"
#include "viewing/axis.h"
#include "viewing/sample_reader.h"

namespace mdf_tools {

/// A table of a report: chosen channels of a channel group.
class ReportTable {
 public:
  explicit ReportTable(const TableHead& head);

  void add(const Batch& batch);

  /// Its levels: those of numbers first, then those of each channel of texts.
  const std::vector<Levels*>& levels() const { return levels_; }
  /// The number of its channel group.
  std::size_t group() const { return group_; }

  /// What is told of it, as the server of the page does it.
  Json describe() const;
  /// Changes what is told of its channel group to what the report has of that.
  void narrow(Json& group) const;
  /// What the page needs to read its samples.
  /// @param store takes packed numbers, and says how they are found again.
  Json describeSamples(const std::function<Json(const PackedNumbers&)>& store) const;

 private:
  struct Column {
    std::string name;
    std::string unit;
    ColumnType type = ColumnType::bytes;
    std::optional<int> decimals{};  ///< see ColumnHead
  };
  /// Rows of a batch.
  struct Rows {
    std::size_t begin = 0;       ///< the first one that has a place
    std::vector<double> times;   ///< where each stands
    std::vector<bool> in_order;  ///< others are gaps
  };

  Rows rowsOf(const Batch& batch);
  void addTexts(const ColumnData& column, const Rows& rows, TextLevels& texts);

  std::size_t group_;
  std::optional<std::size_t> element_;
  std::string name_;
  std::optional<Column> master_;
  std::vector<Column> columns_;
  TimeOrder order_{-std::numeric_limits<double>::infinity()};
  double first_ = 0;  ///< of the times
  std::uint64_t records_ = 0;
  std::uint64_t out_of_order_ = 0;
  std::unique_ptr<NumberLevels> numbers_;
  std::vector<std::unique_ptr<TextLevels>> texts_;
  std::vector<Levels*> levels_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_REPORT_TABLE_H_
