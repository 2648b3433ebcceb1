#ifndef MDF_TOOLS_CHECKING_RECORD_CHECK_H_
#define MDF_TOOLS_CHECKING_RECORD_CHECK_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "reading/block_fields.h"
#include "reading/offset_set.h"
#include "record_data.h"
#include "subject.h"

namespace mdf_tools {

/// Checks what data groups, channel groups and channels say of records against each other and
/// against the data. The blocks are handed in in the order of their table, in which a data group
/// comes before its channel groups and these come before their channels.
class RecordCheck {
 public:
  explicit RecordCheck(const Subject& subject) : subject_(subject) {}

  /// Takes a DG, CG or CN block whose shape is right.
  void take(const BlockFields& block, std::uint32_t index);

  /// Leaves the groups that are being gone through.
  void leave();

 private:
  struct Group {
    std::uint32_t index;
    std::uint64_t record_id;
    std::uint64_t cycles;
    std::uint64_t record_bytes;  ///< without the record id
    bool is_variable_length;
    std::uint64_t counted;  ///< records in the data
  };

  struct Master {
    std::uint32_t index;
    std::uint64_t kind;
    std::uint64_t first_bit;
    std::uint64_t end_bit;
  };

  /// What came of going through the records of a data group.
  struct Walk {
    enum End { fine, unreadable, unknown_id, cut_off } end;
    std::uint64_t position;   ///< of the last record in the data
    std::uint64_t record_id;  ///< of that record
  };

  struct ChannelGroup {
    std::uint32_t index;
    std::uint64_t data_bytes;
    std::uint64_t invalidation_bytes;
    bool has_records;
    bool needs_no_master;
    bool has_channels;
  };

  void enterDataGroup(const BlockFields& block, std::uint32_t index);
  void enterChannelGroup(const BlockFields& block, std::uint32_t index);
  void leaveChannelGroup();
  void takeChannel(const BlockFields& block, std::uint32_t index);
  void checkBits(const BlockFields& block, std::uint32_t index) const;
  void checkMasters();

  bool checkIds();
  void checkData();
  bool hasRightLength(std::uint64_t data_bytes, std::uint64_t id_bytes) const;
  void checkOnlyGroup(const DataBlocks& data) const;
  void countRecords(const DataBlocks& data);
  Walk walk(const DataBlocks& data, std::uint64_t id_bytes);
  Walk walkRecord(DataReader& reader, std::uint64_t id_bytes);
  bool isAsCounted() const;
  void reportWalk(const Walk& walk) const;

  const Subject& subject_;
  OffsetSet seen_data_;
  std::optional<std::uint32_t> data_group_;
  std::uint64_t id_code_ = 0;
  std::uint64_t data_link_ = 0;
  std::vector<Group> groups_;
  std::optional<ChannelGroup> channel_group_;
  std::vector<Master> masters_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_RECORD_CHECK_H_
