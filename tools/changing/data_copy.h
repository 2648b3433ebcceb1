#ifndef MDF_TOOLS_CHANGING_DATA_COPY_H_
#define MDF_TOOLS_CHANGING_DATA_COPY_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "block_copy.h"
#include "copy_contents.h"
#include "copy_options.h"
#include "data_writer.h"
#include "reader/bytes/work_budget.h"
#include "reader/data/data_file.h"
#include "reader/data/data_links.h"
#include "reader/data/records.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Writes the data of a copy anew where it does not stay as it is: in other blocks, or each channel
/// group's records by themselves.
class DataCopy {
 public:
  /// @param contents which were chosen, and outlast it.
  DataCopy(BlockCopy& blocks, CopyContents& contents, const CopyOptions& options,
           const FindingSink& report, const NoteSink& note);

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

  Way wayOf(const DataGroup& data_group);
  bool isAnew() const { return options_.form || isUnfinished() || contents_.hasRows(); }
  bool isUnfinished() const { return data_file_.isUnfinished(); }
  bool isCut(DataLink link);
  bool isPacked(const DataGroup& data_group) const;
  void planGroup(const DataGroup& data_group, Way way);
  void planOtherData();
  void planOtherData(std::uint32_t block);
  void planReduction(std::uint32_t block);
  const RecordPacking* packingOfReduction(std::uint32_t block) const;
  void writeBytes(BlockWriter& out, const OtherData& data);
  std::uint64_t endOfValues(const OtherData& data);
  void writeReduction(BlockWriter& out, const OtherData& data, const RecordPacking& packing);
  std::uint64_t reductionBytesOf(std::uint32_t block);
  void writeGroup(BlockWriter& out, const DataGroup& data_group, Way way);
  void writeRecords(BlockWriter& out, const DataGroup& data_group);
  std::uint32_t indexOf(std::uint64_t offset) const { return blocks_.table().find(offset); }

  BlockCopy& blocks_;
  CopyContents& contents_;
  const CopyOptions& options_;
  const FindingSink& report_;
  const NoteSink& note_;
  DataFile& data_file_;
  WorkBudget for_cuts_;
  std::vector<Way> ways_;  ///< of the data groups
  std::vector<OtherData> other_data_;
  std::map<std::uint64_t, std::uint64_t> written_;  ///< data that several links may lead to
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DATA_COPY_H_
