#include "content_choice.h"

#include <algorithm>

#include "group_facts.h"
#include "reader/blocks/walk.h"
#include "reader/model/channel_names.h"
#include "reader/values/text_encoding.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string nameOf(const Channel& channel) {
  constexpr std::size_t longest = 1024;
  const std::string name = fromUtf8(channel.name.substr(0, longest));
  return name.empty() ? "unnamed" : name;
}

}  // namespace

ContentChoice::ContentChoice(BlockCopy& blocks, const std::vector<DataGroup>& data_groups,
                             const GroupTest& is_wanted, const std::vector<std::string>& channels,
                             const NoteSink& note)
    : blocks_(blocks), data_groups_(data_groups), takes_all_(channels.empty()) {
  for (const DataGroup& data_group : data_groups_) {
    if (hasElementsElsewhere(data_group)) {
      with_elements_.insert(&data_group);
    }
    for (const ChannelGroup& group : data_group.groups) {
      group_places_.insert({group.offset, {&data_group, &group, 0}});
      for (std::size_t i = 0; i < group.channels.size() && !takes_all_; ++i) {
        places_.insert({group.channels[i].offset, {&data_group, &group, i}});
      }
    }
  }
  NamePatterns patterns(channels);
  for (const DataGroup& data_group : data_groups_) {
    for (const ChannelGroup& group : data_group.groups) {
      if (is_wanted(data_group, group)) {
        choose(data_group, group, patterns);
      }
    }
  }
  takeNeeds();
  if (!isEmpty()) {
    patterns.noteThoseWithoutAny(note);
  }
}

void ContentChoice::choose(const DataGroup& data_group, const ChannelGroup& group,
                           NamePatterns& patterns) {
  if (takes_all_) {
    takeGroup(data_group, group);
    return;
  }
  ChannelNames names;
  for (std::size_t i = 0; i < group.channels.size(); ++i) {
    const std::string& path = names.next(group.channels[i]);
    if (patterns.fit(nameOf(group.channels[i]), path)) {
      take({&data_group, &group, i});
    }
  }
}

void ContentChoice::takeGroup(const DataGroup& data_group, const ChannelGroup& group) {
  if (groups_.insert(group.offset).second) {
    pending_groups_.push_back({&data_group, &group, 0});
  }
}

void ContentChoice::take(std::uint64_t channel) {
  const auto place = places_.find(channel);
  if (place != places_.end()) {
    take(place->second);
  }
}

/// Takes a channel with its members, and with the structures that it is a member of.
void ContentChoice::take(const Place& place) {
  const Channels& channels = place.group->channels;
  const Channel& channel = channels[place.index];
  if (!channels_.insert(channel.offset).second) {
    return;
  }
  pending_.push_back(place);
  for (std::size_t i = place.index + 1; i < channels.size() && channels[i].depth > channel.depth;
       ++i) {
    if (channels_.insert(channels[i].offset).second) {
      pending_.push_back({place.data_group, place.group, i});
    }
  }
  std::size_t depth = channel.depth;
  for (std::size_t i = place.index; depth > 0 && i-- > 0;) {
    if (channels[i].depth < depth) {
      depth = channels[i].depth;
      if (!around_.insert(channels[i].offset).second) {
        break;
      }
      pending_.push_back({place.data_group, place.group, i});
    }
  }
}

void ContentChoice::takeNeeds() {
  while (!pending_.empty() || !pending_groups_.empty()) {
    std::vector<Place>& pending = pending_.empty() ? pending_groups_ : pending_;
    const bool is_group = pending_.empty();
    const Place place = pending.back();
    pending.pop_back();
    if (is_group) {
      takeNeedsOf(*place.data_group, *place.group);
    } else {
      takeNeedsOf(place);
    }
  }
}

