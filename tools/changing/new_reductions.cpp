#include "new_reductions.h"

#include <mdf_writer/stream/blocks.h>

#include <algorithm>
#include <memory>
#include <string>
#include <unordered_set>

#include "copy_failure.h"
#include "datablocks/srblock.h"
#include "description/cgblock.h"
#include "framework/wire.h"
#include "group_facts.h"
#include "reader/blocks/block_fields.h"
#include "record_reduction.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::CGBLOCK;
using mdf_v4_10::SRBLOCK;

namespace {

const FindingSink silent = [](const Finding& /*finding*/) {};

/// A reduction of one interval, and the data that it becomes.
struct Made {
  Made(BlockWriter& out, const ChannelGroup& group, double interval, Conversion* conversion,
       RecordCopy& change)
      : seconds(interval),
        data(out, "RD", 0, out.form().block_bytes),
        reduction(group, interval, conversion, [this, &change](std::string_view record) {
          if (change.packing() == nullptr) {
            data.append(record);
          } else {
            packed.clear();
            change.packing()->appendReduced(record, packed);
            data.append(packed);
          }
        }) {}

  double seconds;
  DataWriter data;
  std::string packed;
  RecordReduction reduction;
};

}  // namespace

NewReductions::NewReductions(BlockCopy& blocks, CopyContents& contents, const CopyOptions& options,
                             const FindingSink& report, const NoteSink& note)
    : blocks_(blocks),
      contents_(contents),
      options_(options),
      note_(note),
      conversions_(blocks.file(), report) {}

/// Whether a reduction is one over time of an interval that is made.
bool NewReductions::isAsked(std::uint32_t block) {
  const auto reduction = readFields(blocks_.file(), blocks_.table()[block].offset, "SR");
  const std::vector<double>& wanted = options_.reductions;
  return reduction && reduction->number("sr_sync_type") == SRBLOCK::SR_SYNCTYPE_TIME_SECONDS &&
         std::find(wanted.begin(), wanted.end(), reduction->real("sr_interval")) != wanted.end();
}

void NewReductions::plan() {
  std::unordered_set<std::uint64_t> made;
  std::uint64_t others = 0;
  std::string why;
  for (const DataGroup& data_group : contents_.dataGroups()) {
    groups_.emplace_back();
    const bool stays_whole = hasElementsElsewhere(data_group);
    for (const ChannelGroup& group : data_group.groups) {
      if (group.holdsVariableLength() || contents_.isDropped(group)) {
        continue;
      }
      const std::string problem = stays_whole ? "its arrays have elements with records of their own"
                                              : RecordReduction::problemOf(blocks_.file(), group);
      if (problem.empty()) {
        groups_.back().push_back(&group);
        made.insert(group.offset);
      } else if (others++ == 0) {
        why = "channel group " + std::to_string(group.index) +
              " gets no sample reductions: " + problem;
      }
    }
  }
  if (others > 0) {
    note_(why + (others == 1 ? "" : "; neither do " + std::to_string(others - 1) + " more"));
  }
  const BlockTable& table = blocks_.table();
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const std::uint32_t parent = table[table[block].head].parent;
    if (table[block].letters() == "SR" && parent != BlockTable::none &&
        made.count(table[parent].offset) > 0 && isAsked(block)) {
      blocks_.leaveOut(block);
    }
  }
}

void NewReductions::write(BlockWriter& out) {
  const BlockTable& table = blocks_.table();
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    if (table[block].letters() == "SR" && blocks_.isCopied(block)) {
      last_[table[table[block].head].parent] = {block, SRBLOCK::sr_sr_next};
    }
  }
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    if (!groups_[i].empty()) {
      write(out, contents_.dataGroups()[i], groups_[i]);
    }
  }
}

void NewReductions::write(BlockWriter& out, const DataGroup& data_group,
                          const std::vector<const ChannelGroup*>& groups) {
  Records records(contents_.dataFile(), data_group, silent);
  if (groups.size() > 1) {
    records.expect(groups, CopyLimits::forFile(blocks_.file().size()));
  }
  for (const ChannelGroup* const group : groups) {
    write(out, records, *group);
  }
  if (!contents_.dataFile().mayGoOnAfter(records.storedBytes())) {
    throw CopyFailure("its groups have the same data again and again");
  }
}

void NewReductions::write(BlockWriter& out, Records& records, const ChannelGroup& group) {
  Conversion* const conversion = conversions_.at(group.masterChannel()->conversion);
  RecordCopy change = contents_.changeOf(group);
  RecordTimes times(group, conversion);
  std::vector<std::unique_ptr<Made>> all;
  for (const double seconds : options_.reductions) {
    all.push_back(std::make_unique<Made>(out, group, seconds, conversion, change));
  }
  std::string record;
  contents_.forEachSpan(records, group, [&](const RecordSpan& span) {
    const std::vector<double>& at = times.of(span);
    for (std::size_t i = 0; i < span.count; ++i) {
      record = change.shifted(span.at(i));
      record.resize(static_cast<std::size_t>(group.recordBytes()), '\0');
      for (const auto& each : all) {
        each->reduction.add(at[i], record);
      }
    }
  });
  std::vector<std::string> reductions;
  for (const auto& each : all) {
    each->reduction.end();
    const std::uint64_t data = each->data.finish();
    if (each->reduction.count() > 0) {
      SRBLOCK block(each->reduction.count(), each->seconds, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS,
                    static_cast<mdf_v4_10::LINK>(data), 0);
      block.setValidationBytesFlag(contents_.invalidationBytesOf(group) > 0);
      reductions.push_back(mdf_writer::blockBytes(block));
    }
  }
  link(out, group, std::move(reductions));
}

/// Puts reductions after those that the group has.
void NewReductions::link(BlockWriter& out, const ChannelGroup& group,
                         std::vector<std::string> reductions) {
  std::uint64_t next = 0;
  for (auto block = reductions.rbegin(); block != reductions.rend(); ++block) {
    mdf_v4_10::detail::storeLe(&(*block)[RawBlock::header_size], next);
    next = out.out().add(*block);
  }
  const std::uint32_t index = blocks_.table().find(group.offset);
  if (next != 0) {
    const auto last = last_.find(index);
    blocks_.setLink(
        last == last_.end() ? BlockCopy::Link{index, CGBLOCK::cg_sr_first} : last->second, next);
  }
}

}  // namespace mdf_tools
