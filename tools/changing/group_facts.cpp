#include "group_facts.h"

#include <algorithm>

#include "description/dgblock.h"
#include "framework/wire.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_block.h"
#include "reader/data/data_links.h"

namespace mdf_tools {

using mdf_v4_10::DGBLOCK;
using mdf_v4_10::detail::storeLe;

bool hasElementsElsewhere(const DataGroup& data_group) {
  const auto has_elements = [](const Channel& channel) {
    return !channel.array.dimensions.empty() && !channel.array.in_records;
  };
  return std::any_of(
      data_group.groups.begin(), data_group.groups.end(), [&](const ChannelGroup& group) {
        return std::any_of(group.channels.begin(), group.channels.end(), has_elements);
      });
}

bool hasOffsetInPlace(const ChannelGroup& group, const Channel& channel) {
  const auto is_array = [](const Channel& each) { return !each.array.dimensions.empty(); };
  return channel.bit_offset == 0 && channel.bit_count % 8 == 0 && channel.bit_count <= 64 &&
         std::uint64_t{channel.byte_offset} + channel.bit_count / 8 <= group.data_bytes &&
         std::none_of(group.channels.begin(), group.channels.end(), is_array);
}

bool hasVirtual(const ChannelGroup& group) {
  return std::any_of(group.channels.begin(), group.channels.end(),
                     [](const Channel& channel) { return channel.isVirtual(); });
}

std::string dataLettersOf(InputFile& file, std::uint64_t target) {
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const auto part = DataLinks(file, {target, target}, silent).next();
  const auto block = part ? readRawBlock(file, part->data) : std::nullopt;
  const std::string letters = block ? originalType(file, *block) : "";
  const bool is_whole = letters == "DT" || letters == "SD" || letters == "RD";
  return is_whole && part->invalidation == 0 ? letters : "";
}

std::string dataGroupBlock(std::uint64_t next, std::uint64_t group, std::uint64_t data,
                           std::uint64_t comment) {
  std::string block(DGBLOCK::DGBLOCK_SIZE, '\0');
  block.replace(0, 4, "##DG");
  storeLe(&block[8], std::uint64_t{block.size()});
  storeLe(&block[16], std::uint64_t{DGBLOCK::DG_BLOCK_LINKS_NUM});
  char* at = &block[RawBlock::header_size];
  for (const std::uint64_t link : {next, group, data, comment}) {
    storeLe(at, link);
    at += RawBlock::link_size;
  }
  return block;
}

}  // namespace mdf_tools
