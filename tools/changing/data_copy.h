#ifndef MDF_TOOLS_CHANGING_DATA_COPY_H_
#define MDF_TOOLS_CHANGING_DATA_COPY_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "block_copy.h"
#include "copy_options.h"
#include "data_writer.h"
#include "index_shift.h"
#include "reader/columns/tables.h"
#include "reader/data/data_file.h"
#include "reader/data/records.h"
#include "reader/model/description.h"
#include "row_choice.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Writes the data of a copy anew where it does not stay as it is: in other blocks, or each channel
/// group's records by themselves.
class DataCopy {
 public:
  DataCopy(BlockCopy& blocks, const CopyOptions& options, const FindingSink& report,
           const NoteSink& note);

  bool isUnfinished() const { return data_file_.isUnfinished(); }

  /// Tells the blocks which data is written anew.
  void plan();

  /// Writes that data, and tells the blocks where it is.
  void write(BlockWriter& out);

 private:
  /// How the records of a data group get to the copy.
  enum class Way {
    as_blocks,   ///< with the blocks that they are in
    as_bytes,    ///< as they follow one another
    by_records,  ///< those of the only channel group
    one_by_one,  ///< mixed records of an unfinished file, as far as they are whole
    apart,       ///< mixed records, those of each channel group by themselves
  };

  /// A link to data that is not a data group's.
  struct OtherData {
    BlockCopy::Link link;
    std::uint64_t target;
  };

  /// Where in a record the offset of a value is.
  struct OffsetPlace {
    std::size_t at;
    std::size_t bytes;
    std::uint64_t target;  ///< where the values are
  };

  /// A channel group of mixed records.
  struct Part {
    std::unique_ptr<DataWriter> data;  ///< none where it shares that of the others
    std::uint64_t records = 0;         ///< written
    std::uint64_t value_bytes = 0;     ///< of variable length
    std::uint64_t number = 0;          ///< of the record to come, or the offset of the value
    std::size_t rows = 0;              ///< which of the chosen rows come next
    bool is_dropped = false;
    std::vector<OffsetPlace> shifts;  ///< offsets that change
  };

  /// Values of variable length that the chosen records have, by their offsets.
  struct Values {
    std::uint64_t first = UINT64_MAX;
    std::uint64_t last = 0;
    bool are_all = false;  ///< what records say of them is not known well enough

    bool has(std::uint64_t offset) const { return are_all || (offset >= first && offset <= last); }
    std::uint64_t shift() const { return are_all || first == UINT64_MAX ? 0 : first; }
  };

  Way wayOf(const DataGroup& data_group) const;
  bool isAnew() const { return options_.form || isUnfinished() || rows_; }
  void chooseRows();
  void chooseGroups();
  bool isGroupWanted(const DataGroup& data_group, const ChannelGroup& group);
  bool isDropped(const ChannelGroup& group) const { return dropped_.count(group.offset) > 0; }
  void chooseValues(const DataGroup& data_group);
  static std::vector<OffsetPlace> offsetsIn(const ChannelGroup& group);
  void forEachSpan(Records& records, const ChannelGroup& group,
                   const std::function<void(const RecordSpan&)>& visit);
  std::string_view shifted(std::string_view record, const std::vector<OffsetPlace>& places);
  std::uint64_t endOfValues(const OtherData& data);
  std::vector<OffsetPlace> shiftsIn(const ChannelGroup& group);
  void planGroup(const DataGroup& data_group, Way way);
  void planOtherData();
  void writeBytes(BlockWriter& out, const OtherData& data);
  std::uint64_t reductionBytesOf(std::uint32_t block);
  void writeGroup(BlockWriter& out, const DataGroup& data_group, Way way);
  void writeRecords(BlockWriter& out, const DataGroup& data_group);
  void writeMixed(BlockWriter& out, const DataGroup& data_group, bool are_apart);
  void walkMixed(const DataGroup& data_group, unsigned id_bytes, DataWriter* together,
                 std::vector<Part>& parts);
  bool isWanted(const Record& record, Part& part);
  void append(const Record& record, Part& part);
  void finishMixed(const DataGroup& data_group, std::vector<Part>& parts);
  void finishApart(BlockWriter& out, const DataGroup& data_group, std::vector<Part>& parts);
  std::vector<BlockCopy::Link> channelsOf(const DataGroup& data_group, const ChannelGroup& values);
  std::uint32_t indexOf(std::uint64_t offset) const { return blocks_.table().find(offset); }

  BlockCopy& blocks_;
  const CopyOptions& options_;
  const FindingSink& report_;
  const NoteSink& note_;
  Description description_;
  DataFile data_file_;
  std::optional<RowChoice> rows_;  ///< none where all records are copied
  std::optional<IndexShift> index_shift_;
  std::map<std::uint64_t, Values> values_;  ///< by what channels link to
  std::string shifted_;
  std::set<std::uint64_t> dropped_;  ///< channel groups, by their offsets
  std::vector<Way> ways_;            ///< of the data groups
  std::vector<OtherData> other_data_;
  std::map<std::uint64_t, std::uint64_t> written_;  ///< data that several links may lead to
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DATA_COPY_H_
