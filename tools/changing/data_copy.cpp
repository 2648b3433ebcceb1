#include "data_copy.h"

#include <algorithm>
#include <array>
#include <string>

#include "copy_failure.h"
#include "datablocks/srblock.h"
#include "description/cnblock.h"
#include "description/dgblock.h"
#include "framework/wire.h"
#include "group_facts.h"
#include "mixed_records.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_block.h"
#include "reader/data/data_links.h"
#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"
#include "reader/model/group_choice.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::SRBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

/// Memory for the blocks of mixed records that fill side by side.
constexpr std::size_t room_for_parts = std::size_t{1} << 25U;

const FindingSink silent = [](const Finding& /*finding*/) {};

bool leadsToData(InputFile& file, std::uint64_t target) {
  const auto block = target == 0 ? std::nullopt : readRawBlock(file, target);
  return block && block->hasId() &&
         (isDataBlock(*block) || isDataList(*block) ||
          block->type().contents == Contents::list_of_lists);
}

/// A number of up to 8 bytes in a record; bytes that are not there are 0.
std::uint64_t numberIn(std::string_view record, std::size_t at, std::size_t bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes; i-- > 0;) {
    const char byte = at + i < record.size() ? record[at + i] : '\0';
    number = number << 8U | static_cast<unsigned char>(byte);
  }
  return number;
}

}  // namespace

DataCopy::DataCopy(BlockCopy& blocks, const CopyOptions& options, const FindingSink& report,
                   const NoteSink& note)
    : blocks_(blocks),
      options_(options),
      report_(report),
      note_(note),
      description_(readDescription(blocks.file(), report)),
      data_file_(blocks.file()) {}

DataCopy::Way DataCopy::wayOf(const DataGroup& data_group) const {
  const std::vector<ChannelGroup>& groups = data_group.groups;
  const bool is_mixed =
      groups.size() > 1 || (groups.size() == 1 && groups.front().holdsVariableLength());
  if (groups.empty() || hasElementsElsewhere(data_group)) {
    return isAnew() ? Way::as_bytes : Way::as_blocks;
  }
  const bool loses_groups = std::any_of(
      groups.begin(), groups.end(), [&](const ChannelGroup& group) { return isDropped(group); });
  if ((options_.sorts || rows_ || loses_groups) && groups.size() > 1) {
    return Way::apart;
  }
  if (isAnew() && is_mixed) {
    return isUnfinished() ? Way::one_by_one : Way::as_bytes;
  }
  const bool loses_ids = options_.sorts && data_group.record_id_code != 0 && !is_mixed;
  return isAnew() || loses_ids ? Way::by_records : Way::as_blocks;
}

void DataCopy::plan() {
  if (options_.hasLimits()) {
    chooseRows();
  }
  if (!options_.group.empty() || options_.drops_empty) {
    chooseGroups();
  }
  for (const DataGroup& data_group : description_.data_groups) {
    ways_.push_back(wayOf(data_group));
    planGroup(data_group, ways_.back());
  }
  if (isAnew()) {
    planOtherData();
  }
}

void DataCopy::planGroup(const DataGroup& data_group, Way way) {
  const bool has_elements = hasElementsElsewhere(data_group);
  if (has_elements && rows_) {
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
    const auto channels = channelsOf(data_group, group);
    for (const BlockCopy::Link& link : channels) {
      blocks_.cut(link);
    }
    if (!channels.empty()) {
      blocks_.leaveOut(indexOf(group.offset));
    }
  }
}

/// Finds out which records and values are within the limits. Sample reductions would no longer be
/// those of the records.
void DataCopy::chooseRows() {
  rows_.emplace(blocks_.file(), options_.limits, report_, note_);
  for (const DataGroup& data_group : description_.data_groups) {
    chooseValues(data_group);
  }
  index_shift_.emplace(blocks_, *rows_, description_.data_groups);
  blocks_.leaveOut("SR");
}

/// Leaves out channel groups that are not wanted, with their channels: others may refer to those.
/// Groups with the masters or the values of others stay with them.
void DataCopy::chooseGroups() {
  std::set<std::uint64_t> staying;
  for (const DataGroup& data_group : description_.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      if (!isGroupWanted(data_group, group)) {
        continue;
      }
      staying.insert(group.offset);
      if (group.hasRemoteMaster()) {
        staying.insert(group.master_group);
      }
      for (const Channel& channel : group.channels) {
        if (channel.type == Channel::variable_length) {
          staying.insert(channel.data);
        }
      }
    }
  }
  if (staying.empty() && !options_.group.empty()) {
    throw CopyFailure("no channel group matches \"" + options_.group + '"');
  }
  for (const DataGroup& data_group : description_.data_groups) {
    std::size_t left = data_group.groups.size();
    for (const ChannelGroup& group : data_group.groups) {
      if (staying.count(group.offset) == 0) {
        --left;
        dropped_.insert(group.offset);
        blocks_.leaveOut(indexOf(group.offset));
        for (const Channel& channel : group.channels) {
          blocks_.leaveOut(indexOf(channel.offset));
        }
      }
    }
    if (left == 0) {
      blocks_.leaveOut(indexOf(data_group.offset));
    }
  }
}

