#include "record_check.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "data_check.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Whether data is exactly so many records long.
bool isMadeOf(std::uint64_t data_bytes, std::uint64_t records, std::uint64_t record_bytes) {
  return record_bytes == 0 ? data_bytes == 0
                           : data_bytes % record_bytes == 0 && data_bytes / record_bytes == records;
}

std::string wrongCount(std::uint64_t records, std::uint64_t record_bytes,
                       std::uint64_t data_bytes) {
  return "expected data for " + std::to_string(records) + " records of " +
         std::to_string(record_bytes) + " bytes, found " + std::to_string(data_bytes) + " bytes";
}

}  // namespace

void RecordCheck::take(const BlockFields& block, std::uint32_t index) {
  const std::string_view type = block.raw().letters();
  if (type == "DG") {
    leave();
    enterDataGroup(block, index);
  } else if (type == "CG") {
    enterChannelGroup(block, index);
  } else if (channels_ && type == "CN") {
    channels_->take(block, index);
    takeVariableChannel(block, index);
    takeElements(block, index);
  } else if (channels_) {
    checkReduction(block, index);
  }
}

void RecordCheck::takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements) {
  if (channels_) {
    channels_->takeArray(block, index, elements);
  }
}

void RecordCheck::leave() {
  leaveChannelGroup();
  if (data_group_ && checkIds()) {
    checkData();
  }
  data_group_.reset();
  groups_.clear();
}

void RecordCheck::leaveChannelGroup() {
  if (channels_) {
    channels_->leave();
    channels_.reset();
  }
  addElements();
}

void RecordCheck::enterDataGroup(const BlockFields& block, std::uint32_t index) {
  data_group_ = index;
  id_code_ = block.number("dg_rec_id_size");
  data_link_ = block.link(2);
}

void RecordCheck::enterChannelGroup(const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t variable_length = 1;
  leaveChannelGroup();
  const std::uint64_t data_bytes = block.number("cg_data_bytes");
  groups_.push_back({index, block.number("cg_record_id"), block.number("cg_cycle_count"),
                     data_bytes, block.number("cg_inval_bytes"),
                     block.hasFlag("cg_flags", variable_length), Allowance(data_bytes)});
  if (!groups_.back().is_variable_length) {
    channels_.emplace(subject_, block, index);
  }
}

/// Leaves out channels that share bits of the record, which would have it read again and again, and
/// those without an offset in it.
void RecordCheck::takeVariableChannel(const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t variable_length = 1;
  constexpr std::uint64_t all_invalid = 1;
  constexpr std::uint64_t has_invalidation_bit = 2;
  constexpr std::uint64_t in_records = 0;
  if (block.number("cn_type") != variable_length || block.hasFlag("cn_flags", all_invalid)) {
    return;
  }
  RecordGroup& group = groups_.back();
  const VariableChannel channel{index,
                                block.link(5),
                                block.number("cn_byte_offset"),
                                block.number("cn_bit_offset"),
                                block.number("cn_bit_count"),
                                block.hasFlag("cn_flags", has_invalidation_bit)
                                    ? 8 * group.data_bytes + block.number("cn_inval_bit_pos")
                                    : VariableChannel::none};
  const auto array = readFields(subject_.file, block.link(1), "CA");
  if ((!array || array->number("ca_storage") == in_records) && channel.bit_count > 0 &&
      channel.bytes() <= sizeof(std::uint64_t) &&
      channel.first_byte + channel.bytes() <= group.data_bytes &&
      group.offset_bytes.take(channel.bytes())) {
    group.variable_channels.push_back(channel);
  }
}

/// Elements of an array may have records of their own, with the record ids that follow that of its
/// group. Only one array of a channel group can have them.
void RecordCheck::takeElements(const BlockFields& block, std::uint32_t index) {
  const std::uint32_t found = subject_.blocks.find(block.link(1));
  const bool is_own = found != BlockTable::none && subject_.blocks[found].parent == index;
  const auto array = is_own ? readFields(subject_.file, block.link(1), "CA") : std::nullopt;
  if (elements_.empty() && array && arrayStorage(*array) == ArrayStorage::channel_group) {
    const std::uint64_t most = elements_left_.most(1);
    elements_ = readArrayElements(subject_.file, *array, most).elements;
    elements_left_.take(elements_.size());
  }
}

