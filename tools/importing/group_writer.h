#ifndef MDF_TOOLS_IMPORTING_GROUP_WRITER_H_
#define MDF_TOOLS_IMPORTING_GROUP_WRITER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "table_facts.h"

namespace mdf_tools {

/// The channel group of a table, and its rows as records.
class GroupWriter {
 public:
  /// Adds the group to a plan.
  GroupWriter(mdf_writer::Plan& plan, const std::string& name, TableFacts& facts);

  /// Puts a row into the group's record.
  /// @throws BadLine
  void set(std::uint64_t line, const std::vector<Cell>& cells, const IsoTime& start);

  mdf_writer::Group& group() { return group_; }

  /// How many channels keep their values apart from the records.
  std::size_t variableChannels() const { return variable_channels_; }

 private:
  /// A column's channel.
  struct Channel {
    mdf_writer::ChannelRef ref;
    std::uint32_t at = 0;
    ValueType type = ValueType::text;
    IntegerRange range;
    bool is_variable = false;
    bool may_be_missing = false;
  };

  void addTime(const ColumnName& name);
  void addChannel(const ColumnName& name, const ColumnFacts& facts);
  mdf_writer::ChannelRef addNumber(ValueType type, const std::string& name);
  bool setValue(const Channel& channel, const Cell& cell);
  void setTime(const Channel& channel, const IsoTime& start);
  template <class T, class Value>
  bool put(const Channel& channel, Value value);

  mdf_writer::Group& group_;
  TableFacts& facts_;
  std::vector<Channel> channels_;  ///< of the columns, in their order
  bool has_time_;
  std::size_t variable_channels_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_GROUP_WRITER_H_
