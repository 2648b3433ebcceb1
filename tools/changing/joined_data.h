#ifndef MDF_TOOLS_CHANGING_JOINED_DATA_H_
#define MDF_TOOLS_CHANGING_JOINED_DATA_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "data_writer.h"
#include "join_input.h"
#include "joined_records.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The data of files that become one: of channel groups that go on in one another, and of groups
/// whose values change, the records are written anew. Other data groups stay as they are.
class JoinedData {
 public:
  /// What it is given must outlast it.
  /// @param form none: data that need not be written anew stays in its blocks.
  JoinedData(JoinInputs& inputs, std::vector<JoinedGroup>& groups, std::optional<DataForm> form,
             const NoteSink& note);

  /// Finds out what changes, and tells the blocks what is left out and what is written anew.
  /// @param is_wide see GroupChange.
  void plan(bool is_wide);

  /// Writes that data.
  /// @throws TooNarrow
  void write(BlockWriter& out);

  /// Links the data groups of all files to one another and to their data, and has links to channel
  /// groups and channels that went on in others lead there.
  void link(NewBlocks& out);

 private:
  JoinedGroup& groupOf(JoinInput& input, const ChannelGroup& group) {
    return groups_[input.joined.at(group.offset)];
  }
  static bool isHome(std::size_t file, const JoinedGroup& group) {
    return group.sources.front().file == file;
  }
  bool isAnew(JoinInput& input, const DataGroup& data_group);
  void planGroup(JoinedGroup& group, bool is_wide);
  void planDataGroup(std::size_t file, const DataGroup& data_group);
  void planStaying(JoinInput& input, const DataGroup& data_group);
  static void leaveOut(JoinInput& input, const ChannelGroup& group);
  void planBlocks(JoinedGroup& joined);
  void findComponents();
  void linkDataGroup(std::size_t file, const DataGroup& data_group, std::uint64_t& next,
                     NewBlocks& out);
  void redirect(const JoinedGroup& joined);

  JoinInputs& inputs_;
  std::vector<JoinedGroup>& groups_;
  std::optional<DataForm> form_;
  const NoteSink& note_;
  std::size_t without_reductions_ = 0;
  std::vector<Component> components_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOINED_DATA_H_
