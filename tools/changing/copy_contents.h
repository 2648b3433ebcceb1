#ifndef MDF_TOOLS_CHANGING_COPY_CONTENTS_H_
#define MDF_TOOLS_CHANGING_COPY_CONTENTS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "block_copy.h"
#include "content_choice.h"
#include "copy_options.h"
#include "index_shift.h"
#include "reader/columns/tables.h"
#include "reader/data/data_file.h"
#include "reader/data/records.h"
#include "reader/model/description.h"
#include "record_packing.h"
#include "row_choice.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Where in a record the offset of a value is that changes.
struct OffsetPlace {
  std::size_t at;
  std::size_t bytes;
  std::uint64_t target;  ///< where the values are
  std::uint64_t shift;   ///< by which it becomes less
};

/// What records of a channel group become in the copy.
class RecordCopy {
 public:
  /// @param packing none where no bytes are cut out.
  RecordCopy(std::vector<OffsetPlace> shifts, const RecordPacking* packing)
      : shifts_(std::move(shifts)), packing_(packing) {}

  bool isNone() const { return shifts_.empty() && packing_ == nullptr; }

  /// A record in the copy, which lasts until the next call.
  std::string_view of(std::string_view record) {
    return packing_ == nullptr ? shifted(record) : packed(shifted(record));
  }
  /// The same with offsets alone.
  std::string_view shifted(std::string_view record);

  const RecordPacking* packing() const { return packing_; }

 private:
  std::string_view packed(std::string_view record);

  std::vector<OffsetPlace> shifts_;
  const RecordPacking* packing_;
  std::string shifted_;
  std::string packed_;
};

/// What a copy has of a file's data: which groups, channels, records and values of variable length,
/// and what is left of the records.
class CopyContents {
 public:
  CopyContents(BlockCopy& blocks, const CopyOptions& options, const FindingSink& report,
               const NoteSink& note);

  const std::vector<DataGroup>& dataGroups() const { return description_.data_groups; }
  DataFile& dataFile() { return data_file_; }

  /// Finds it out, and tells the blocks what is left out.
  void choose();

  /// Whether some channels or channel groups may be left out.
  bool hasChoice() const { return choice_.has_value(); }
  bool isDropped(const ChannelGroup& group) const { return choice_ && !choice_->has(group); }
  bool isDropped(const Channel& channel) const { return choice_ && !choice_->has(channel); }

  /// None where all bytes of a group's records stay.
  const RecordPacking* packingOf(std::uint64_t group) const {
    const auto packing = packings_.find(group);
    return packing == packings_.end() ? nullptr : &packing->second;
  }
  bool hasPackings() const { return !packings_.empty(); }
  std::uint64_t recordBytesOf(const ChannelGroup& group) const;
  std::uint32_t invalidationBytesOf(const ChannelGroup& group) const;
  RecordCopy changeOf(const ChannelGroup& group);

  /// The records that are copied; null for all.
  const std::vector<Rows>* rowsOf(const ChannelGroup& group) const {
    return rows_ ? &rows_->of(group.offset) : nullptr;
  }
  bool hasRows() const { return rows_.has_value(); }
  /// Visits the records of a group that are copied.
  void forEachSpan(Records& records, const ChannelGroup& group,
                   const std::function<void(const RecordSpan&)>& visit) const;

  /// Of values of variable length that a link leads to, those that are copied begin and end here.
  std::uint64_t beginOfValues(std::uint64_t target) { return values_[target].shift(); }
  std::uint64_t endOfValues(DataLink link);
  /// Whether one of the values is copied that are records of a group.
  bool hasValue(const ChannelGroup& group, std::uint64_t offset) {
    return !rows_ || values_[group.offset].has(offset);
  }

  /// Writes what values need that are made of the numbers of records.
  void writeIndexShift(NewBlocks& out) {
    if (index_shift_) {
      index_shift_->write(out);
    }
  }

 private:
  /// Values of variable length that the chosen records have, by their offsets.
  struct Values {
    std::uint64_t first = UINT64_MAX;
    std::uint64_t last = 0;
    bool are_all = false;  ///< what records say of them is not known well enough

    bool has(std::uint64_t offset) const { return are_all || (offset >= first && offset <= last); }
    std::uint64_t shift() const { return are_all || first == UINT64_MAX ? 0 : first; }
  };

  void chooseContent();
  bool isGroupWanted(const DataGroup& data_group, const ChannelGroup& group);
  void packRecords(const DataGroup& data_group);
  void chooseValues(const DataGroup& data_group);
  std::vector<OffsetPlace> offsetsIn(const ChannelGroup& group) const;

  BlockCopy& blocks_;
  const CopyOptions& options_;
  const FindingSink& report_;
  const NoteSink& note_;
  Description description_;
  DataFile data_file_;
  std::optional<RowChoice> rows_;  ///< none where all records are copied
  std::optional<IndexShift> index_shift_;
  std::optional<ContentChoice> choice_;              ///< none where all groups and channels stay
  std::map<std::uint64_t, RecordPacking> packings_;  ///< of groups whose records lose bytes
  std::map<std::uint64_t, Values> values_;           ///< by what channels link to
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_COPY_CONTENTS_H_
