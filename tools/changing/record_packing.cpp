#include "record_packing.h"

#include <algorithm>
#include <limits>

#include "reader/values/raw_type.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Longer than any record.
constexpr std::int64_t far = std::int64_t{1} << 33U;

std::int64_t endOfValue(const Channel& channel) {
  const RawType type{channel.data_type, channel.bit_offset, channel.bit_count};
  return static_cast<std::int64_t>(channel.byte_offset + type.bytes());
}

}  // namespace

/// How far the elements of arrays reach before and after the first of them.
struct RecordPacking::Reach {
  std::int64_t before = 0;
  std::int64_t after = 0;

  /// @param step from one element to the next.
  void add(const ArrayShape& array, std::int64_t step) {
    std::int64_t elements = 1;
    for (const std::uint64_t dimension : array.dimensions) {
      const auto size = static_cast<std::int64_t>(std::min<std::uint64_t>(dimension, far));
      elements = size == 0 || elements <= far / size ? elements * size : far;
    }
    const std::int64_t width = step < 0 ? -step : step;
    const std::int64_t others = std::max<std::int64_t>(elements, 1) - 1;
    std::int64_t& side = step < 0 ? before : after;
    side = std::min(far, side + (width == 0 || others <= far / width ? others * width : far));
  }
};

/// The same of a channel in arrays, in bytes and in invalidation bits.
struct RecordPacking::Extent {
  std::size_t depth = 0;
  Reach bytes = {};
  Reach bits = {};

  void add(const ArrayShape& array) {
    bytes.add(array, array.byte_step);
    bits.add(array,
             static_cast<std::int64_t>(std::min<std::uint64_t>(array.invalidation_step, far)));
  }
};

RecordPacking::RecordPacking(const ChannelGroup& group, const ContentChoice& choice)
    : group_(group),
      choice_(choice),
      data_bytes_(group.data_bytes),
      inval_bytes_(group.invalidation_bytes) {
  std::vector<Extent> around;
  for (const Channel& channel : group.channels) {
    while (!around.empty() && around.back().depth >= channel.depth) {
      around.pop_back();
    }
    Extent extent = around.empty() ? Extent() : around.back();
    extent.depth = channel.depth;
    if (!channel.array.dimensions.empty() && channel.array.in_records) {
      extent.add(channel.array);
      for (const ArrayShape& inner : channel.array.inner) {
        extent.add(inner);
      }
    }
    if (choice.hasAnyOf(channel)) {
      add(channel, extent);
    }
    around.push_back(extent);
  }
  if (data_.ranges.empty() && invalidation_.ranges.empty()) {
    data_.add(0, 1, data_bytes_);  // records without a byte could not be counted
  }
  data_.join();
  invalidation_.join();
}

void RecordPacking::add(const Channel& channel, const Extent& extent) {
  const bool has_bytes = choice_.has(channel) || !channel.array.dimensions.empty();
  if (has_bytes && !channel.isVirtual()) {
    data_.add(channel.byte_offset - extent.bytes.before, endOfValue(channel) + extent.bytes.after,
              data_bytes_);
  }
  if ((channel.flags & Channel::has_invalidation_bit) != 0) {
    invalidation_.add(channel.invalidation_bit / 8,
                      (channel.invalidation_bit + extent.bits.after) / 8 + 1, inval_bytes_);
  }
}

void RecordPacking::Part::add(std::int64_t begin, std::int64_t end, std::uint32_t limit) {
  const std::int64_t first = std::max<std::int64_t>(begin, 0);
  const std::int64_t last = std::min<std::int64_t>(end, limit);
  if (first < last) {
    ranges.push_back({static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last), 0});
  }
}

/// Puts ranges into order, and those that touch together.
void RecordPacking::Part::join() {
  std::sort(ranges.begin(), ranges.end(),
            [](const Range& left, const Range& right) { return left.begin < right.begin; });
  std::vector<Range> joined;
  for (const Range& range : ranges) {
    if (joined.empty() || joined.back().end < range.begin) {
      joined.push_back(range);
    } else {
      joined.back().end = std::max(joined.back().end, range.end);
    }
  }
  for (Range& range : joined) {
    range.to = kept;
    kept += range.end - range.begin;
  }
  ranges = std::move(joined);
}

/// Where a byte is in the copy, or what comes after one that is cut out. What was outside the part
/// stays outside.
std::uint32_t RecordPacking::Part::placeOf(std::uint32_t byte, std::uint32_t limit) const {
  if (byte >= limit) {
    return kept + (byte - limit);
  }
  const auto after = std::upper_bound(
      ranges.begin(), ranges.end(), byte,
      [](std::uint32_t wanted, const Range& range) { return wanted < range.begin; });
  if (after == ranges.begin()) {
    return 0;
  }
  const Range& range = *(after - 1);
  return range.to + std::min(byte, range.end) - range.begin;
}

void RecordPacking::appendReduced(std::string_view record, std::string& to) const {
  for (std::size_t i = 0; i < 3; ++i) {
    data_.append(record.substr(0, data_bytes_), to);
    record.remove_prefix(data_bytes_);
  }
  if (!record.empty()) {
    invalidation_.append(record, to);
  }
}

void RecordPacking::tell(BlockCopy& blocks) const {
  const std::uint32_t block = blocks.table().find(group_.offset);
  blocks.setField(block, "cg_data_bytes", data_.kept);
  blocks.setField(block, "cg_inval_bytes", invalidation_.kept);
  for (const Channel& channel : group_.channels) {
    if (choice_.hasAnyOf(channel)) {
      tellChannel(blocks, channel);
    }
  }
}

/// A structure that has lost members has become shorter.
void RecordPacking::tellChannel(BlockCopy& blocks, const Channel& channel) const {
  const std::uint32_t block = blocks.table().find(channel.offset);
  if (!channel.isVirtual()) {
    const std::uint32_t begin = data_.placeOf(channel.byte_offset, data_bytes_);
    blocks.setField(block, "cn_byte_offset", begin);
    const std::int64_t end = endOfValue(channel);
    if (!choice_.has(channel) && end <= data_bytes_) {
      const std::uint32_t length =
          data_.placeOf(static_cast<std::uint32_t>(end), data_bytes_) - begin;
      if (length < end - channel.byte_offset) {
        blocks.setField(block, "cn_bit_offset", 0);
        blocks.setField(block, "cn_bit_count", std::uint64_t{8} * length);
      }
    }
  }
  if ((channel.flags & Channel::has_invalidation_bit) != 0) {
    const std::uint32_t byte = invalidation_.placeOf(channel.invalidation_bit / 8, inval_bytes_);
    blocks.setField(block, "cn_inval_bit_pos",
                    std::uint64_t{8} * byte + channel.invalidation_bit % 8);
  }
}

}  // namespace mdf_tools
