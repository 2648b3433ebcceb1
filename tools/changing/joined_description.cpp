#include "joined_description.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "description/cnblock.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

/// The 8 bytes of a record that a channel gets, and where blocks for it go.
struct WidePlace {
  std::uint32_t at;
  NewBlocks& out;
};

struct Range {
  double least;
  double most;
};

std::string textBlock(std::string_view text) {
  const std::size_t length = RawBlock::header_size + text.size() + 1;
  std::string block(length, '\0');
  block.replace(0, 4, "##TX");
  storeLe(&block[8], std::uint64_t{length});
  block.replace(RawBlock::header_size, text.size(), text);
  return block;
}

std::uint64_t bitsOf(double number) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

/// Has a channel take its values from where the records have them now.
void setWide(JoinInput& input, const ChannelGroup& group, const ValueChange& value,
             const WidePlace& place) {
  using Form = ValueChange::Form;
  const Channel& channel = group.channels[value.channel];
  const std::uint32_t block = input.indexOf(channel.offset);
  input.blocks.setField(block, "cn_byte_offset", place.at);
  input.blocks.setField(block, "cn_bit_offset", 0);
  input.blocks.setField(block, "cn_bit_count", 8 * sizeof(std::uint64_t));
  if (channel.isVirtual()) {
    input.blocks.setField(block, "cn_type",
                          channel.isMaster() ? Channel::master : Channel::fixed_length);
  }
  if (value.form != Form::wide_offset) {
    input.blocks.setField(block, "cn_data_type",
                          value.form == Form::wide_integer ? Channel::signed_le
                          : value.form == Form::wide_index ? Channel::unsigned_le
                                                           : Channel::real_le);
  }
  const auto fields = readFields(input.file, channel.offset, "CN");
  if (value.form == Form::wide_real && fields && fields->link(CNBLOCK::cn_md_unit) == 0 &&
      !channel.unit.empty()) {
    input.blocks.setLink({block, CNBLOCK::cn_md_unit}, place.out.add(textBlock(channel.unit)));
  }
}

/// The range of raw values in all files; nothing where it is not known.
std::optional<Range> rangeOf(JoinInputs& inputs, const JoinedGroup& joined, std::size_t channel) {
  const auto& changes = joined.change->values();
  const bool changes_values =
      std::any_of(changes.begin(), changes.end(),
                  [&](const ValueChange& value) { return value.channel == channel; });
  Range range{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  for (const GroupSource& source : joined.sources) {
    const Channel& each = source.group->channels[channel];
    const auto block = readFields(inputs[source.file].file, each.offset, "CN");
    if (changes_values || !block || !block->hasFlag("cn_flags", CNBLOCK::value_range_valid)) {
      return std::nullopt;
    }
    range.least = std::min(range.least, block->real("cn_val_range_min"));
    range.most = std::max(range.most, block->real("cn_val_range_max"));
  }
  return range;
}

/// The range of values that a channel states holds for all files, or no longer; the same of the
/// statement that its values grow.
void setStatements(JoinInputs& inputs, const JoinedGroup& joined, std::size_t channel) {
  constexpr std::uint32_t has_range = CNBLOCK::value_range_valid;
  const GroupSource& home = joined.sources.front();
  JoinInput& input = inputs[home.file];
  const Channel& own = home.group->channels[channel];
  const std::uint32_t block = input.indexOf(own.offset);
  std::uint32_t flags = own.flags;
  const auto range = (flags & has_range) != 0 ? rangeOf(inputs, joined, channel) : std::nullopt;
  if (range && joined.sources.size() > 1) {
    input.blocks.setField(block, "cn_val_range_min", bitsOf(range->least));
    input.blocks.setField(block, "cn_val_range_max", bitsOf(range->most));
  } else if (!range) {
    flags &= ~has_range;
  }
  if (own.isMaster() && joined.overlaps()) {
    flags &= ~std::uint32_t{CNBLOCK::monotonous};
  }
  if (flags != own.flags) {
    input.blocks.setField(block, "cn_flags", flags);
  }
}

}  // namespace

void describeJoined(JoinInputs& inputs, const JoinedGroup& joined, NewBlocks& out) {
  const GroupSource& home = joined.sources.front();
  BlockCopy& blocks = inputs[home.file].blocks;
  const std::uint32_t block = blocks.table().find(home.group->offset);
  blocks.setField(block, "cg_cycle_count", joined.records());
  blocks.setField(block, "cg_data_bytes", home.group->data_bytes + joined.change->bytesMore());
  for (const auto& [channel, place] : joined.values) {
    blocks.setLink({blocks.table().find(home.group->channels[channel].offset), CNBLOCK::cn_data},
                   place);
  }
  std::uint32_t at = home.group->data_bytes;
  for (const ValueChange& value : joined.change->values()) {
    if (value.isWide()) {
      setWide(inputs[home.file], *home.group, value, {at, out});
      at += sizeof(std::uint64_t);
    }
  }
  for (std::size_t channel = 0; channel < home.group->channels.size(); ++channel) {
    setStatements(inputs, joined, channel);
  }
}

}  // namespace mdf_tools
