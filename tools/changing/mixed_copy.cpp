#include "mixed_copy.h"

#include <algorithm>
#include <array>

#include "copy_failure.h"
#include "description/cnblock.h"
#include "description/dgblock.h"
#include "framework/wire.h"
#include "group_facts.h"
#include "reader/blocks/raw_block.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

/// Memory for the blocks of mixed records that fill side by side: what the processor's cache holds,
/// or more where blocks are zipped, for longer ones become smaller.
std::size_t roomForParts(const DataForm& form) {
  return std::size_t{1} << (form.zip == Zip::none ? 23U : 25U);
}

}  // namespace

std::vector<BlockCopy::Link> channelsOfValues(const BlockCopy& blocks, const CopyContents& contents,
                                              const DataGroup& data_group,
                                              const ChannelGroup& values) {
  std::vector<BlockCopy::Link> links;
  if (!values.holdsVariableLength()) {
    return links;
  }
  for (const ChannelGroup& group : data_group.groups) {
    for (const Channel& channel : group.channels) {
      if (channel.type == Channel::variable_length && channel.data == values.offset &&
          !contents.isDropped(channel)) {
        links.push_back({blocks.table().find(channel.offset), CNBLOCK::cn_data});
      }
    }
  }
  return links;
}

MixedCopy::MixedCopy(BlockCopy& blocks, CopyContents& contents, BlockWriter& out,
                     const DataGroup& data_group)
    : blocks_(blocks),
      contents_(contents),
      out_(out),
      data_group_(data_group),
      together_(out, "DT", 0, out.form().block_bytes),
      parts_(data_group.groups.size()) {}

void MixedCopy::write(bool are_apart, const FindingSink& report) {
  Records records(contents_.dataFile(), data_group_, report);
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    begin(parts_[i], data_group_.groups[i], are_apart ? 0 : records.idBytes(), are_apart);
  }
  records.examine([this](const Record& record) {
    Part& part = parts_[record.index];
    if (part.is_plain && part.number < part.end) {
      ++part.number;
      ++part.records;
      part.data->append(record.bytes);
    } else if (isWanted(record, part)) {
      append(record, part);
    }
  });
  if (are_apart) {
    finishApart();
  } else {
    blocks_.setLink({indexOf(data_group_.offset), DGBLOCK::dg_data}, together_.finish());
    finishMixed();
  }
  if (!contents_.dataFile().mayGoOnAfter(records.storedBytes())) {
    throw CopyFailure("its groups have the same data again and again");
  }
}

void MixedCopy::begin(Part& part, const ChannelGroup& group, unsigned id_bytes, bool is_apart) {
  const bool has_values = group.holdsVariableLength();
  part.is_dropped = contents_.isDropped(group);
  part.change = contents_.changeOf(group);
  part.rows = contents_.rowsOf(group);
  const bool is_counted = contents_.dataFile().isCountFinal(group) && group.cycles > 0;
  part.end = is_counted ? group.cycles : UINT64_MAX;
  part.data = &together_;
  if (is_apart) {
    const std::size_t room = roomForParts(out_.form()) / parts_.size();
    const std::size_t block_bytes =
        std::min(out_.form().block_bytes, std::max<std::size_t>(64, room));
    const bool is_signal_data =
        has_values && !channelsOfValues(blocks_, contents_, data_group_, group).empty();
    part.own =
        std::make_unique<DataWriter>(out_, is_signal_data ? "SD" : "DT",
                                     has_values ? 0 : contents_.recordBytesOf(group), block_bytes);
    part.data = part.own.get();
  }
  std::array<char, sizeof group.record_id> id;
  storeLe(id.data(), group.record_id);
  part.head.assign(id.data(), id_bytes);
  part.is_plain = !part.is_dropped && !has_values && part.rows == nullptr && part.head.empty() &&
                  part.change.isNone();
}

/// Records beyond the count of their group are not read.
bool MixedCopy::isWanted(const Record& record, Part& part) {
  if (part.is_dropped) {
    return false;
  }
  if (record.has_length) {
    const std::uint64_t offset = part.number;
    part.number += 4 + record.bytes.size();
    return contents_.hasValue(*record.group, offset);
  }
  const std::uint64_t number = part.number++;
  if (part.rows == nullptr) {
    return number < part.end;
  }
  const std::vector<Rows>& rows = *part.rows;
  while (part.row < rows.size() && number >= rows[part.row].end) {
    ++part.row;
  }
  return part.row < rows.size() && number >= rows[part.row].begin;
}

void MixedCopy::append(const Record& record, Part& part) {
  if (!part.head.empty()) {
    part.data->append(part.head);
  }
  if (record.has_length) {
    std::array<char, sizeof(std::uint32_t)> length;
    storeLe(length.data(), static_cast<std::uint32_t>(record.bytes.size()));
    part.data->append({length.data(), length.size()});
    part.value_bytes += record.bytes.size();
  }
  part.data->append(part.change.of(record.bytes));
  ++part.records;
}

/// The counts of groups whose records stay mixed.
void MixedCopy::finishMixed() {
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const ChannelGroup& group = data_group_.groups[i];
    const std::uint32_t block = indexOf(group.offset);
    blocks_.setField(block, "cg_cycle_count", parts_[i].records);
    if (group.holdsVariableLength()) {
      blocks_.setField(block, "cg_data_bytes", parts_[i].value_bytes & UINT32_MAX);
      blocks_.setField(block, "cg_inval_bytes", parts_[i].value_bytes >> 32U);
    }
  }
}

/// The first group that stays keeps the data group; the others get one each, after it.
void MixedCopy::finishApart() {
  const std::uint32_t block = indexOf(data_group_.offset);
  std::vector<std::size_t> staying;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const ChannelGroup& group = data_group_.groups[i];
    const auto channels = channelsOfValues(blocks_, contents_, data_group_, group);
    const std::uint64_t values = channels.empty() ? 0 : parts_[i].own->finish();
    for (const BlockCopy::Link& channel : channels) {
      blocks_.setLink(channel, values);
    }
    if (channels.empty() && !parts_[i].is_dropped) {
      staying.push_back(i);
    }
  }
  std::uint64_t next = blocks_.newLink({block, DGBLOCK::dg_dg_next});
  const std::uint64_t comment = blocks_.newLink({block, DGBLOCK::dg_md_comment});
  for (std::size_t i = staying.size(); i-- > 0;) {
    const ChannelGroup& group = data_group_.groups[staying[i]];
    const std::uint32_t index = indexOf(group.offset);
    const std::uint64_t data = parts_[staying[i]].own->finish();
    blocks_.setField(index, "cg_cycle_count", parts_[staying[i]].records);
    blocks_.setLink({index, next_link}, 0);
    if (i > 0) {
      next = out_.out().add(dataGroupBlock(next, blocks_.placeOf(index), data, comment));
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
