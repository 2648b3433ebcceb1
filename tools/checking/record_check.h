#ifndef MDF_TOOLS_CHECKING_RECORD_CHECK_H_
#define MDF_TOOLS_CHECKING_RECORD_CHECK_H_

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "channel_check.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/offset_set.h"
#include "reader/model/array_elements.h"
#include "record_data.h"
#include "record_walk.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Compares what data groups, channel groups, their reductions and channels say of records with
/// each other and with the data. The blocks are handed in in the order of their table: a data group
/// before its channel groups, and these before what belongs to them.
class RecordCheck {
 public:
  explicit RecordCheck(const Subject& subject)
      : subject_(subject),
        records_left_(subject.file.size()),
        values_left_(subject.file.size()),
        elements_left_(subject.file.size()) {}

  /// Takes a DG, CG, CN or SR block whose shape is right.
  void take(const BlockFields& block, std::uint32_t index);

  /// Takes a CA block, which may be the composition of the latest channel or an element of the
  /// latest array.
  void takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements);

  /// Finishes the current data group.
  void leave();

 private:
  void enterDataGroup(const BlockFields& block, std::uint32_t index);
  void enterChannelGroup(const BlockFields& block, std::uint32_t index);
  void leaveChannelGroup();
  void takeVariableChannel(const BlockFields& block, std::uint32_t index);
  void takeElements(const BlockFields& block, std::uint32_t index);
  void addElements();
  void checkReduction(const BlockFields& block, std::uint32_t index);

  bool checkIds();
  void checkData();
  DataBlocks recordsAt(std::uint64_t link, std::string_view link_name, std::uint32_t index);
  std::uint64_t bytesOf(const DataBlocks& data) const;
  void checkOnlyGroup(const DataBlocks& data);
  void countRecords(const DataBlocks& data);
  void checkValues(const DataBlocks& data, std::uint64_t id_bytes);
  void prepareValueChecks();
  bool isAsCounted() const;
  void reportWalk(const RecordWalk& walk) const;

  const Subject& subject_;
  OffsetSet seen_data_;
  OffsetSet seen_values_;
  Allowance records_left_;  ///< bytes of data that may still be read record by record
  Allowance values_left_;   ///< the same of signal data
  ElementAllowance elements_left_;
  std::optional<std::uint32_t> data_group_;
  std::uint64_t id_code_ = 0;
  std::uint64_t data_link_ = 0;
  std::vector<RecordGroup> groups_;
  std::vector<ArrayElement> elements_;    ///< of an array of the last group, with their own records
  std::optional<ChannelCheck> channels_;  ///< those of the last group, if its records have any
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_RECORD_CHECK_H_
