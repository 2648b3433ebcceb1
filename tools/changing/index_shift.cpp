#include "index_shift.h"

#include <string>

#include "copy_failure.h"
#include "description/ccblock.h"
#include "description/cnblock.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::CCBLOCK;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

[[noreturn]] void refuse(const ChannelGroup& group, const std::string& why) {
  throw CopyFailure("channel group " + std::to_string(group.index) + " " + why);
}

double numberAtOffset(InputFile& file, std::uint64_t offset) {
  std::string bytes(sizeof(double), '\0');
  file.readAt(offset, bytes.data(), bytes.size());
  return loadLe<double>(bytes.data());
}

/// A conversion of the value by adding a number.
std::string additionOf(double number) {
  constexpr std::size_t size = CCBLOCK::CCBLOCK_CONSTANT_SIZE + 2 * sizeof(double);
  std::string block(size, '\0');
  block.replace(0, 4, "##CC");
  storeLe(&block[8], std::uint64_t{size});
  storeLe(&block[16], std::uint64_t{CCBLOCK::cc_cc_inverse + 1});
  char* const fields =
      &block[RawBlock::header_size + RawBlock::link_size * (CCBLOCK::cc_cc_inverse + 1)];
  fields[0] = CCBLOCK::CC_CONVTYPE_LINEAR;
  storeLe(fields + 6, std::uint16_t{2});
  storeLe(&block[CCBLOCK::CCBLOCK_CONSTANT_SIZE], number);
  storeLe(&block[CCBLOCK::CCBLOCK_CONSTANT_SIZE + sizeof number], 1.0);
  return block;
}

}  // namespace

IndexShift::IndexShift(BlockCopy& blocks, const RowChoice& rows,
                       const std::vector<DataGroup>& data_groups,
                       const std::function<bool(const Channel& channel)>& is_copied)
    : blocks_(blocks) {
  for (const DataGroup& data_group : data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      const std::vector<Rows>& chosen = rows.of(group.offset);
      const std::uint64_t first = chosen.empty() ? 0 : chosen.front().begin;
      for (const Channel& channel : group.channels) {
        if (!is_copied(channel)) {
          continue;
        }
        if (group.hasRemoteMaster() && !(chosen == rows.of(group.master_group))) {
          refuse(group, "would have other records than the group with its master channel");
        }
        if (channel.isVirtual() && chosen.size() > 1) {
          refuse(group, "has values that are numbers of records, some of which would be left out");
        }
        add(channel, channel.isVirtual() ? first : 0);
      }
    }
  }
}

/// Conversions may be shared.
void IndexShift::add(const Channel& channel, std::uint64_t first) {
  if (channel.conversion == 0) {
    unconverted_[channel.offset] = first;
    return;
  }
  const auto [known, is_new] = conversions_.emplace(channel.conversion, first);
  if (!is_new && known->second != first) {
    throw CopyFailure("a conversion of record numbers is shared by channels of other records");
  }
  const auto block =
      first == 0 ? std::nullopt : readFields(blocks_.file(), channel.conversion, "CC");
  if (block && block->number("cc_type") != CCBLOCK::CC_CONVTYPE_LINEAR) {
    throw CopyFailure("a channel of record numbers has no linear conversion, which could be kept");
  }
}

void IndexShift::write(NewBlocks& out) {
  for (const auto& [channel, first] : unconverted_) {
    if (first > 0) {
      blocks_.setLink({blocks_.table().find(channel), CNBLOCK::cn_cc_conversion},
                      out.add(additionOf(static_cast<double>(first))));
    }
  }
  for (const auto& [conversion, first] : conversions_) {
    const auto block = first == 0 ? std::nullopt : readFields(blocks_.file(), conversion, "CC");
    if (block) {
      const double offset = numberAtOffset(blocks_.file(), block->tailAt());
      const double factor = numberAtOffset(blocks_.file(), block->tailAt() + sizeof offset);
      std::string bytes(sizeof offset, '\0');
      storeLe(bytes.data(), offset + factor * static_cast<double>(first));
      blocks_.setBytes(blocks_.table().find(conversion), block->tailAt() - conversion, bytes);
    }
  }
}

}  // namespace mdf_tools
