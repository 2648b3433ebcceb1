#ifndef MDF_TOOLS_CHANGING_ROW_CHOICE_H_
#define MDF_TOOLS_CHANGING_ROW_CHOICE_H_

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "reader/blocks/finding.h"
#include "reader/columns/query.h"
#include "reader/columns/tables.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Records that follow one another, by their numbers in their group.
struct Rows {
  std::uint64_t begin;
  std::uint64_t end;

  bool operator==(const Rows& other) const { return begin == other.begin && end == other.end; }
};

/// The records of a file that are within the limits of a query: those that tables of it show.
class RowChoice {
 public:
  /// @throws CopyFailure where they are in too many pieces.
  RowChoice(InputFile& file, const Query& limits, const FindingSink& report, const NoteSink& note);

  /// @param group where its block is.
  const std::vector<Rows>& of(std::uint64_t group) const;

 private:
  void add(std::vector<Rows>& rows, const Batch& batch);

  std::unordered_map<std::uint64_t, std::vector<Rows>> rows_;  ///< by the groups' offsets
  std::size_t pieces_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_ROW_CHOICE_H_
