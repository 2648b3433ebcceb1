#include "joined_data.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <string>
#include <utility>

#include "copy_failure.h"
#include "description/cgblock.h"
#include "description/cnblock.h"
#include "description/dgblock.h"
#include "fileblocks/hdblock.h"
#include "group_facts.h"
#include "joined_description.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

using mdf_v4_10::CGBLOCK;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::HDBLOCK;

namespace {

constexpr std::size_t most_of_a_name = 60;

const FindingSink silent = [](const Finding& /*finding*/) {};

/// Whether records of a group hold values of a channel of a data group.
bool isReferred(const DataGroup& data_group, const ChannelGroup& values) {
  for (const ChannelGroup& group : data_group.groups) {
    for (const Channel& channel : group.channels) {
      if (channel.type == Channel::variable_length && channel.data == values.offset) {
        return true;
      }
    }
  }
  return false;
}

std::string shown(const JoinInput& input, const ChannelGroup& group) {
  return "channel group " + std::to_string(group.index) + " of " + input.name;
}

}  // namespace

JoinedData::JoinedData(JoinInputs& inputs, std::vector<JoinedGroup>& groups,
                       std::optional<DataForm> form, const NoteSink& note)
    : inputs_(inputs), groups_(groups), form_(form), note_(note) {}

void JoinedData::plan(bool is_wide) {
  for (JoinedGroup& group : groups_) {
    planGroup(group, is_wide);
  }
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    for (const DataGroup& data_group : inputs_[file].description.data_groups) {
      if (isAnew(inputs_[file], data_group)) {
        planDataGroup(file, data_group);
      } else {
        planStaying(inputs_[file], data_group);
      }
    }
  }
  if (without_reductions_ > 0) {
    note_("sample reductions of " + std::to_string(without_reductions_) + " channel group" +
          (without_reductions_ == 1 ? " are" : "s are") +
          " left out: they would not be those of the joined records");
  }
  findComponents();
}

void JoinedData::planGroup(JoinedGroup& group, bool is_wide) {
  group.parts.assign(group.sources.size(), {});
  group.counts.clear();
  for (const GroupSource& source : group.sources) {
    JoinInput& input = inputs_[source.file];
    const bool matters = group.sources.size() > 1 && hasVirtual(*source.group);
    group.counts.push_back(
        !matters ? 0
        : input.data.isCountFinal(*source.group)
            ? source.group->cycles
            : Records(input.data, *source.data_group, silent).countOf(*source.group).value_or(0));
  }
  const Channel* const master = group.sources.front().group->masterChannel();
  if (group.sources.size() > 1 && master != nullptr && !master->isVirtual() &&
      master->sync_type != 1) {
    note_("the master channel \"" + printable(master->name, Harmless::utf8, most_of_a_name) +
          "\" of channel group " + std::to_string(group.sources.front().group->index) +
          " is not over time: its values stay as they are in the files");
  }
  const bool stays_whole = hasElementsElsewhere(*group.sources.front().data_group);
  group.change = std::make_unique<GroupChange>(inputs_, group.sources, group.counts, is_wide);
  if (stays_whole && !group.change->isNone()) {
    throw CopyFailure(shown(inputs_[group.sources.front().file], *group.sources.front().group) +
                      " has arrays whose elements have records of their own, and its times would "
                      "change");
  }
}

bool JoinedData::isAnew(JoinInput& input, const DataGroup& data_group) {
  if (hasElementsElsewhere(data_group) || data_group.groups.empty()) {
    return false;
  }
  return form_ || input.data.isUnfinished() ||
         std::any_of(
             data_group.groups.begin(), data_group.groups.end(), [&](const ChannelGroup& group) {
               return !group.holdsVariableLength() && (groupOf(input, group).sources.size() > 1 ||
                                                       !groupOf(input, group).change->isNone());
             });
}

