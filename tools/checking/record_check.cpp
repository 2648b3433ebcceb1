#include "record_check.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <tuple>

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

std::uint64_t loadNumber(const char* bytes, std::uint64_t count) {
  std::uint64_t number = 0;
  for (std::uint64_t i = count; i-- > 0;) {
    number = (number << 8U) | static_cast<unsigned char>(bytes[i]);
  }
  return number;
}

}  // namespace

void RecordCheck::take(const BlockFields& block, std::uint32_t index) {
  const std::string_view type = block.raw().letters();
  if (type == "DG") {
    leave();
    enterDataGroup(block, index);
  } else if (type == "CG") {
    enterChannelGroup(block, index);
  } else if (channel_group_) {
    takeChannel(block, index);
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
                     is_variable_length, 0});
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
  enum Type : std::uint64_t { master = 2, virtual_master = 3, virtual_data = 6 };
  const std::uint64_t type = block.number("cn_type");
  channel_group_->has_channels = true;
  const std::uint64_t first_bit =
      8 * block.number("cn_byte_offset") + block.number("cn_bit_offset");
  if (type == master || type == virtual_master) {
    const std::uint64_t bits = type == master ? block.number("cn_bit_count") : 0;
    masters_.push_back({index, block.number("cn_sync_type"), first_bit, first_bit + bits});
  }
  if (type != virtual_master && type != virtual_data) {
    checkBits(block, index);
  }
}

void RecordCheck::checkBits(const BlockFields& block, std::uint32_t index) const {
  constexpr std::uint64_t has_invalidation_bit = 2;
  const std::uint64_t end = 8 * block.number("cn_byte_offset") + block.number("cn_bit_offset") +
                            block.number("cn_bit_count");
  if (end > 8 * channel_group_->data_bytes) {
    subject_.report(Code::channel_outside_record, index,
                    "expected the channel in the " + std::to_string(channel_group_->data_bytes) +
                        " data bytes of a record, found that it ends at bit " +
                        std::to_string(end));
  }
  const std::uint64_t invalidation_bit = block.number("cn_inval_bit_pos");
  if (block.hasFlag("cn_flags", has_invalidation_bit) &&
      invalidation_bit >= 8 * channel_group_->invalidation_bytes) {
    subject_.report(Code::invalidation_bit_outside_record, index,
                    "expected the invalidation bit in the " +
                        std::to_string(channel_group_->invalidation_bytes) +
                        " invalidation bytes of a record, found bit " +
                        std::to_string(invalidation_bit));
  }
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
  std::sort(groups_.begin(), groups_.end(), [](const Group& left, const Group& right) {
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

void RecordCheck::checkData() {
  const DataBlocks data = dataBlocksAt(subject_, data_link_, seen_data_);
  if (data.is_shared) {
    subject_.report(Code::data_shared, *data_group_,
                    "expected data of its own behind dg_data, found some that was there before");
  }
  if (data.is_shared || !data.is_known || subject_.is_unfinished || groups_.empty()) {
    return;
  }
  if (groups_.size() == 1 && !groups_[0].is_variable_length) {
    checkOnlyGroup(data);
  } else {
    countRecords(data);
  }
}

bool RecordCheck::hasRightLength(std::uint64_t data_bytes, std::uint64_t id_bytes) const {
  const std::uint64_t record_bytes = groups_[0].record_bytes + id_bytes;
  return record_bytes == 0
             ? data_bytes == 0
             : data_bytes % record_bytes == 0 && data_bytes / record_bytes == groups_[0].cycles;
}

void RecordCheck::checkOnlyGroup(const DataBlocks& data) const {
  std::uint64_t bytes = 0;
  for (const std::uint64_t offset : data.offsets) {
    bytes += dataBytesOf(subject_, offset).value_or(0);
  }
  const auto possible = idBytesFor(id_code_);
  const bool is_right = std::any_of(possible.begin(), possible.end(), [&](std::uint64_t id_bytes) {
    return hasRightLength(bytes, id_bytes);
  });
  if (!is_right) {
    subject_.report(Code::cycle_count_wrong, groups_[0].index,
                    "expected data for " + std::to_string(groups_[0].cycles) + " records of " +
                        std::to_string(groups_[0].record_bytes + possible[0]) + " bytes, found " +
                        std::to_string(bytes) + " bytes");
  }
}

void RecordCheck::countRecords(const DataBlocks& data) {
  const auto possible = idBytesFor(id_code_);
  Walk result = walk(data, possible[0]);
  if (possible.size() > 1 && (result.end != Walk::fine || !isAsCounted())) {
    const Walk other = walk(data, possible[1]);
    if (other.end == Walk::fine && isAsCounted()) {
      return;
    }
    result = walk(data, possible[0]);
  }
  reportWalk(result);
}

RecordCheck::Walk RecordCheck::walk(const DataBlocks& data, std::uint64_t id_bytes) {
  for (Group& group : groups_) {
    group.counted = 0;
  }
  DataReader reader(subject_, data.offsets);
  Walk result{Walk::fine, 0, 0};
  while (result.end == Walk::fine && !reader.isAtEnd()) {
    result = walkRecord(reader, id_bytes);
  }
  if (reader.isBroken()) {
    result.end = Walk::unreadable;
  }
  return result;
}

RecordCheck::Walk RecordCheck::walkRecord(DataReader& reader, std::uint64_t id_bytes) {
  std::array<char, 8> bytes{};
  Walk result{Walk::fine, reader.position(), 0};
  if (!reader.read(bytes.data(), static_cast<std::size_t>(id_bytes))) {
    result.end = Walk::cut_off;
    return result;
  }
  auto group = groups_.begin();
  if (id_bytes > 0) {
    result.record_id = loadNumber(bytes.data(), id_bytes);
    group =
        std::lower_bound(groups_.begin(), groups_.end(), result.record_id,
                         [](const Group& each, std::uint64_t id) { return each.record_id < id; });
    if (group == groups_.end() || group->record_id != result.record_id) {
      result.end = Walk::unknown_id;
      return result;
    }
  }
  std::uint64_t length = group->record_bytes;
  if (group->is_variable_length) {
    constexpr std::size_t length_bytes = 4;
    if (!reader.read(bytes.data(), length_bytes)) {
      result.end = Walk::cut_off;
      return result;
    }
    length = loadNumber(bytes.data(), length_bytes);
  }
  if (!reader.skip(length)) {
    result.end = Walk::cut_off;
    return result;
  }
  ++group->counted;
  return result;
}

bool RecordCheck::isAsCounted() const {
  return std::all_of(groups_.begin(), groups_.end(),
                     [](const Group& group) { return group.counted == group.cycles; });
}

void RecordCheck::reportWalk(const Walk& walk) const {
  const std::string record = "a record at byte " + std::to_string(walk.position) + " of the data";
  switch (walk.end) {
    case Walk::unreadable:
      return;
    case Walk::unknown_id:
      subject_.report(Code::record_id_unknown, *data_group_,
                      "expected a channel group for each record id, found none for id " +
                          std::to_string(walk.record_id) + " of " + record);
      return;
    case Walk::cut_off:
      subject_.report(Code::record_cut_off, *data_group_,
                      "expected the data to end with a whole record, found " + record + " cut off");
      return;
    case Walk::fine:
      break;
  }
  for (const Group& group : groups_) {
    if (group.counted != group.cycles) {
      subject_.report(Code::cycle_count_wrong, group.index,
                      "expected " + std::to_string(group.cycles) + " records with id " +
                          std::to_string(group.record_id) + ", found " +
                          std::to_string(group.counted));
    }
  }
}

}  // namespace mdf_tools