/// A data group of elements' records stays whole.
bool DataCopy::isGroupWanted(const DataGroup& data_group, const ChannelGroup& group) {
  if (hasElementsElsewhere(data_group)) {
    return std::any_of(data_group.groups.begin(), data_group.groups.end(),
                       [&](const ChannelGroup& each) { return isChosen(each, options_.group); });
  }
  if (!isChosen(group, options_.group) || !options_.drops_empty) {
    return isChosen(group, options_.group);
  }
  if (rows_) {
    return !rows_->of(group.offset).empty();
  }
  return data_file_.isCountFinal(group)
             ? group.cycles > 0
             : Records(data_file_, data_group, silent).countOf(group).value_or(1) > 0;
}

std::vector<DataCopy::OffsetPlace> DataCopy::offsetsIn(const ChannelGroup& group) {
  std::vector<OffsetPlace> places;
  for (const Channel& channel : group.channels) {
    if (channel.type == Channel::variable_length && channel.data != 0 &&
        hasOffsetInPlace(group, channel)) {
      places.push_back({channel.byte_offset, channel.bit_count / 8, channel.data});
    }
  }
  return places;
}

void DataCopy::chooseValues(const DataGroup& data_group) {
  const bool has_elements = hasElementsElsewhere(data_group);
  Records records(data_file_, data_group, silent);
  for (const ChannelGroup& group : data_group.groups) {
    for (const Channel& channel : group.channels) {
      if (channel.type == Channel::variable_length &&
          (has_elements || !hasOffsetInPlace(group, channel))) {
        values_[channel.data].are_all = true;
      }
    }
    const std::vector<OffsetPlace> places = offsetsIn(group);
    if (has_elements || places.empty()) {
      continue;
    }
    forEachSpan(records, group, [&](const RecordSpan& span) {
      for (std::size_t i = 0; i < span.count; ++i) {
        for (const OffsetPlace& place : places) {
          const std::uint64_t offset = numberIn(span.at(i), place.at, place.bytes);
          Values& values = values_[place.target];
          values.first = std::min(values.first, offset);
          values.last = std::max(values.last, offset);
        }
      }
    });
  }
}

/// Visits the records of a group that are copied.
void DataCopy::forEachSpan(Records& records, const ChannelGroup& group,
                           const std::function<void(const RecordSpan&)>& visit) {
  static const std::vector<Rows> all = {{0, UINT64_MAX}};
  const auto cursor = records.read(group);
  std::uint64_t number = 0;
  for (const Rows& rows : rows_ ? rows_->of(group.offset) : all) {
    cursor->skip(rows.begin - number);
    number = rows.begin;
    while (number < rows.end) {
      const std::uint64_t most = std::min<std::uint64_t>(rows.end - number, SIZE_MAX);
      const RecordSpan span = cursor->next(static_cast<std::size_t>(most));
      if (span.count == 0) {
        return;
      }
      visit(span);
      number += span.count;
    }
  }
}

/// Those of a group's offsets that change in the copy.
std::vector<DataCopy::OffsetPlace> DataCopy::shiftsIn(const ChannelGroup& group) {
  std::vector<OffsetPlace> places = offsetsIn(group);
  places.erase(
      std::remove_if(places.begin(), places.end(),
                     [&](const OffsetPlace& place) { return values_[place.target].shift() == 0; }),
      places.end());
  return places;
}

/// A record with offsets among the values that are copied.
std::string_view DataCopy::shifted(std::string_view record,
                                   const std::vector<OffsetPlace>& places) {
  if (places.empty()) {
    return record;
  }
  shifted_ = record;
  for (const OffsetPlace& place : places) {
    const std::uint64_t offset = numberIn(record, place.at, place.bytes);
    std::array<char, sizeof offset> bytes;
    storeLe(bytes.data(), offset - values_[place.target].shift());
    shifted_.replace(place.at, place.bytes, bytes.data(), place.bytes);
  }
  return shifted_;
}

