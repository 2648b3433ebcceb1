#ifndef MDF_TOOLS_CHANGING_CONTENT_CHOICE_H_
#define MDF_TOOLS_CHANGING_CONTENT_CHOICE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "block_copy.h"
#include "reader/columns/name_patterns.h"
#include "reader/columns/tables.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The channel groups and channels that a copy is to have: those that are wanted, and what these
/// need. Groups with the masters or the values of others stay with them. A data group of elements'
/// records stays whole.
class ContentChoice {
 public:
  using GroupTest = std::function<bool(const DataGroup& data_group, const ChannelGroup& group)>;

  /// @param is_wanted whether channels of a group are.
  /// @param channels patterns of their names; none for all channels.
  ContentChoice(BlockCopy& blocks, const std::vector<DataGroup>& data_groups,
                const GroupTest& is_wanted, const std::vector<std::string>& channels,
                const NoteSink& note);

  bool isEmpty() const { return groups_.empty(); }
  bool has(const ChannelGroup& group) const { return groups_.count(group.offset) > 0; }
  /// Whether the values of a channel are copied.
  bool has(const Channel& channel) const { return channels_.count(channel.offset) > 0; }
  /// The same, or it is a structure of which some members are copied.
  bool hasAnyOf(const Channel& channel) const { return has(channel) || isAround(channel); }

  /// Tells the blocks what is left out: groups and channels, which others may refer to.
  void leaveOutOthers();

 private:
  struct Place {
    const DataGroup* data_group;
    const ChannelGroup* group;
    std::size_t index;  ///< of the channel
  };

  bool isAround(const Channel& channel) const { return around_.count(channel.offset) > 0; }
  void choose(const DataGroup& data_group, const ChannelGroup& group, NamePatterns& patterns);
  void take(std::uint64_t channel);
  void take(const Place& place);
  void takeGroup(const DataGroup& data_group, const ChannelGroup& group);
  void takeNeeds();
  void takeNeedsOf(const DataGroup& data_group, const ChannelGroup& group);
  void takeNeedsOf(const Place& place);

  BlockCopy& blocks_;
  const std::vector<DataGroup>& data_groups_;
  const bool takes_all_;                             ///< channels of a group
  std::unordered_map<std::uint64_t, Place> places_;  ///< of all channels, by their offsets
  std::unordered_map<std::uint64_t, Place> group_places_;
  std::unordered_set<const DataGroup*> with_elements_;  ///< that have records of their own
  std::unordered_set<std::uint64_t> groups_;
  std::unordered_set<std::uint64_t> channels_;
  std::unordered_set<std::uint64_t> around_;  ///< structures of them
  std::vector<Place> pending_;                ///< channels whose needs are not taken yet
  std::vector<Place> pending_groups_;
};

/// Leaves out attachments that nothing but left out blocks refers to. Blocks must be chosen.
void leaveOutAttachmentsOfNothing(BlockCopy& blocks);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_CONTENT_CHOICE_H_
