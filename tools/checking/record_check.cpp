#include "record_check.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "data_check.h"

namespace mdf_tools {

namespace {

/// The byte counts of record ids that a code may stand for. 3 is taken for 4; 4 is 4 bytes by the
/// format, yet some write it for 8.
std::vector<std::uint64_t> idBytesFor(std::uint64_t code) {
  switch (code) {
    case 0:
    case 1:
    case 2:
    case 8:
      return {code};
    case 3:
      return {4};
    case 4:
      return {4, 8};
    default:
      return {};
  }
}

/// Whether data is made of so many records.
bool isMadeOf(std::uint64_t data_bytes, std::uint64_t records, std::uint64_t record_bytes) {
  return record_bytes == 0 ? data_bytes == 0
                           : data_bytes % record_bytes == 0 && data_bytes / record_bytes == records;
}

/// How many elements there is room for when so much room is behind the first of them.
std::uint64_t roomFor(std::uint64_t behind, std::uint64_t step) {
  return step == 0 ? UINT64_MAX : behind / step + 1;
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
  } else if (channel_group_ && type == "CN") {
    takeChannel(block, index);
  } else if (channel_group_) {
    checkReduction(block, index);
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

void RecordCheck::enterDataGroup(const BlockFields& block, std::uint32_t index) {
  data_group_ = index;
  id_code_ = block.number("dg_rec_id_size");
  data_link_ = block.link(2);
}

void RecordCheck::enterChannelGroup(const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t has_remote_master = 8;
  leaveChannelGroup();
  const bool is_variable_length = block.hasFlag("cg_flags", 1);
  const std::uint64_t data_bytes = block.number("cg_data_bytes");
  const std::uint64_t invalidation_bytes = block.number("cg_inval_bytes");
  const std::uint64_t cycles = block.number("cg_cycle_count");
  groups_.push_back({index, block.number("cg_record_id"), cycles, data_bytes + invalidation_bytes,
                     is_variable_length, Allowance(data_bytes)});
  if (!is_variable_length) {
    channel_group_ = {index,
                      data_bytes,
                      invalidation_bytes,
                      cycles > 0,
                      block.hasFlag("cg_flags", has_remote_master),
                      false};
  }
}

void RecordCheck::leaveChannelGroup() {
  if (!channel_group_) {
    return;
  }
  checkMasters();
  const ChannelGroup& group = *channel_group_;
  if (masters_.empty() && group.has_channels && group.has_records && !group.needs_no_master) {
    subject_.report(Code::master_missing, group.index,
                    "expected a master channel among the channels, found none");
  }
  channel_group_.reset();
  masters_.clear();
}

void RecordCheck::takeChannel(const BlockFields& block, std::uint32_t index) {
  enum Type : std::uint64_t {
    variable_length = 1,
    master = 2,
    virtual_master = 3,
    virtual_data = 6
  };
  const std::uint64_t type = block.number("cn_type");
  channel_group_->has_channels = true;
  const std::uint64_t first_bit =
      8 * block.number("cn_byte_offset") + block.number("cn_bit_offset");
  if (type == master || type == virtual_master) {
    const std::uint64_t bits = type == master ? block.number("cn_bit_count") : 0;
    masters_.push_back({index, block.number("cn_sync_type"), first_bit, first_bit + bits});
  }
  extent_.reset();
  if (type != virtual_master && type != virtual_data) {
    extent_ = extentOf(block, index);
    if (!checkBits(*extent_)) {
      extent_.reset();
    }
  }
  if (type == variable_length) {
    takeVariableChannel(block, index);
  }
}

/// Channels that share bits of the record, so that they would have it read again and again, are
/// left out, and those without an offset in it.
void RecordCheck::takeVariableChannel(const BlockFields& block, std::uint32_t index) {
  constexpr std::uint64_t all_invalid = 1;
  constexpr std::uint64_t has_invalidation_bit = 2;
  constexpr std::uint64_t in_records = 0;
  const std::uint64_t bit = 8 * channel_group_->data_bytes + block.number("cn_inval_bit_pos");
  const VariableChannel channel{
      index,
      block.link(5),
      block.number("cn_byte_offset"),
      block.number("cn_bit_offset"),
      block.number("cn_bit_count"),
      block.hasFlag("cn_flags", has_invalidation_bit) ? bit : VariableChannel::none};
  const auto array = readFields(subject_.file, block.link(1), "CA");
  const bool has_values = !block.hasFlag("cn_flags", all_invalid) &&
                          (!array || array->number("ca_storage") == in_records);
  if (has_values && channel.bit_count > 0 && channel.bytes() <= sizeof(std::uint64_t) &&
      channel.first_byte + channel.bytes() <= channel_group_->data_bytes &&
      groups_.back().offset_bytes.take(channel.bytes())) {
    groups_.back().variable_channels.push_back(channel);
  }
}

RecordCheck::Extent RecordCheck::extentOf(const BlockFields& channel, std::uint32_t index) {
  constexpr std::uint64_t has_invalidation_bit = 2;
  Extent extent{index, channel.number("cn_byte_offset"), 0, std::nullopt};
  extent.end_bit =
      8 * extent.first_byte + channel.number("cn_bit_offset") + channel.number("cn_bit_count");
  if (channel.hasFlag("cn_flags", has_invalidation_bit)) {
    extent.end_invalidation_bit = channel.number("cn_inval_bit_pos") + 1;
  }
  return extent;
}

/// Whether a channel is in the record.
bool RecordCheck::checkBits(const Extent& extent) const {
  bool is_inside = true;
  if (extent.end_bit > 8 * channel_group_->data_bytes) {
    is_inside = false;
    subject_.report(Code::channel_outside_record, extent.index,
                    "expected the channel in the " + std::to_string(channel_group_->data_bytes) +
                        " data bytes of a record, found that it ends at bit " +
                        std::to_string(extent.end_bit));
  }
  if (extent.end_invalidation_bit.value_or(0) > 8 * channel_group_->invalidation_bytes) {
    is_inside = false;
    subject_.report(Code::invalidation_bit_outside_record, extent.index,
                    "expected the invalidation bit in the " +
                        std::to_string(channel_group_->invalidation_bytes) +
                        " invalidation bytes of a record, found bit " +
                        std::to_string(*extent.end_invalidation_bit - 1));
  }
  return is_inside;
}

void RecordCheck::takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements) {
  constexpr std::uint64_t in_records = 0;
  if (!extent_ || !channel_group_ || subject_.blocks[index].parent != extent_->index) {
    return;
  }
  extent_->index = index;
  const bool is_there = elements > 0 && block.number("ca_storage") == in_records;
  if (!is_there || !checkElements(block, elements) || !checkInvalidationBits(block, elements)) {
    extent_.reset();
  }
}

/// Whether all elements of an array are in the record.
bool RecordCheck::checkElements(const BlockFields& array, std::uint64_t elements) {
  const std::int64_t step = array.signedNumber("ca_byte_offset_base");
  const auto bytes = static_cast<std::uint64_t>(step < 0 ? -step : step);
  const std::uint64_t behind = channel_group_->data_bytes - (extent_->end_bit + 7) / 8;
  const std::uint64_t room = roomFor(step < 0 ? extent_->first_byte : behind, bytes);
  if (elements > room) {
    subject_.report(Code::channel_outside_record, extent_->index,
                    "expected all elements of the array in the " +
                        std::to_string(channel_group_->data_bytes) +
                        " data bytes of a record, found room for " + std::to_string(room) + " of " +
                        countText(elements));
    return false;
  }
  const std::uint64_t last = bytes * (elements - 1);
  extent_->first_byte -= step < 0 ? last : 0;
  extent_->end_bit += step < 0 ? 0 : 8 * last;
  return true;
}

/// Whether the invalidation bits of all elements of an array are in the record.
bool RecordCheck::checkInvalidationBits(const BlockFields& array, std::uint64_t elements) {
  if (!extent_->end_invalidation_bit) {
    return true;
  }
  const std::uint64_t step = array.number("ca_inval_bit_pos_base");
  const std::uint64_t bits = 8 * channel_group_->invalidation_bytes;
  const std::uint64_t room = roomFor(bits - *extent_->end_invalidation_bit, step);
  if (elements > room) {
    subject_.report(Code::invalidation_bit_outside_record, extent_->index,
                    "expected invalidation bits of all elements of the array in the " +
                        std::to_string(channel_group_->invalidation_bytes) +
                        " invalidation bytes of a record, found room for " + std::to_string(room) +
                        " of " + std::to_string(elements));
    return false;
  }
  *extent_->end_invalidation_bit += step * (elements - 1);
  return true;
}

/// Masters next to each other, first by kind and then by place, tell what there is to tell of all.
void RecordCheck::checkMasters() {
  std::sort(masters_.begin(), masters_.end(), [](const Master& left, const Master& right) {
    return std::tie(left.kind, left.index) < std::tie(right.kind, right.index);
  });
  for (std::size_t i = 1; i < masters_.size(); ++i) {
    if (masters_[i].kind == masters_[i - 1].kind) {
      const BlockEntry& other = subject_.blocks[masters_[i - 1].index];
      subject_.report(Code::master_twice, masters_[i].index,
                      "expected one master of synchronisation type " +
                          std::to_string(masters_[i].kind) + ", found another, " +
                          nameAt(other.letters(), other.offset));
    }
  }
  std::sort(masters_.begin(), masters_.end(), [](const Master& left, const Master& right) {
    return std::tie(left.first_bit, left.index) < std::tie(right.first_bit, right.index);
  });
  for (std::size_t i = 1; i < masters_.size(); ++i) {
    if (masters_[i].first_bit < masters_[i - 1].end_bit &&
        masters_[i].first_bit < masters_[i].end_bit) {
      const BlockEntry& other = subject_.blocks[masters_[i - 1].index];
      subject_.report(Code::masters_overlap, masters_[i].index,
                      "expected masters with bits of their own, found that it shares bit " +
                          std::to_string(masters_[i].first_bit) + " with " +
                          nameAt(other.letters(), other.offset));
    }
  }
}

/// Whether the records can be told apart. Puts the groups in the order of their ids.
bool RecordCheck::checkIds() {
  const auto possible = idBytesFor(id_code_);
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

/// Finds the data of a data group or of a reduction, of which each has its own.
DataBlocks RecordCheck::recordsAt(std::uint64_t link, std::string_view link_name,
                                  std::uint32_t index) {
  DataBlocks data = dataBlocksAt(subject_, link, seen_data_);
  if (data.is_shared) {
    subject_.report(Code::data_shared, index,
                    "expected data of its own behind " + std::string(link_name) +
                        ", found some that was there before");
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
  const std::uint64_t record_bytes =
      3 * channel_group_->data_bytes +
      (block.hasFlag("sr_flags", has_invalidation_bytes) ? channel_group_->invalidation_bytes : 0);
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
  } else {
    countRecords(data);
  }
}

void RecordCheck::checkOnlyGroup(const DataBlocks& data) {
  const RecordGroup& group = groups_[0];
  const std::uint64_t bytes = bytesOf(data);
  const auto possible = idBytesFor(id_code_);
  const auto right = std::find_if(possible.begin(), possible.end(), [&](std::uint64_t id_bytes) {
    return isMadeOf(bytes, group.cycles, group.record_bytes + id_bytes);
  });
  if (right == possible.end()) {
    subject_.report(Code::cycle_count_wrong, group.index,
                    wrongCount(group.cycles, group.record_bytes + possible[0], bytes));
  } else if (!group.variable_channels.empty() && records_left_.take(data.stored_bytes)) {
    checkValues(data, *right);
  }
}

void RecordCheck::countRecords(const DataBlocks& data) {
  const auto possible = idBytesFor(id_code_);
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

/// Goes through the records once more when there are channels with values elsewhere.
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

/// What channels share of signal data is looked at for the first of them.
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
  const std::string record = "a record at byte " + std::to_string(walk.position) + " of the data";
  switch (walk.end) {
    case RecordWalk::unreadable:
      return;
    case RecordWalk::unknown_id:
      subject_.report(Code::record_id_unknown, *data_group_,
                      "expected a channel group for each record id, found none for id " +
                          std::to_string(walk.record_id) + " of " + record);
      return;
    case RecordWalk::cut_off:
      subject_.report(Code::record_cut_off, *data_group_,
                      "expected the data to end with a whole record, found " + record + " cut off");
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