/// The links of channels whose values are the records of a group.
std::vector<BlockCopy::Link> DataCopy::channelsOf(const DataGroup& data_group,
                                                  const ChannelGroup& values) {
  std::vector<BlockCopy::Link> links;
  if (!values.holdsVariableLength()) {
    return links;
  }
  for (const ChannelGroup& group : data_group.groups) {
    for (const Channel& channel : group.channels) {
      if (channel.type == Channel::variable_length && channel.data == values.offset &&
          !isDropped(group)) {
        links.push_back({indexOf(channel.offset), CNBLOCK::cn_data});
      }
    }
  }
  return links;
}

/// Values of channels, sample reductions, and elements of arrays.
void DataCopy::planOtherData() {
  InputFile& file = blocks_.file();
  const BlockTable& table = blocks_.table();
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const std::string_view letters = table[block].letters();
    const auto raw = letters == "CN" || letters == "SR" || letters == "CA"
                         ? readRawBlock(file, table[block].offset)
                         : std::nullopt;
    if (!raw) {
      continue;
    }
    forEachWalkedLink(file, *raw, table[block], [&](std::uint64_t number, std::uint64_t target) {
      if (leadsToData(file, target) && !dataLettersOf(file, target).empty()) {
        other_data_.push_back({{block, static_cast<std::uint32_t>(number)}, target});
        blocks_.cut(other_data_.back().link);
      }
    });
  }
}