/// Those after the first element are groups of their own.
void RecordCheck::addElements() {
  for (std::size_t i = 1; i < elements_.size(); ++i) {
    const RecordGroup& first = groups_[groups_.size() - i];
    groups_.push_back({first.index, first.record_id + i, elements_[i].cycles, first.data_bytes,
                       first.invalidation_bytes, false, Allowance(0)});
  }
  elements_.clear();
}

/// Whether the records can be told apart. Puts the groups in the order of their ids.
bool RecordCheck::checkIds() {
  const auto possible = recordIdBytesFor(id_code_);
  if (possible.empty()) {
    subject_.report(Code::record_id_size_wrong, *data_group_,
                    "expected record ids of 0, 1, 2, 4 or 8 bytes, found dg_rec_id_size " +
                        std::to_string(id_code_));
    return false;
  }
  if (groups_.size() < 2 || data_link_ == 0) {
    return true;
  }
  if (id_code_ == 0) {
    subject_.report(Code::record_id_size_wrong, *data_group_,
                    "expected record ids for " + std::to_string(groups_.size()) +
                        " channel groups, found dg_rec_id_size 0");
    return false;
  }
  std::sort(groups_.begin(), groups_.end(), [](const RecordGroup& left, const RecordGroup& right) {
    return std::tie(left.record_id, left.index) < std::tie(right.record_id, right.index);
  });
  bool are_different = true;
  for (std::size_t i = 1; i < groups_.size(); ++i) {
    if (groups_[i].record_id == groups_[i - 1].record_id) {
      are_different = false;
      subject_.report(Code::record_id_twice, groups_[i].index,
                      "expected a record id of its own, found " +
                          std::to_string(groups_[i].record_id) + " as of " +
                          nameAt("CG", subject_.blocks[groups_[i - 1].index].offset));
    }
  }
  return are_different;
}

/// Finds the data of a data group or of a reduction, each of which must have its own.
DataBlocks RecordCheck::recordsAt(std::uint64_t link, std::string_view link_name,
                                  std::uint32_t index) {
  DataBlocks data = dataBlocksAt(subject_, link, seen_data_);
  if (data.is_shared) {
    subject_.report(Code::data_shared, index,
                    "expected " + std::string(link_name) +
                        " to lead to data of its own, found data that another link leads to");
  }
  data.is_known = data.is_known && !data.is_shared;
  return data;
}

std::uint64_t RecordCheck::bytesOf(const DataBlocks& data) const {
  std::uint64_t bytes = 0;
  for (const std::uint64_t offset : data.offsets) {
    bytes += dataBytesOf(subject_, offset).value_or(0);
  }
  return bytes;
}

/// A record of a reduction has a record's data bytes three times: mean, least and greatest values.
void RecordCheck::checkReduction(const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t has_invalidation_bytes = 1;
  const DataBlocks data = recordsAt(block.link(1), "sr_data", index);
  const std::uint64_t records = block.number("sr_cycle_count");
  const RecordGroup& group = groups_.back();
  const std::uint64_t record_bytes =
      3 * group.data_bytes +
      (block.hasFlag("sr_flags", has_invalidation_bytes) ? group.invalidation_bytes : 0);
  const std::uint64_t data_bytes = bytesOf(data);
  if (data.is_known && !subject_.is_unfinished && !isMadeOf(data_bytes, records, record_bytes)) {
    subject_.report(Code::cycle_count_wrong, index, wrongCount(records, record_bytes, data_bytes));
  }
}

void RecordCheck::checkData() {
  const DataBlocks data = recordsAt(data_link_, "dg_data", *data_group_);
  if (!data.is_known || subject_.is_unfinished || groups_.empty()) {
    return;
  }
  if (groups_.size() == 1 && !groups_[0].is_variable_length) {
    checkOnlyGroup(data);
  } else if (!data.are_values_alone) {
    countRecords(data);
  }
}

