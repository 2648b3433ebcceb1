#include "data_copy.h"

#include <algorithm>
#include <string>

#include "copy_failure.h"
#include "datablocks/srblock.h"
#include "description/dgblock.h"
#include "group_facts.h"
#include "mixed_copy.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_block.h"
#include "reader/data/data_links.h"
#include "reader/data/data_stream.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::SRBLOCK;

namespace {

/// Of a record, where those that stand apart are not there.
constexpr std::uint32_t most_invalidation_bytes = std::uint32_t{1} << 16U;

/// Bytes of blocks that are looked at before any are copied.
constexpr std::uint64_t times_read = 4;
constexpr std::uint64_t always_read = std::uint64_t{1} << 20U;

const FindingSink silent = [](const Finding& /*finding*/) {};

bool leadsToData(InputFile& file, std::uint64_t target) {
  const auto block = target == 0 ? std::nullopt : readRawBlock(file, target);
  return block && block->hasId() &&
         (isDataBlock(*block) || isDataList(*block) ||
          block->type().contents == Contents::list_of_lists);
}

}  // namespace

DataCopy::DataCopy(BlockCopy& blocks, CopyContents& contents, const CopyOptions& options,
                   const FindingSink& report, const NoteSink& note)
    : blocks_(blocks),
      contents_(contents),
      options_(options),
      report_(report),
      note_(note),
      data_file_(contents.dataFile()),
      for_cuts_(blocks.file().size(), times_read, always_read) {}

DataCopy::Way DataCopy::wayOf(const DataGroup& data_group) {
  const std::vector<ChannelGroup>& groups = data_group.groups;
  const bool is_mixed =
      groups.size() > 1 || (groups.size() == 1 && groups.front().holdsVariableLength());
  if (groups.empty() || hasElementsElsewhere(data_group)) {
    return isAnew() ? Way::as_bytes : Way::as_blocks;
  }
  const bool is_by_records = isPacked(data_group) || isCut({data_group.offset, data_group.data});
  const bool loses_groups =
      std::any_of(groups.begin(), groups.end(),
                  [&](const ChannelGroup& group) { return contents_.isDropped(group); });
  if ((options_.sorts || contents_.hasRows() || loses_groups) && groups.size() > 1) {
    return Way::apart;
  }
  if ((isAnew() || is_by_records) && is_mixed) {
    return isUnfinished() || is_by_records ? Way::one_by_one : Way::as_bytes;
  }
  const bool loses_ids = options_.sorts && data_group.record_id_code != 0 && !is_mixed;
  return isAnew() || is_by_records || loses_ids ? Way::by_records : Way::as_blocks;
}

bool DataCopy::isPacked(const DataGroup& data_group) const {
  return std::any_of(
      data_group.groups.begin(), data_group.groups.end(),
      [&](const ChannelGroup& group) { return contents_.packingOf(group.offset) != nullptr; });
}

void DataCopy::plan() {
  for (const DataGroup& data_group : contents_.dataGroups()) {
    ways_.push_back(wayOf(data_group));
    planGroup(data_group, ways_.back());
  }
  const BlockTable& table = blocks_.table();
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const auto reduction = table[block].letters() == "SR"
                               ? readFields(blocks_.file(), table[block].offset, "SR")
                               : std::nullopt;
    if (reduction && !isUnfinished() &&
        isCut({reduction->offset(), reduction->link(SRBLOCK::sr_data)})) {
      blocks_.leaveOut(block);
    }
  }
  if (isAnew() || contents_.hasPackings()) {
    planOtherData();
  }
}

/// Whether a part of some data is not there, so that a copy of its blocks would have fewer bytes
/// than are counted.
bool DataCopy::isCut(DataLink link) {
  if (link.to == 0 || !for_cuts_.take(1)) {
    return false;
  }
  DataStream stream(data_file_, link, DataStream::Access::forward, silent);
  stream.size();
  return for_cuts_.take(stream.storedBytes()) && stream.isDamaged();
}

void DataCopy::planGroup(const DataGroup& data_group, Way way) {
  const bool has_elements = hasElementsElsewhere(data_group);
  if (has_elements && contents_.hasRows()) {
    note_("data group " + std::to_string(data_group.index) +
          " keeps all records: it has arrays whose elements have records of their own");
  }
  if (has_elements && isUnfinished()) {
    throw CopyFailure(
        "it was not finished, and has arrays whose elements have records of their own");
  }
  if (has_elements && options_.sorts && data_group.groups.size() > 1) {
    note_("data group " + std::to_string(data_group.index) +
          " stays unsorted: it has arrays whose elements have records of their own");
  }
  if (way == Way::as_bytes && dataLettersOf(blocks_.file(), data_group.data).empty()) {
    ways_.back() = Way::as_blocks;
  } else if (way != Way::as_blocks) {
    blocks_.cut({indexOf(data_group.offset), DGBLOCK::dg_data});
  }
  if (way != Way::apart) {
    return;
  }
  for (const ChannelGroup& group : data_group.groups) {
    const auto channels = channelsOfValues(blocks_, contents_, data_group, group);
    for (const BlockCopy::Link& link : channels) {
      blocks_.cut(link);
    }
    if (!channels.empty()) {
      blocks_.leaveOut(indexOf(group.offset));
    }
  }
}