void JoinedData::planStaying(JoinInput& input, const DataGroup& data_group) {
  if (hasElementsElsewhere(data_group) && input.data.isUnfinished()) {
    throw CopyFailure(input.name +
                      " was not finished, and has arrays whose elements have records of their own");
  }
  for (const ChannelGroup& group : data_group.groups) {
    if (!group.holdsVariableLength()) {
      groupOf(input, group).parts.front().records = group.cycles;
    }
  }
}

/// Groups whose records are written anew get a data group each.
void JoinedData::planDataGroup(std::size_t file, const DataGroup& data_group) {
  JoinInput& input = inputs_[file];
  bool has_home = false;
  input.blocks.cut({input.indexOf(data_group.offset), DGBLOCK::dg_data});
  for (const ChannelGroup& group : data_group.groups) {
    if (group.holdsVariableLength()) {
      leaveOut(input, group);
      if (!isReferred(data_group, group)) {
        note_(shown(input, group) + " is left out: it holds values that no channel has");
      }
    } else if (isHome(file, groupOf(input, group))) {
      has_home = true;
      planBlocks(groupOf(input, group));
    } else {
      leaveOut(input, group);
    }
  }
  if (!has_home) {
    input.blocks.leaveOut(input.indexOf(data_group.offset));
  }
}

void JoinedData::leaveOut(JoinInput& input, const ChannelGroup& group) {
  input.blocks.leaveOut(input.indexOf(group.offset));
  for (const Channel& channel : group.channels) {
    input.blocks.leaveOut(input.indexOf(channel.offset));
  }
}

/// Cuts off what the blocks of a group no longer lead to, and says how its channels change.
void JoinedData::planBlocks(JoinedGroup& joined) {
  const GroupSource& home = joined.sources.front();
  JoinInput& input = inputs_[home.file];
  const ChannelGroup& group = *home.group;
  for (const Channel& channel : group.channels) {
    if (channel.type == Channel::variable_length) {
      input.blocks.cut({input.indexOf(channel.offset), CNBLOCK::cn_data});
    }
  }
  const bool are_others = joined.sources.size() > 1 || !joined.change->isNone();
  if (are_others) {
    input.blocks.cut({input.indexOf(group.offset), CGBLOCK::cg_sr_first});
    const bool has_reductions =
        std::any_of(joined.sources.begin(), joined.sources.end(),
                    [](const GroupSource& source) { return source.group->first_reduction != 0; });
    without_reductions_ += has_reductions ? 1U : 0U;
  }
  for (const ValueChange& value : joined.change->values()) {
    const Channel& channel = group.channels[value.channel];
    if (value.form == ValueChange::Form::wide_real) {
      input.blocks.cut({input.indexOf(channel.offset), CNBLOCK::cn_cc_conversion});
    }
  }
}

/// Groups that share a data group in one of the files are written together, as their records are
/// read together.
void JoinedData::findComponents() {
  std::vector<std::size_t> parents(groups_.size());
  std::iota(parents.begin(), parents.end(), std::size_t{0});
  const auto root = [&](std::size_t group) {
    while (parents[group] != group) {
      parents[group] = parents[parents[group]];
      group = parents[group];
    }
    return group;
  };
  std::vector<std::pair<std::size_t, Component::Data>> data;  // each with one of its groups
  for (std::size_t file = 0; file < inputs_.size(); ++file) {
    for (const DataGroup& data_group : inputs_[file].description.data_groups) {
      std::optional<std::size_t> first;
      for (const ChannelGroup& group : data_group.groups) {
        if (!group.holdsVariableLength() && isAnew(inputs_[file], data_group)) {
          const std::size_t own = root(inputs_[file].joined.at(group.offset));
          const std::size_t other = first ? root(*first) : own;
          first = std::min(own, other);
          parents[std::max(own, other)] = *first;
        }
      }
      if (first) {
        data.push_back({*first, {file, &data_group}});
      }
    }
  }
  std::map<std::size_t, Component> components;
  for (const auto& [group, each] : data) {
    components[root(group)].data.push_back(each);
  }
  for (std::size_t group = 0; group < groups_.size(); ++group) {
    const auto component = components.find(root(group));
    if (component != components.end()) {
      component->second.groups.push_back(group);
    }
  }
  components_.clear();
  for (auto& [first, component] : components) {
    components_.push_back(std::move(component));
  }
}

