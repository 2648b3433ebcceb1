#ifndef MDF_TOOLS_CHANGING_TABLE_COMPARISON_H_
#define MDF_TOOLS_CHANGING_TABLE_COMPARISON_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "difference.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// Compares the records of two tables, batch by batch. Records with the same value of the master
/// channel belong together. Where the values are apart and grow, the lesser one is of a record that
/// the other table lacks; where they do not, and without a master channel, records belong together
/// by their order.
class TableComparison {
 public:
  /// What it is given must outlast it.
  /// @param thing the channel group.
  TableComparison(Table& a, Table& b, const DiffOptions& options, Thing thing);

  /// @param report takes what differs, after the last record.
  void run(const DifferenceSink& report, DiffSummary& summary);

 private:
  /// Where reading a table has got to.
  struct Reader {
    Table& table;
    const Batch* batch = nullptr;
    std::size_t row = 0;
    bool has_ended = false;
    double last_master = -std::numeric_limits<double>::infinity();

    bool hasRows();
    std::size_t rows() const { return batch->rows() - row; }
    double master() const { return batch->column(0).real(row); }
    void take(std::size_t count, bool has_master);
  };
  /// A channel that both tables have.
  struct ColumnPair {
    std::size_t a;
    std::size_t b;
    std::uint64_t differing = 0;
    std::vector<RecordDifference> first{};
  };
  struct LoneRecords {
    std::uint64_t count = 0;
    std::vector<RecordDifference> first{};
  };

  void pairColumns();
  void compareNext();
  std::size_t countAligned(std::size_t rows) const;
  void compareRows(std::size_t count, bool are_aligned);
  void addDifference(ColumnPair& pair, std::size_t row);
  void takeUnequal();
  void takeLone(Side side, std::size_t count);
  void takeRest(Side side);
  bool isDecided() const;
  Json masterAt(const Reader& reader, std::size_t row) const;
  const Tolerance& toleranceOf(const ColumnPair& pair) const;
  void reportAll(const DifferenceSink& report, DiffSummary& summary) const;

  const DiffOptions& options_;
  Thing thing_;
  Reader a_;
  Reader b_;
  bool has_master_;
  std::vector<ColumnPair> columns_;
  std::uint64_t records_ = 0;  ///< that both have
  LoneRecords lone_a_;
  LoneRecords lone_b_;
  bool has_differing_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_TABLE_COMPARISON_H_