/// Values of channels, sample reductions, and elements of arrays.
void DataCopy::planOtherData() {
  const BlockTable& table = blocks_.table();
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const std::string_view letters = table[block].letters();
    if (letters == "SR" && packingOfReduction(block) != nullptr) {
      planReduction(block);
    } else if (isAnew() && (letters == "CN" || letters == "SR" || letters == "CA")) {
      planOtherData(block);
    }
  }
}

void DataCopy::planOtherData(std::uint32_t block) {
  InputFile& file = blocks_.file();
  const BlockEntry& entry = blocks_.table()[block];
  if (const auto raw = readRawBlock(file, entry.offset)) {
    forEachWalkedLink(file, *raw, entry, [&](std::uint64_t number, std::uint64_t target) {
      if (leadsToData(file, target) && !dataLettersOf(file, target).empty()) {
        other_data_.push_back({{block, static_cast<std::uint32_t>(number)}, target});
        blocks_.cut(other_data_.back().link);
      }
    });
  }
}

/// The packing of the records that a sample reduction is made of.
const RecordPacking* DataCopy::packingOfReduction(std::uint32_t block) const {
  const BlockTable& table = blocks_.table();
  const std::uint32_t parent = table[table[block].head].parent;
  return parent == BlockTable::none ? nullptr : contents_.packingOf(table[parent].offset);
}

/// A sample reduction of records that lose bytes.
void DataCopy::planReduction(std::uint32_t block) {
  InputFile& file = blocks_.file();
  const std::uint64_t offset = blocks_.table()[block].offset;
  const auto reduction = readFields(file, offset, "SR");
  const std::uint64_t target = reduction ? reduction->link(SRBLOCK::sr_data) : 0;
  if (target != 0 && dataLettersOf(file, target).empty()) {
    note_("the sample reduction at " + decimalAndHex(offset) +
          " is left out: its parts stand apart, or its data cannot be read");
    blocks_.leaveOut(block);
  } else if (target != 0) {
    other_data_.push_back({{block, SRBLOCK::sr_data}, target});
    blocks_.cut(other_data_.back().link);
  }
}

void DataCopy::write(BlockWriter& out) {
  contents_.writeIndexShift(out.out());
  for (std::size_t i = 0; i < ways_.size(); ++i) {
    writeGroup(out, contents_.dataGroups()[i], ways_[i]);
  }
  for (const OtherData& data : other_data_) {
    const bool is_reduction = blocks_.table()[data.link.block].letters() == "SR";
    const RecordPacking* const packing =
        is_reduction ? packingOfReduction(data.link.block) : nullptr;
    if (blocks_.isCopied(data.link.block)) {
      packing == nullptr ? writeBytes(out, data) : writeReduction(out, data, *packing);
    }
  }
}

void DataCopy::writeGroup(BlockWriter& out, const DataGroup& data_group, Way way) {
  const std::uint32_t block = indexOf(data_group.offset);
  if (way == Way::as_blocks || block == BlockTable::none || !blocks_.isCopied(block)) {
    return;
  }
  if (way == Way::as_bytes) {
    writeBytes(out, {{block, DGBLOCK::dg_data}, data_group.data});
  } else if (way == Way::by_records) {
    writeRecords(out, data_group);
  } else {
    MixedCopy(blocks_, contents_, out, data_group).write(way == Way::apart, report_);
  }
}

/// Of a reduction that was not finished, whole records are written, and counted.
void DataCopy::writeBytes(BlockWriter& out, const OtherData& data) {
  constexpr std::size_t piece = std::size_t{1} << 18U;
  const auto known = written_.find(data.target);
  if (known != written_.end()) {
    blocks_.setLink(data.link, known->second);
    return;
  }
  DataStream stream(data_file_, {blocks_.table()[data.link.block].offset, data.target},
                    DataStream::Access::forward, report_);
  DataWriter writer(out, dataLettersOf(blocks_.file(), data.target), 0, out.form().block_bytes);
  const std::uint64_t record = isUnfinished() ? reductionBytesOf(data.link.block) : 0;
  const std::uint64_t count = record == 0 ? 0 : stream.size() / record;
  const std::uint64_t end = record == 0 ? endOfValues(data) : count * record;
  for (std::uint64_t at = contents_.beginOfValues(data.target); at < end;) {
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(piece, end - at));
    const std::string_view bytes = stream.from(at, 1, most);
    if (bytes.empty()) {
      break;
    }
    writer.append(bytes);
    at += bytes.size();
  }
  if (record > 0) {
    blocks_.setField(data.link.block, "sr_cycle_count", count);
  }
  written_[data.target] = writer.finish();
  blocks_.setLink(data.link, written_[data.target]);
}

