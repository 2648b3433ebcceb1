#include "file_summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "description/cnblock.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::detail::loadLe;

namespace {

/// The factor of a linear conversion; 1 for none and for the identity. Other conversions have none.
std::optional<double> linearFactor(InputFile& file, std::uint64_t conversion) {
  if (conversion == 0) {
    return 1;
  }
  const auto block = readFields(file, conversion, "CC");
  if (!block || block->number("cc_type") > 1) {
    return std::nullopt;
  }
  if (block->number("cc_type") == 0) {
    return 1;
  }
  std::array<char, 16> values{};
  if (block->tailBytes() < values.size() ||
      file.readAt(block->tailAt(), values.data(), values.size()) < values.size()) {
    return std::nullopt;
  }
  return loadLe<double>(values.data() + 8);
}

/// From the least to the greatest raw value of a master channel.
std::optional<double> rawExtent(InputFile& file, std::uint64_t records, const Channel& master) {
  if (master.type == Channel::virtual_master) {  // its raw value is the record's index
    return static_cast<double>(records - 1);
  }
  const auto block = readFields(file, master.offset, "CN");
  if (!block || !block->hasFlag("cn_flags", CNBLOCK::value_range_valid)) {
    return std::nullopt;
  }
  return block->real("cn_val_range_max") - block->real("cn_val_range_min");
}

/// What is collected of a group while its channels pass by.
struct GroupChannels {
  std::size_t count = 0;
  std::optional<Channel> master;

  void add(const Channel& channel) {
    ++count;
    if (channel.isBetterMasterThan(master ? &*master : nullptr)) {
      master = channel;
    }
  }

  bool areOverTime() const { return master && master->sync_type == 1; }
};

using ChannelsOfGroups = std::unordered_map<std::uint64_t, GroupChannels>;  // by their offsets

/// The channels that include a group's master: its own, or those of another group.
const GroupChannels& groupWithMaster(const ChannelGroup& group, ChannelsOfGroups& channels) {
  const GroupChannels& own = channels[group.offset];
  const auto remote = group.hasRemoteMaster() ? channels.find(group.master_group) : channels.end();
  return own.master || remote == channels.end() ? own : remote->second;
}

void addExtent(InputFile& file, GroupSummary& summary, const Channel& master) {
  summary.master_unit = master.unit;
  const std::uint64_t records = *summary.records.records;
  const auto extent = rawExtent(file, records, master);
  const auto factor = linearFactor(file, master.conversion);
  if (!extent || !factor) {
    return;
  }
  summary.extent = std::abs(*extent * *factor);
  if (std::isfinite(*summary.extent) && *summary.extent > 0) {
    summary.rate = static_cast<double>(records - 1) / *summary.extent;
  }
}

GroupSummary summariseGroup(InputFile& file, const DataGroup& data_group, const ChannelGroup& group,
                            Texts& texts) {
  GroupSummary summary{&data_group, &group, {}, std::string(group.name), {}, {}, {}, {}, 0};
  const Source source = readSource(file, group.source, texts);
  summary.source = source.name;
  if (!source.path.empty() && source.path != source.name) {
    summary.source += summary.source.empty() ? "" : " ";
    summary.source += source.path;
  }
  return summary;
}

void countBlocks(DataFile& data_file, FileSummary& summary, const FindingSink& report) {
  InputFile& file = data_file.bytes();
  summary.block_bytes = std::min(file.size(), header_block_offset);
  std::uint64_t covered = summary.block_bytes;
  for (const std::uint64_t offset : walkBlocks(file, report).offsets()) {
    const auto block = readRawBlock(file, offset);
    if (!block) {
      break;  // the file has been cut meanwhile
    }
    const std::uint64_t bytes = data_file.endOf(*block) - offset;
    TypeCount& count = summary.blocks[printable(block->letters())];
    ++count.blocks;
    count.bytes += bytes;
    summary.block_bytes += bytes;
    summary.gap_bytes += offset > covered ? offset - covered : 0;
    covered = std::max(covered, offset + bytes);
  }
  summary.gap_bytes += file.sizeFrom(covered);
}

/// Walking reports links and lengths; what is wrong with the chains in them is for `mdf check`.
std::size_t lengthOfChain(InputFile& file, std::uint64_t first, std::string_view letters) {
  std::size_t length = 0;
  forEachInChain(
      file, first, letters, [](const Finding&) {}, [&](const BlockFields&) { ++length; });
  return length;
}

}  // namespace

FileSummary summarise(InputFile& file, const FindingSink& report) {
  FileSummary summary;
  RecordFacts facts(file, report);
  countBlocks(facts.file(), summary, report);
  const FindingSink known = [](const Finding&) {};
  ChannelsOfGroups channels;
  summary.description = readDescription(file, summary.blocks.empty() ? known : report,
                                        [&](const ChannelGroup& group, const Channel& channel) {
                                          channels[group.offset].add(channel);
                                        });
  const Header& header = summary.description.header;
  for (const DataGroup& data_group : summary.description.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      summary.groups.push_back(summariseGroup(file, data_group, group, *summary.description.texts));
      GroupSummary& added = summary.groups.back();
      added.channel_count = channels[group.offset].count;
      summary.channel_count += added.channel_count;
      const GroupChannels& with_master = groupWithMaster(group, channels);
      added.records = facts.recordsOf(group.offset, group.cycles);
      if (with_master.master && added.records.records.value_or(0) > 0) {
        addExtent(file, added, *with_master.master);
      }
      if (with_master.areOverTime() && added.extent &&
          *added.extent >= summary.duration.value_or(0)) {
        summary.duration = added.extent;
      }
    }
  }
  summary.history_count = lengthOfChain(file, header.first_history, "FH");
  summary.hierarchy_count = static_cast<std::size_t>(summary.blocks["CH"].blocks);
  if (summary.hierarchy_count == 0) {
    summary.blocks.erase("CH");
  }
  summary.attachment_count = lengthOfChain(file, header.first_attachment, "AT");
  summary.event_count = lengthOfChain(file, header.first_event, "EV");
  return summary;
}

}  // namespace mdf_tools
