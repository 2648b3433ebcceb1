#ifndef MDF_TOOLS_CHANGING_MIXED_COPY_H_
#define MDF_TOOLS_CHANGING_MIXED_COPY_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "block_copy.h"
#include "copy_contents.h"
#include "data_writer.h"
#include "reader/data/records.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The links of channels that are copied whose values are the records of a group.
std::vector<BlockCopy::Link> channelsOfValues(const BlockCopy& blocks, const CopyContents& contents,
                                              const DataGroup& data_group,
                                              const ChannelGroup& values);

/// Writes the mixed records of a data group, going through them once.
class MixedCopy {
 public:
  MixedCopy(BlockCopy& blocks, CopyContents& contents, BlockWriter& out,
            const DataGroup& data_group);

  /// @param are_apart whether each channel group's get to a data group of their own.
  void write(bool are_apart, const FindingSink& report);

 private:
  /// What belongs to a channel group.
  struct Part {
    DataWriter* data = nullptr;
    std::uint64_t number = 0;   ///< of the record to come, or the offset of the value
    std::uint64_t end = 0;      ///< of the numbers
    std::uint64_t records = 0;  ///< written
    bool is_plain = false;      ///< records are copied as they are, up to the last one
    bool is_dropped = false;
    std::unique_ptr<DataWriter> own;  ///< none where it shares that of the others
    std::string head;                 ///< of each record: its id
    std::uint64_t value_bytes = 0;    ///< of variable length
    const std::vector<Rows>* rows = nullptr;
    std::size_t row = 0;  ///< which of the chosen rows come next
    RecordCopy change{{}, nullptr};
  };

  void begin(Part& part, const ChannelGroup& group, unsigned id_bytes, bool is_apart);
  bool isWanted(const Record& record, Part& part);
  void append(const Record& record, Part& part);
  void finishMixed();
  void finishApart();
  std::uint32_t indexOf(std::uint64_t offset) const { return blocks_.table().find(offset); }

  BlockCopy& blocks_;
  CopyContents& contents_;
  BlockWriter& out_;
  const DataGroup& data_group_;
  DataWriter together_;
  std::vector<Part> parts_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_MIXED_COPY_H_
