#ifndef MDF_TOOLS_CHANGING_INDEX_SHIFT_H_
#define MDF_TOOLS_CHANGING_INDEX_SHIFT_H_

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "block_copy.h"
#include "new_blocks.h"
#include "reader/model/description.h"
#include "row_choice.h"

namespace mdf_tools {

/// Keeps the values of virtual channels, which are made of the numbers of the records, where the
/// first records are left out: their linear conversions begin later.
class IndexShift {
 public:
  /// @param is_copied whether a channel stays.
  /// @throws CopyFailure where that cannot be, or where records would lose the masters that they
  /// have in another group.
  IndexShift(BlockCopy& blocks, const RowChoice& rows, const std::vector<DataGroup>& data_groups,
             const std::function<bool(const Channel& channel)>& is_copied);

  void write(NewBlocks& out);

 private:
  void add(const Channel& channel, std::uint64_t first);

  BlockCopy& blocks_;
  std::map<std::uint64_t, std::uint64_t> unconverted_;  ///< channels, and their first records
  std::map<std::uint64_t, std::uint64_t> conversions_;  ///< of all channels, and the same
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_INDEX_SHIFT_H_