void JoinedData::write(BlockWriter& out) {
  for (const Component& component : components_) {
    JoinedRecords(inputs_, groups_, component, out).write();
  }
}

/// From the last one to the first.
void JoinedData::link(NewBlocks& out) {
  std::uint64_t next = 0;
  for (std::size_t file = inputs_.size(); file-- > 0;) {
    const std::vector<DataGroup>& data_groups = inputs_[file].description.data_groups;
    for (std::size_t i = data_groups.size(); i-- > 0;) {
      const std::uint32_t block = inputs_[file].indexOf(data_groups[i].offset);
      if (block != BlockTable::none && inputs_[file].blocks.isCopied(block)) {
        linkDataGroup(file, data_groups[i], next, out);
      }
    }
  }
  inputs_.front().blocks.setLink({0, HDBLOCK::hd_dg_first}, next);
  for (const JoinedGroup& joined : groups_) {
    redirect(joined);
  }
}

/// The first group that stays keeps the data group; the others get one each, after it.
/// @param next where the data group after it is; then where it is itself.
void JoinedData::linkDataGroup(std::size_t file, const DataGroup& data_group, std::uint64_t& next,
                               NewBlocks& out) {
  JoinInput& input = inputs_[file];
  const std::uint32_t block = input.indexOf(data_group.offset);
  if (!isAnew(input, data_group)) {
    input.blocks.setLink({block, DGBLOCK::dg_dg_next}, next);
    next = input.blocks.placeOf(block);
    return;
  }
  std::vector<const ChannelGroup*> staying;
  for (const ChannelGroup& group : data_group.groups) {
    if (!group.holdsVariableLength() && isHome(file, groupOf(input, group))) {
      staying.push_back(&group);
    }
  }
  const std::uint64_t comment = input.blocks.newLink({block, DGBLOCK::dg_md_comment});
  for (std::size_t i = staying.size(); i-- > 0;) {
    JoinedGroup& joined = groupOf(input, *staying[i]);
    const std::uint32_t index = input.indexOf(staying[i]->offset);
    describeJoined(inputs_, joined, out);
    input.blocks.setLink({index, next_link}, 0);
    if (i > 0) {
      next = out.add(dataGroupBlock(next, input.blocks.placeOf(index), joined.data, comment));
      joined.data_group = next;
      input.blocks.moveGroup(index, next);
    } else {
      input.blocks.setLink({block, DGBLOCK::dg_data}, joined.data);
      input.blocks.setLink({block, DGBLOCK::dg_cg_first}, input.blocks.placeOf(index));
      input.blocks.setLink({block, DGBLOCK::dg_dg_next}, next);
      input.blocks.setField(block, "dg_rec_id_size", 0);
      next = input.blocks.placeOf(block);
      joined.data_group = next;
    }
  }
}

void JoinedData::redirect(const JoinedGroup& joined) {
  const GroupSource& home = joined.sources.front();
  const BlockCopy& blocks = inputs_[home.file].blocks;
  const auto placeOf = [&](std::uint64_t offset) {
    return blocks.placeOf(blocks.table().find(offset));
  };
  for (std::size_t i = 1; i < joined.sources.size(); ++i) {
    const ChannelGroup& group = *joined.sources[i].group;
    JoinInput& input = inputs_[joined.sources[i].file];
    const std::uint32_t index = input.indexOf(group.offset);
    input.blocks.sendTo(index, placeOf(home.group->offset));
    input.blocks.moveGroup(index, joined.data_group);
    for (std::size_t channel = 0; channel < group.channels.size(); ++channel) {
      input.blocks.sendTo(input.indexOf(group.channels[channel].offset),
                          placeOf(home.group->channels[channel].offset));
    }
  }
}

}  // namespace mdf_tools
