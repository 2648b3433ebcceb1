#include "file_summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "../blocks/block_fields.h"
#include "../blocks/walk.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

using ChannelsOfGroups = std::unordered_map<std::uint64_t, GroupChannels>;  // by their offsets

void addTo(GroupChannels& channels, const Channel& channel) {
  ++channels.count;
  if (channel.isBetterMasterThan(channels.master ? &*channels.master : nullptr)) {
    channels.master = channel;
  }
}

std::string sourceOf(InputFile& file, const ChannelGroup& group, Texts& texts) {
  const Source source = readSource(file, group.source, texts);
  std::string words(source.name);
  if (!source.path.empty() && source.path != source.name) {
    words += words.empty() ? "" : " ";
    words += source.path;
  }
  return words;
}

void addGroups(InputFile& file, ChannelsOfGroups& channels, FileSummary& summary) {
  for (const DataGroup& data_group : summary.description.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      GroupSummary each;
      each.data_group = &data_group;
      each.group = &group;
      each.source = sourceOf(file, group, *summary.description.texts);
      each.channels = std::move(channels[group.offset]);
      summary.channel_count += each.channels.count;
      summary.groups.push_back(std::move(each));
    }
  }
}

using GroupsByOffset = std::unordered_map<std::uint64_t, GroupSummary*>;

GroupsByOffset byOffset(FileSummary& summary) {
  GroupsByOffset groups;
  for (GroupSummary& each : summary.groups) {
    groups.emplace(each.group->offset, &each);
  }
  return groups;
}

void addSpans(InputFile& file, Depth depth, RecordFacts& facts, FileSummary& summary,
              const FindingSink& report) {
  const GroupsByOffset groups = byOffset(summary);
  AxisSpans spans(file, report);
  if (depth == Depth::records) {
    spans.readEnds(facts, [&](const ChannelGroup& group) {
      const auto known = groups.find(group.offset);
      return known == groups.end() ? nullptr : known->second->master();
    });
  }
  for (GroupSummary& each : summary.groups) {
    const ChannelGroup& group = *each.group;
    if (depth == Depth::records) {
      each.records = facts.recordsOf(group.offset, group.cycles);
    } else if (facts.file().isCountFinal(group)) {
      each.records.records = group.cycles;
    }
    if (each.master() != nullptr) {
      each.span = spans.of(group.offset, each.records.records.value_or(0), *each.master());
    }
  }
}

/// A group with its master in another one has as many records as that, or its span is not known.
void addRemoteMasters(FileSummary& summary) {
  const GroupsByOffset groups = byOffset(summary);
  for (GroupSummary& each : summary.groups) {
    const auto other = groups.find(each.group->master_group);
    if (each.master() != nullptr || !each.group->hasRemoteMaster() || other == groups.end()) {
      continue;
    }
    const GroupSummary& with_master = *other->second;
    each.channels.master = with_master.channels.master;
    if (with_master.records.records == each.records.records) {
      each.span = with_master.span;
    }
  }
}

void addDuration(FileSummary& summary) {
  constexpr unsigned over_time = 1;
  for (const GroupSummary& each : summary.groups) {
    const Channel* const master = each.master();
    const auto extent = each.extent();
    if (master != nullptr && master->sync_type == over_time && extent &&
        *extent >= summary.duration.value_or(0)) {
      summary.duration = extent;
    }
  }
}

void countBlocks(DataFile& data_file, const BlockTable& blocks, FileSummary& summary) {
  InputFile& file = data_file.bytes();
  summary.block_bytes = std::min(file.size(), header_block_offset);
  std::uint64_t covered = summary.block_bytes;
  std::map<std::array<char, 2>, TypeCount> counts;  // names would be made for each block again
  for (const std::uint64_t offset : blocks.offsets()) {
    const auto block = readRawBlock(file, offset);
    if (!block) {
      break;  // the file has been cut meanwhile
    }
    const std::uint64_t bytes = data_file.endOf(*block) - offset;
    TypeCount& count = counts[{block->id[2], block->id[3]}];
    ++count.blocks;
    count.bytes += bytes;
    summary.block_bytes += bytes;
    summary.gap_bytes += offset > covered ? offset - covered : 0;
    covered = std::max(covered, offset + bytes);
  }
  summary.gap_bytes += file.sizeFrom(covered);
  for (const auto& [letters, count] : counts) {
    summary.blocks.emplace(printable({letters.data(), letters.size()}), count);
  }
}

void addReductions(InputFile& file, const BlockTable& blocks, FileSummary& summary) {
  const GroupsByOffset groups = byOffset(summary);
  for (std::uint32_t i = 0; i < blocks.size(); ++i) {
    const std::uint32_t parent = blocks[blocks[i].head].parent;
    const bool is_reduction = blocks[i].letters() == "SR" && parent != BlockTable::none;
    const auto group = is_reduction ? groups.find(blocks[parent].offset) : groups.end();
    const auto block = readFields(file, is_reduction ? blocks[i].offset : 0, "SR");
    if (block && group != groups.end()) {
      group->second->reductions.push_back({block->real("sr_interval"),
                                           static_cast<unsigned>(block->number("sr_sync_type")),
                                           block->number("sr_cycle_count")});
    }
  }
}

/// Walking reports links and lengths; what is wrong with the chains in them is for `mdf check`.
std::size_t lengthOfChain(InputFile& file, std::uint64_t first, std::string_view letters) {
  std::size_t length = 0;
  forEachInChain(
      file, first, letters, [](const Finding&) {}, [&](const BlockFields&) { ++length; });
  return length;
}

void addCounts(InputFile& file, FileSummary& summary) {
  const Header& header = summary.description.header;
  summary.history_count = lengthOfChain(file, header.first_history, "FH");
  summary.hierarchy_count = static_cast<std::size_t>(summary.blocks["CH"].blocks);
  if (summary.hierarchy_count == 0) {
    summary.blocks.erase("CH");
  }
  summary.attachment_count = lengthOfChain(file, header.first_attachment, "AT");
  summary.event_count = lengthOfChain(file, header.first_event, "EV");
}

}  // namespace

std::optional<double> GroupSummary::rate() const {
  const auto count = static_cast<double>(records.records.value_or(0));
  const double length = extent().value_or(0);
  return length > 0 && std::isfinite(length) ? std::optional((count - 1) / length) : std::nullopt;
}

std::string ReductionSummary::unit() const {
  constexpr std::array<const char*, 5> units = {"", "s", "rad", "m", "records"};
  return sync_type < units.size() ? units[sync_type] : "";
}

FileSummary summarise(InputFile& file, Depth depth, const FindingSink& report) {
  FileSummary summary;
  RecordFacts facts(file, report);
  const BlockTable blocks = walkBlocks(file, report);
  countBlocks(facts.file(), blocks, summary);
  const FindingSink known = [](const Finding&) {};
  ChannelsOfGroups channels;
  summary.description = readDescription(file, summary.blocks.empty() ? known : report,
                                        [&](const ChannelGroup& group, const Channel& channel) {
                                          addTo(channels[group.offset], channel);
                                        });
  facts.know(summary.description);
  summary.properties = readProperties(file, summary.description.header.comment_block);
  addGroups(file, channels, summary);
  addReductions(file, blocks, summary);
  addSpans(file, depth, facts, summary, report);
  addRemoteMasters(summary);
  addDuration(summary);
  addCounts(file, summary);
  return summary;
}

}  // namespace mdf_reader
