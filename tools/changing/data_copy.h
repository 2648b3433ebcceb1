#ifndef MDF_TOOLS_CHANGING_DATA_COPY_H_
#define MDF_TOOLS_CHANGING_DATA_COPY_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "block_copy.h"
#include "copy_options.h"
#include "data_writer.h"
#include "reader/columns/tables.h"
#include "reader/data/data_file.h"
#include "reader/data/records.h"
#include "reader/model/description.h"

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

  /// A channel group of mixed records.
  struct Part {
    std::unique_ptr<DataWriter> data;  ///< none where it shares that of the others
    std::uint64_t records = 0;
    std::uint64_t value_bytes = 0;  ///< of variable length

    void append(const Record& record);
  };

  Way wayOf(const DataGroup& data_group) const;
  bool isAnew() const { return options_.form || isUnfinished(); }
  void planGroup(const DataGroup& data_group, Way way);
  void planOtherData();
  void writeBytes(BlockWriter& out, const OtherData& data);
  std::uint64_t reductionBytesOf(std::uint32_t block);
  void writeGroup(BlockWriter& out, const DataGroup& data_group, Way way);
  void writeRecords(BlockWriter& out, const DataGroup& data_group);
  void writeMixed(BlockWriter& out, const DataGroup& data_group, bool are_apart);
  void walkMixed(const DataGroup& data_group, unsigned id_bytes, DataWriter* together,
                 std::vector<Part>& parts);
  bool isWanted(const ChannelGroup& group, const Part& part) const;
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
  std::vector<Way> ways_;  ///< of the data groups
  std::vector<OtherData> other_data_;
  std::map<std::uint64_t, std::uint64_t> written_;  ///< data that several links may lead to
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DATA_COPY_H_
