#ifndef MDF_TOOLS_IMPORTING_KEPT_ROWS_H_
#define MDF_TOOLS_IMPORTING_KEPT_ROWS_H_

#include <cstddef>
#include <memory>
#include <vector>

#include "table_source.h"

namespace mdf_tools {

/// Rows one after another in memory, as many as it has room for. Cells with numbers come back
/// without their texts.
class KeptRows {
 public:
  explicit KeptRows(std::size_t most_bytes)
      : most_bytes_(most_bytes), bytes_(new char[most_bytes]) {}

  /// Adds a row; false where there is no room for it. The number in one of its columns keeps its
  /// decimal digits; others become doubles.
  bool add(const std::vector<Cell>& cells, std::size_t with_digits);

  /// Takes the row at an offset, with as many cells as it is to have. Returns the offset after it.
  std::size_t take(std::size_t at, std::vector<Cell>& cells) const;

  std::size_t size() const { return size_; }

  /// Drops the rows from an offset on.
  void cut(std::size_t size) { size_ = size; }

 private:
  std::size_t most_bytes_;
  std::unique_ptr<char[]> bytes_;  ///< not set to zero: what no row needs is never touched
  std::size_t size_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_KEPT_ROWS_H_