/// The masters of a group, or all that it has.
void ContentChoice::takeNeedsOf(const DataGroup& data_group, const ChannelGroup& group) {
  const bool stays_whole = with_elements_.count(&data_group) > 0;
  for (std::size_t i = 0; i < group.channels.size(); ++i) {
    if (takes_all_ || stays_whole || group.channels[i].isMaster()) {
      take({&data_group, &group, i});
    }
  }
  for (std::size_t i = 0; stays_whole && i < data_group.groups.size(); ++i) {
    takeGroup(data_group, data_group.groups[i]);
  }
  const auto master = group_places_.find(group.hasRemoteMaster() ? group.master_group : 0);
  if (master != group_places_.end()) {
    takeGroup(*master->second.data_group, *master->second.group);
  }
}

/// Groups of values, and channels with sizes and axes.
void ContentChoice::takeNeedsOf(const Place& place) {
  const Channel& channel = place.group->channels[place.index];
  takeGroup(*place.data_group, *place.group);
  if (channel.type == Channel::variable_length) {
    const auto values = group_places_.find(channel.data);
    if (values != group_places_.end()) {
      takeGroup(*values->second.data_group, *values->second.group);
    }
  }
  if (takes_all_) {
    return;
  }
  if (channel.type == Channel::maximum_length) {
    take(channel.data);
  }
  std::vector<std::uint64_t> arrays;
  if (!channel.array.dimensions.empty()) {
    arrays.push_back(channel.array.offset);
    for (const ArrayShape& inner : channel.array.inner) {
      arrays.push_back(inner.offset);
    }
  }
  for (const std::uint64_t array : arrays) {
    if (const auto block = readRawBlock(blocks_.file(), array)) {
      forEachLink(blocks_.file(), *block, [&](std::uint64_t number, std::int64_t link) {
        if (number > 0) {
          take(static_cast<std::uint64_t>(link));
        }
      });
    }
  }
}

/// Of a damaged file some blocks may not be known as channels of a group: their bytes are not.
void ContentChoice::leaveOutOthers() {
  for (const DataGroup& data_group : data_groups_) {
    bool stays = false;
    for (const ChannelGroup& group : data_group.groups) {
      stays = stays || has(group);
      if (!has(group)) {
        blocks_.leaveOut(blocks_.table().find(group.offset));
      }
      for (const Channel& channel : group.channels) {
        if (!hasAnyOf(channel)) {
          blocks_.leaveOut(blocks_.table().find(channel.offset));
        }
      }
    }
    if (!stays) {
      blocks_.leaveOut(blocks_.table().find(data_group.offset));
    }
  }
  for (std::uint32_t block = 0; block < blocks_.table().size() && !takes_all_; ++block) {
    const BlockEntry& entry = blocks_.table()[block];
    const bool is_unknown = (entry.letters() == "CN" && places_.count(entry.offset) == 0) ||
                            (entry.letters() == "CG" && group_places_.count(entry.offset) == 0);
    if (is_unknown) {
      blocks_.leaveOut(block);
    }
  }
}

void leaveOutAttachmentsOfNothing(BlockCopy& blocks) {
  const BlockTable& table = blocks.table();
  std::unordered_set<std::uint32_t> of_others;
  std::unordered_set<std::uint32_t> of_copied;
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const BlockType& type = typeOf(table[block].letters());
    const auto raw = type.isKnown() && type.may_refer
                         ? readRawBlock(blocks.file(), table[block].offset)
                         : std::nullopt;
    if (!raw) {
      continue;
    }
    forEachWalkedLink(
        blocks.file(), *raw, table[block], [&](std::uint64_t number, std::uint64_t link) {
          const std::uint32_t target = type.refers(number) ? table.find(link) : BlockTable::none;
          if (target != BlockTable::none && table[target].letters() == "AT") {
            (blocks.isCopied(block) ? of_copied : of_others).insert(target);
          }
        });
  }
  for (const std::uint32_t attachment : of_others) {
    if (of_copied.count(attachment) == 0) {
      blocks.leaveOut(attachment);
    }
  }
}

}  // namespace mdf_tools