void RecordCheck::checkOnlyGroup(const DataBlocks& data) {
  const RecordGroup& group = groups_[0];
  const std::uint64_t bytes = bytesOf(data);
  const std::uint64_t record_bytes = data.are_values_alone ? group.data_bytes : group.recordBytes();
  const auto possible = recordIdBytesFor(id_code_);
  const auto right = std::find_if(possible.begin(), possible.end(), [&](std::uint64_t id_bytes) {
    return isMadeOf(bytes, group.cycles, record_bytes + id_bytes);
  });
  if (right == possible.end()) {
    subject_.report(Code::cycle_count_wrong, group.index,
                    wrongCount(group.cycles, record_bytes + possible[0], bytes));
  } else if (record_bytes == group.recordBytes() && !group.variable_channels.empty() &&
             records_left_.take(data.stored_bytes)) {
    checkValues(data, *right);
  }
}

void RecordCheck::countRecords(const DataBlocks& data) {
  const auto possible = recordIdBytesFor(id_code_);
  std::uint64_t id_bytes = possible[0];
  if (!records_left_.take(data.stored_bytes)) {
    return;
  }
  RecordWalk result = walkRecords(subject_, groups_, data, id_bytes);
  if (possible.size() > 1 && (result.end != RecordWalk::fine || !isAsCounted())) {
    const RecordWalk other = walkRecords(subject_, groups_, data, possible[1]);
    if (other.end == RecordWalk::fine && isAsCounted()) {
      id_bytes = possible[1];
      result = other;
    } else {
      result = walkRecords(subject_, groups_, data, id_bytes);
    }
  }
  reportWalk(result);
  if (result.end == RecordWalk::fine) {
    checkValues(data, id_bytes);
  }
}

/// Goes through the records once more when channels have their values elsewhere.
void RecordCheck::checkValues(const DataBlocks& data, std::uint64_t id_bytes) {
  prepareValueChecks();
  const bool has_any = std::any_of(groups_.begin(), groups_.end(), [](const RecordGroup& group) {
    return !group.value_checks.empty();
  });
  if (!has_any) {
    return;
  }
  walkRecords(subject_, groups_, data, id_bytes);
  for (const RecordGroup& group : groups_) {
    for (const auto& check : group.value_checks) {
      check->report();
    }
  }
}

/// Signal data that channels share is checked for the first of them.
void RecordCheck::prepareValueChecks() {
  std::unordered_map<std::uint64_t, std::uint64_t> value_bytes;  // by the groups' offsets
  for (const RecordGroup& group : groups_) {
    if (group.is_variable_length) {
      value_bytes[subject_.blocks[group.index].offset] = group.value_bytes;
    }
  }
  for (RecordGroup& group : groups_) {
    for (const VariableChannel& channel : group.variable_channels) {
      const auto values = value_bytes.find(channel.values);
      if (values != value_bytes.end()) {
        group.value_checks.push_back(std::make_unique<ValueCheck>(subject_, channel, values->second,
                                                                  std::vector<std::uint64_t>()));
        continue;
      }
      DataBlocks data = dataBlocksAt(subject_, channel.values, seen_values_);
      if (data.is_known && !data.is_shared && values_left_.take(data.stored_bytes)) {
        group.value_checks.push_back(std::make_unique<ValueCheck>(subject_, channel, bytesOf(data),
                                                                  std::move(data.offsets)));
      }
    }
  }
}

bool RecordCheck::isAsCounted() const {
  return std::all_of(groups_.begin(), groups_.end(),
                     [](const RecordGroup& group) { return group.counted == group.cycles; });
}

void RecordCheck::reportWalk(const RecordWalk& walk) const {
  const std::string record = " record at byte " + std::to_string(walk.position) + " of the data";
  switch (walk.end) {
    case RecordWalk::unreadable:
      return;
    case RecordWalk::unknown_id:
      subject_.report(Code::record_id_unknown, *data_group_,
                      "expected a channel group for each record id, found none for id " +
                          std::to_string(walk.record_id) + " of the" + record);
      return;
    case RecordWalk::cut_off:
      subject_.report(Code::record_cut_off, *data_group_,
                      "expected the data to end with a whole record, found a torn" + record);
      return;
    case RecordWalk::fine:
      break;
  }
  for (const RecordGroup& group : groups_) {
    if (group.counted != group.cycles) {
      subject_.report(Code::cycle_count_wrong, group.index,
                      "expected " + std::to_string(group.cycles) + " records with id " +
                          std::to_string(group.record_id) + ", found " +
                          std::to_string(group.counted));
    }
  }
}

}  // namespace mdf_tools
