#include "field_check.h"

#include <string>
#include <string_view>

#include "mdf_v4_10.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_v4_10;

namespace {

void checkLinkCount(const Subject& subject, const RawBlock& block, std::uint32_t index) {
  if (block.linkCount() != block.link_count) {
    subject.report(Code::link_count_wrong, index,
                   "expected the link count " + std::to_string(block.linkCount()) +
                       " by the length of " + std::to_string(block.length) + ", found " +
                       std::to_string(block.link_count));
  }
  if (block.link_count > 0 && block.type().isData()) {
    subject.report(Code::data_with_links, index,
                   "expected data without links, found " + std::to_string(block.link_count));
  }
}

/// Whether the channel is nothing but the name of its members.
bool isStructure(const Subject& subject, const BlockFields& channel) {
  return readFields(subject.file, channel.link(CNBLOCK::cn_composition), "CN").has_value();
}

void checkChannel(const Subject& subject, const BlockFields& channel, std::uint32_t index) {
  constexpr std::string_view values = "SD DZ DL HL CG";
  const std::uint64_t type = channel.number("cn_type");
  const bool is_virtual = type == Channel::virtual_master || type == Channel::virtual_data;
  if (channel.number("cn_bit_count") == 0 && !is_virtual && !isStructure(subject, channel)) {
    subject.report(Code::channel_without_bits, index,
                   "expected bits in the record for a channel of type " + std::to_string(type) +
                       ", found cn_bit_count 0");
  }
  const std::uint64_t data = channel.link(CNBLOCK::cn_data);
  const std::uint32_t found = data == 0 ? BlockTable::none : subject.blocks.find(data);
  if (type != Channel::variable_length && found != BlockTable::none &&
      isAmongTargets(values, subject.blocks[found].letters())) {
    subject.report(Code::signal_data_unused, index,
                   "expected cn_data of a channel of type " + std::to_string(type) +
                       " to lead to no values, found " +
                       nameAt(subject.blocks[found].letters(), data));
  }
}

void checkEvent(const Subject& subject, const BlockFields& event, std::uint32_t index) {
  if (event.real("ev_sync_factor") == 0) {
    subject.report(Code::event_factor_zero, index,
                   "expected ev_sync_factor to make a position of the base value " +
                       std::to_string(event.signedNumber("ev_sync_base_value")) + ", found 0");
  }
}

}  // namespace

void checkFields(const Subject& subject, const BlockFields& block, std::uint32_t index) {
  checkLinkCount(subject, block.raw(), index);
  const std::string_view type = block.raw().letters();
  if (type == "CN") {
    checkChannel(subject, block, index);
  } else if (type == "EV") {
    checkEvent(subject, block, index);
  }
}

}  // namespace mdf_tools
