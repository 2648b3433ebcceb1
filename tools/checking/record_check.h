#ifndef MDF_TOOLS_CHECKING_RECORD_CHECK_H_
#define MDF_TOOLS_CHECKING_RECORD_CHECK_H_

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "channel_check.h"
#include "file_check.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/offset_set.h"
#include "reader/data/data_links.h"
#include "reader/model/description.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Checks what data groups, channel groups, their reductions and channels say of records against
/// each other, and then against the data, which is read as whoever wants its values reads it. The
/// blocks are handed in in the order of their table, in which a data group comes before its channel
/// groups and these come before what belongs to them.
class RecordCheck {
 public:
  explicit RecordCheck(const Subject& subject) : subject_(subject) {}

  /// Takes a DG, CG, CN or SR block whose shape is right.
  void take(const BlockFields& block, std::uint32_t index);

  /// Takes a CA block, which may belong to the latest channel or be an element of the latest array.
  void takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements);

  /// Has the groups read once more as whoever reads the file does, as far as they go.
  void readWhatIsThere() { are_blocks_enough_ = false; }

  /// Leaves the groups that are being gone through.
  void leave();

  /// Goes over the records of all data groups, but for what is known of them, and over the values
  /// that stand elsewhere.
  void checkRecords(const FindingSink& report, const std::vector<KnownRecords>& known);

 private:
  void enterDataGroup(const BlockFields& block, std::uint32_t index);
  void enterChannelGroup(const BlockFields& block, std::uint32_t index);
  void takeChannel(const BlockFields& block, std::uint32_t index);
  void checkReduction(const BlockFields& block, std::uint32_t index);
  bool isShared(DataLink link);
  bool isAsKnown(const DataGroup& data_group, const std::vector<KnownRecords>& known) const;
  void checkShared(DataLink link, std::string_view link_name, std::uint32_t index);

  const Subject& subject_;
  OffsetSet seen_data_;
  std::vector<DataGroup> data_groups_;  ///< without channels
  bool is_in_data_group_ = false;
  bool are_blocks_enough_ = true;         ///< to read the records: all values stand in them
  std::optional<ChannelCheck> channels_;  ///< those of the last group, if its records have any
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_RECORD_CHECK_H_
