#ifndef MDF_READER_DATA_INVALIDATION_DATA_H_
#define MDF_READER_DATA_INVALIDATION_DATA_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "../blocks/finding.h"
#include "../model/description.h"
#include "data_links.h"
#include "data_stream.h"

namespace mdf_reader {

/// The invalidation bytes of records that lack them. Since version 4.2 they may stand in blocks of
/// their own, each for the records in one block with data. One block is held in memory at a time.
class InvalidationData {
 public:
  /// @param link where the data of the group's records is, whose lists name the blocks.
  InvalidationData(DataFile& file, DataLink link, const ChannelGroup& group,
                   const FindingSink& report);

  /// Reports what is wrong with the blocks for so many records, without reading them.
  void examine(std::uint64_t records);

  /// The bytes of a record, whose number must not be less than the one before; none where the file
  /// has none: all values of that record are valid.
  std::string_view at(std::uint64_t record);

 private:
  bool enterNextPart();
  void open(const DataPart& part);
  void compareLength(const DataPart& part);
  void tell(std::uint64_t offset, const std::string& sentence);

  DataFile& file_;
  const ChannelGroup& group_;
  const FindingSink& report_;
  FindingSink silent_;  ///< problems of the data itself are reported where that is read
  DataLinks links_;
  std::uint64_t data_bytes_ = 0;  ///< up to the end of the part
  std::uint64_t begin_ = 0;       ///< records of the part
  std::uint64_t end_ = 0;
  std::unique_ptr<DataStream> bytes_;  ///< of the part, null where all of it is valid
  WorkBudget budget_;                  ///< for the bytes of the file that all parts take
  bool has_told_ = false;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_INVALIDATION_DATA_H_