/// Where the last of the values ends that are copied.
std::uint64_t DataCopy::endOfValues(const OtherData& data) {
  const BlockEntry& entry = blocks_.table()[data.link.block];
  return entry.letters() == "CN" ? contents_.endOfValues({entry.offset, data.target}) : UINT64_MAX;
}

/// The whole records of a reduction, which lose the same bytes as those of its group.
void DataCopy::writeReduction(BlockWriter& out, const OtherData& data,
                              const RecordPacking& packing) {
  const std::uint64_t bytes = reductionBytesOf(data.link.block);
  DataStream stream(data_file_, {blocks_.table()[data.link.block].offset, data.target},
                    DataStream::Access::forward, report_);
  DataWriter writer(out, "RD", 0, out.form().block_bytes);
  std::uint64_t count = 0;
  std::string record;
  while (bytes > 0 && stream.reaches((count + 1) * bytes)) {
    record.clear();
    packing.appendReduced(stream.at(count * bytes, static_cast<std::size_t>(bytes)), record);
    writer.append(record);
    ++count;
  }
  if (isUnfinished()) {
    blocks_.setField(data.link.block, "sr_cycle_count", count);
  }
  blocks_.setLink(data.link, writer.finish());
  if (!data_file_.mayGoOnAfter(stream.storedBytes())) {
    throw CopyFailure("its groups have the same data again and again");
  }
}

/// Bytes of a record of a sample reduction: means, least and greatest values; 0 for other blocks.
std::uint64_t DataCopy::reductionBytesOf(std::uint32_t block) {
  const BlockTable& table = blocks_.table();
  const std::uint32_t parent = table[table[block].head].parent;
  if (table[block].letters() != "SR" || parent == BlockTable::none) {
    return 0;
  }
  const auto reduction = readFields(blocks_.file(), table[block].offset, "SR");
  const auto group = readFields(blocks_.file(), table[parent].offset, "CG");
  if (!reduction || !group) {
    return 0;
  }
  return 3 * group->number("cg_data_bytes") +
         (reduction->hasFlag("sr_flags", SRBLOCK::invalidation_bytes)
              ? group->number("cg_inval_bytes")
              : 0);
}

/// Records of one channel group, without record ids.
void DataCopy::writeRecords(BlockWriter& out, const DataGroup& data_group) {
  const ChannelGroup& group = data_group.groups.front();
  Records records(data_file_, data_group, report_);
  DataWriter writer(out, "DT", contents_.recordBytesOf(group), out.form().block_bytes);
  RecordCopy change = contents_.changeOf(group);
  std::uint64_t count = 0;
  std::string record;
  contents_.forEachSpan(records, group, [&](const RecordSpan& span) {
    count += span.count;
    const bool is_whole = span.size == group.recordBytes();
    if (!is_whole && group.invalidation_bytes > most_invalidation_bytes) {
      throw CopyFailure("channel group " + std::to_string(group.index) +
                        " states more invalidation bytes than could be made for its records");
    }
    if (span.step == span.size && is_whole && change.isNone()) {
      writer.append({span.bytes, span.size * span.count});
      return;
    }
    for (std::size_t i = 0; i < span.count && is_whole; ++i) {
      writer.append(change.of(span.at(i)));
    }
    for (std::size_t i = 0; i < span.count && !is_whole; ++i) {
      // Where invalidation bytes stand apart, there may be none: then all values are valid.
      record = span.at(i);
      record.resize(static_cast<std::size_t>(group.recordBytes()), '\0');
      writer.append(change.of(record));
    }
  });
  const std::uint32_t block = indexOf(data_group.offset);
  blocks_.setLink({block, DGBLOCK::dg_data}, writer.finish());
  blocks_.setField(block, "dg_rec_id_size", 0);
  blocks_.setField(indexOf(group.offset), "cg_cycle_count", count);
  if (!data_file_.mayGoOnAfter(records.storedBytes())) {
    throw CopyFailure("its groups have the same data again and again");
  }
}

}  // namespace mdf_tools