void DataCopy::write(BlockWriter& out) {
  if (index_shift_) {
    index_shift_->write(out.out());
  }
  for (std::size_t i = 0; i < ways_.size(); ++i) {
    writeGroup(out, description_.data_groups[i], ways_[i]);
  }
  for (const OtherData& data : other_data_) {
    if (blocks_.isCopied(data.link.block)) {
      writeBytes(out, data);
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
    writeMixed(out, data_group, way == Way::apart);
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
  for (std::uint64_t at = values_[data.target].shift(); at < end;) {
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
  const Values& values = values_[data.target];
  const bool is_for_channel = blocks_.table()[data.link.block].letters() == "CN";
  if (!rows_ || !is_for_channel || values.are_all) {
    return UINT64_MAX;
  }
  const std::uint64_t from = blocks_.table()[data.link.block].offset;
  const auto signal_data = signalDataAt(data_file_, {from, data.target}, silent);
  const auto last = signal_data->at(values.last);
  const std::uint64_t end = last ? values.last + 4 + last->size() : UINT64_MAX;
  return values.first == UINT64_MAX ? 0 : end;
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
  DataWriter writer(out, "DT", group.recordBytes(), out.form().block_bytes);
  const std::vector<OffsetPlace> shifts = shiftsIn(group);
  std::uint64_t count = 0;
  forEachSpan(records, group, [&](const RecordSpan& span) {
    count += span.count;
    if (span.step == span.size && span.size == group.recordBytes() && shifts.empty()) {
      writer.append({span.bytes, span.size * span.count});
      return;
    }
    // Where invalidation bytes stand apart, there may be none: then all values are valid.
    const std::string valid(static_cast<std::size_t>(group.recordBytes() - span.size), '\0');
    for (std::size_t i = 0; i < span.count; ++i) {
      writer.append(shifted(span.at(i), shifts));
      writer.append(valid);
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

/// Goes through mixed records once more after they were examined.
void DataCopy::writeMixed(BlockWriter& out, const DataGroup& data_group, bool are_apart) {
  const std::vector<ChannelGroup>& groups = data_group.groups;
  Records records(data_file_, data_group, report_);
  records.examine();
  const std::size_t block_bytes =
      std::min(out.form().block_bytes, std::max<std::size_t>(64, room_for_parts / groups.size()));
  std::vector<Part> parts(groups.size());
  for (std::size_t i = 0; are_apart && i < groups.size(); ++i) {
    const bool has_values = groups[i].holdsVariableLength();
    const bool is_signal_data = has_values && !channelsOf(data_group, groups[i]).empty();
    parts[i].data = std::make_unique<DataWriter>(
        out, is_signal_data ? "SD" : "DT", has_values ? 0 : groups[i].recordBytes(), block_bytes);
    parts[i].shifts = shiftsIn(groups[i]);
    parts[i].is_dropped = isDropped(groups[i]);
  }
  DataWriter together(out, "DT", 0, out.form().block_bytes);
  walkMixed(data_group, records.idBytes(), are_apart ? nullptr : &together, parts);
  if (are_apart) {
    finishApart(out, data_group, parts);
  } else {
    blocks_.setLink({indexOf(data_group.offset), DGBLOCK::dg_data}, together.finish());
    finishMixed(data_group, parts);
  }
  if (!data_file_.mayGoOnAfter(records.storedBytes())) {
    throw CopyFailure("its groups have the same data again and again");
  }
}

void DataCopy::walkMixed(const DataGroup& data_group, unsigned id_bytes, DataWriter* together,
                         std::vector<Part>& parts) {
  const RecordFormat format(data_group, id_bytes);
  DataStream stream(data_file_, {data_group.offset, data_group.data}, DataStream::Access::forward,
                    silent);
  forEachMixedRecord(format, stream, [&](const Record& record, const auto& whole) {
    Part& part = parts[static_cast<std::size_t>(record.group - data_group.groups.data())];
    if (isWanted(record, part)) {
      part.value_bytes += record.bytes.size();
      ++part.records;
      if (together != nullptr) {
        together->append(whole());
      } else {
        append(record, part);
      }
    }
  });
}

/// Records beyond the count of their group are not read.
bool DataCopy::isWanted(const Record& record, Part& part) {
  const ChannelGroup& group = *record.group;
  if (part.is_dropped) {
    return false;
  }
  if (group.holdsVariableLength()) {
    const std::uint64_t offset = part.number;
    part.number += 4 + record.bytes.size();
    return !rows_ || values_[group.offset].has(offset);
  }
  const std::uint64_t number = part.number++;
  if (rows_) {
    const std::vector<Rows>& rows = rows_->of(group.offset);
    while (part.rows < rows.size() && number >= rows[part.rows].end) {
      ++part.rows;
    }
    return part.rows < rows.size() && number >= rows[part.rows].begin;
  }
  return !data_file_.isCountFinal(group) || group.cycles == 0 || number < group.cycles;
}

void DataCopy::append(const Record& record, Part& part) {
  if (record.group->holdsVariableLength()) {
    std::array<char, sizeof(std::uint32_t)> length;
    storeLe(length.data(), static_cast<std::uint32_t>(record.bytes.size()));
    part.data->append({length.data(), length.size()});
  }
  part.data->append(shifted(record.bytes, part.shifts));
}

/// The counts of groups whose records stay mixed.
void DataCopy::finishMixed(const DataGroup& data_group, std::vector<Part>& parts) {
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const ChannelGroup& group = data_group.groups[i];
    const std::uint32_t block = indexOf(group.offset);
    blocks_.setField(block, "cg_cycle_count", parts[i].records);
    if (group.holdsVariableLength()) {
      blocks_.setField(block, "cg_data_bytes", parts[i].value_bytes & UINT32_MAX);
      blocks_.setField(block, "cg_inval_bytes", parts[i].value_bytes >> 32U);
    }
  }
}

/// The first group that stays keeps the data group; the others get one each, after it.
void DataCopy::finishApart(BlockWriter& out, const DataGroup& data_group,
                           std::vector<Part>& parts) {
  const std::uint32_t block = indexOf(data_group.offset);
  std::vector<std::size_t> staying;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const ChannelGroup& group = data_group.groups[i];
    const auto channels = channelsOf(data_group, group);
    const std::uint64_t values = channels.empty() ? 0 : parts[i].data->finish();
    for (const BlockCopy::Link& channel : channels) {
      blocks_.setLink(channel, values);
    }
    if (channels.empty() && !parts[i].is_dropped) {
      staying.push_back(i);
    }
  }
  std::uint64_t next = blocks_.newLink({block, DGBLOCK::dg_dg_next});
  const std::uint64_t comment = blocks_.newLink({block, DGBLOCK::dg_md_comment});
  for (std::size_t i = staying.size(); i-- > 0;) {
    const ChannelGroup& group = data_group.groups[staying[i]];
    const std::uint32_t index = indexOf(group.offset);
    const std::uint64_t data = parts[staying[i]].data->finish();
    blocks_.setField(index, "cg_cycle_count", parts[staying[i]].records);
    blocks_.setLink({index, next_link}, 0);
    if (i > 0) {
      next = out.out().add(dataGroupBlock(next, blocks_.placeOf(index), data, comment));
      blocks_.moveGroup(index, next);
    } else {
      blocks_.setLink({block, DGBLOCK::dg_data}, data);
      blocks_.setLink({block, DGBLOCK::dg_cg_first}, blocks_.placeOf(index));
    }
  }
  blocks_.setLink({block, DGBLOCK::dg_dg_next}, next);
  blocks_.setField(block, "dg_rec_id_size", 0);
}

}  // namespace mdf_tools
