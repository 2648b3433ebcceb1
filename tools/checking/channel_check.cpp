#include "channel_check.h"

#include <algorithm>
#include <string>
#include <tuple>

#include "reader/blocks/later_types.h"
#include "reader/model/description.h"

namespace mdf_tools {

namespace {

/// How many elements fit when so much room follows the first of them.
std::uint64_t roomFor(std::uint64_t after_first, std::uint64_t step) {
  return step == 0 ? UINT64_MAX : after_first / step + 1;
}

}  // namespace

ChannelCheck::ChannelCheck(const Subject& subject, const BlockFields& group, std::uint32_t index)
    : subject_(subject),
      index_(index),
      data_bytes_(group.number("cg_data_bytes")),
      invalidation_bytes_(group.number("cg_inval_bytes")),
      needs_master_(group.number("cg_cycle_count") > 0 &&
                    !group.hasFlag("cg_flags", ChannelGroup::has_remote_master)) {}

void ChannelCheck::take(const BlockFields& channel, std::uint32_t index) {
  Channel what;
  what.type = static_cast<unsigned>(channel.number("cn_type"));
  has_channels_ = true;
  const std::uint64_t first_bit =
      8 * channel.number("cn_byte_offset") + channel.number("cn_bit_offset");
  if (what.isMaster()) {
    const std::uint64_t bits = what.type == Channel::master ? channel.number("cn_bit_count") : 0;
    masters_.push_back({index, channel.number("cn_sync_type"), first_bit, first_bit + bits});
  }
  extent_.reset();
  if (!what.isVirtual()) {
    extent_ = extentOf(channel, index);
    if (!checkBits(*extent_)) {
      extent_.reset();
    }
  }
}

void ChannelCheck::leave() {
  checkMasters();
  if (masters_.empty() && has_channels_ && needs_master_) {
    subject_.report(Code::master_missing, index_,
                    "expected a master channel among the channels, found none");
  }
}

ChannelCheck::Extent ChannelCheck::extentOf(const BlockFields& channel, std::uint32_t index) {
  Extent extent{index, channel.number("cn_byte_offset"), 0, std::nullopt};
  extent.end_bit =
      8 * extent.first_byte + channel.number("cn_bit_offset") + channel.number("cn_bit_count");
  if (channel.hasFlag("cn_flags", Channel::has_invalidation_bit)) {
    extent.end_invalidation_bit = channel.number("cn_inval_bit_pos") + 1;
  }
  return extent;
}

/// Whether a channel is in the record.
bool ChannelCheck::checkBits(const Extent& extent) const {
  bool is_inside = true;
  if (extent.end_bit > 8 * data_bytes_) {
    is_inside = false;
    subject_.report(Code::channel_outside_record, extent.index,
                    "expected the channel within the " + std::to_string(data_bytes_) +
                        " data bytes of a record, found its end at bit " +
                        std::to_string(extent.end_bit));
  }
  if (extent.end_invalidation_bit.value_or(0) > 8 * invalidation_bytes_) {
    is_inside = false;
    subject_.report(Code::invalidation_bit_outside_record, extent.index,
                    "expected the invalidation bit within the " +
                        std::to_string(invalidation_bytes_) +
                        " invalidation bytes of a record, found bit " +
                        std::to_string(*extent.end_invalidation_bit - 1));
  }
  return is_inside;
}

void ChannelCheck::takeArray(const BlockFields& block, std::uint32_t index,
                             std::uint64_t elements) {
  if (!extent_ || subject_.blocks[index].parent != extent_->index) {
    return;
  }
  extent_->index = index;
  const bool is_there = elements > 0 && block.number("ca_storage") == CABLOCK::in_records;
  if (!is_there || !checkElements(block, elements) || !checkInvalidationBits(block, elements)) {
    extent_.reset();
  }
}

/// Whether all elements of an array are in the record.
bool ChannelCheck::checkElements(const BlockFields& array, std::uint64_t elements) {
  const std::int64_t step = array.signedNumber("ca_byte_offset_base");
  const auto bytes = static_cast<std::uint64_t>(step < 0 ? -step : step);
  const std::uint64_t after = data_bytes_ - (extent_->end_bit + 7) / 8;
  const std::uint64_t room = roomFor(step < 0 ? extent_->first_byte : after, bytes);
  if (elements > room) {
    subject_.report(Code::channel_outside_record, extent_->index,
                    "expected all elements of the array within the " + std::to_string(data_bytes_) +
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
bool ChannelCheck::checkInvalidationBits(const BlockFields& array, std::uint64_t elements) {
  if (!extent_->end_invalidation_bit) {
    return true;
  }
  const std::uint64_t step = array.number("ca_inval_bit_pos_base");
  const std::uint64_t bits = 8 * invalidation_bytes_;
  const std::uint64_t room = roomFor(bits - *extent_->end_invalidation_bit, step);
  if (elements > room) {
    subject_.report(Code::invalidation_bit_outside_record, extent_->index,
                    "expected the invalidation bits of all elements of the array within the " +
                        std::to_string(invalidation_bytes_) +
                        " invalidation bytes of a record, found room for " + std::to_string(room) +
                        " of " + countText(elements));
    return false;
  }
  *extent_->end_invalidation_bit += step * (elements - 1);
  return true;
}

/// Sorted by kind and then by place, it is enough to compare neighbours.
void ChannelCheck::checkMasters() {
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

}  // namespace mdf_tools
