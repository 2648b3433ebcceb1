#include "description.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "../../mdf/mdf_v4_10.h"
#include "added_blocks.h"
#include "blocks.h"
#include "places.h"

namespace mdf_writer {

using mdf_v4_10::ATBLOCK;
using mdf_v4_10::CCBLOCK;
using mdf_v4_10::CGBLOCK;
using mdf_v4_10::CHBLOCK;
using mdf_v4_10::CNBLOCK;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::FHBLOCK;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::IDBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::SIBLOCK;
using mdf_v4_10::SRBLOCK;
using mdf_v4_10::TXBLOCK;
using mdf_v4_10::detail::cgblock_fields;
using mdf_v4_10::detail::cnblock_fields;
using mdf_v4_10::detail::srblock_fields;
using mdf_v4_10::detail::storeLe;

namespace {

// What an unfinished file says of itself: flags at byte 60, in what MDF 4.10 reserves.
constexpr std::string_view unfinished_file = "UnFinMF ";
constexpr std::size_t flags_in_reserved = 30;
constexpr unsigned cycle_counts_unset = 1;
constexpr unsigned cycle_counts_of_reductions_unset = 2;
constexpr unsigned last_data_length_unset = 4;
constexpr unsigned bytes_of_values_unset = 32;

constexpr std::size_t cycle_count_place =
    placeOfField(CGBLOCK::CG_BLOCK_LINKS_NUM, cgblock_fields, "cg_cycle_count");
constexpr std::size_t data_bytes_place =
    placeOfField(CGBLOCK::CG_BLOCK_LINKS_NUM, cgblock_fields, "cg_data_bytes");
constexpr std::size_t cn_links = CNBLOCK::cn_md_comment + 1;
constexpr std::size_t flags_place = placeOfField(cn_links, cnblock_fields, "cn_flags");
constexpr std::size_t range_place = placeOfField(cn_links, cnblock_fields, "cn_val_range_min");

std::uint64_t at(LINK block, std::size_t place) {
  return static_cast<std::uint64_t>(block) + place;
}

/// An array of a channel's values in the record. The library has no class for this block.
std::string arrayBlock(const ChannelPlan& channel) {
  constexpr std::uint64_t links = 1;
  const std::size_t dimensions = channel.dimensions.size();
  const std::size_t size = placeOfLink(links) + 16 + 8 * dimensions;
  std::string block(size, '\0');
  block.replace(0, 4, "##CA");
  storeLe(&block[place_of_length], std::uint64_t{size});
  storeLe(&block[place_of_link_count], links);
  char* const data = &block[placeOfLink(links)];
  storeLe(data + 2, static_cast<std::uint16_t>(dimensions));
  storeLe(data + 8, static_cast<std::int32_t>(channel.bits / 8));
  for (std::size_t i = 0; i < dimensions; ++i) {
    storeLe(data + 16 + 8 * i, std::uint64_t{channel.dimensions[i]});
  }
  return block;
}

/// Puts blocks one after another, from the leaves to the root, so that each finds its links known.
class Describer {
 public:
  Describer(const Plan& plan, Layout layout, std::uint64_t at)
      : plan_(plan), layout_(layout), blocks_(at) {
    result_.groups.resize(plan.groups().size());
    giveRecordIds();
  }

  Description describe();
  GroupDescription describeGroup(std::size_t group);

 private:
  void giveRecordIds();
  LINK addSource(const Source& source);
  LINK addConversion(const Conversion& conversion);
  LINK addReference(const std::string& text, bool is_default);
  LINK addChannel(const ChannelPlan& channel, std::size_t index, LINK next, LINK members,
                  GroupPlaces& places);
  LINK addChannels(const Group& group, std::size_t begin, std::size_t end, GroupPlaces& places);
  LINK addReductions(const Group& group, GroupPlaces& places);
  LINK addGroup(const Group& group, LINK next, GroupPlaces& places);
  LINK addValueGroup(GroupPlaces::Values& values, LINK next);
  LINK addDataGroup(LINK first_group, LINK next);
  LINK addGroupApart(std::size_t index, LINK next);
  LINK addGroupsApart();
  LINK addGroupsTogether();
  void addHistory(HDBLOCK& header);
  void addAttachments(HDBLOCK& header);
  LINK addHierarchy(const std::vector<HierarchyEntry>& entries);
  IDBLOCK identification() const;
  IDBLOCK unfinishedIdentification() const;
  bool isTogether() const { return layout_ != Layout::apart; }

  const Plan& plan_;
  Layout layout_;
  /// Where the blocks of a group are, as entries of the hierarchy name them.
  struct GroupBlocks {
    LINK data_group = 0;
    LINK group = 0;
    std::vector<LINK> channels;
  };

  Blocks blocks_;
  std::map<const Group*, GroupBlocks> group_blocks_;
  Description result_;
};

/// Record ids count from 1, the groups of values of a group after it.
void Describer::giveRecordIds() {
  std::uint64_t last = 0;
  for (std::size_t i = 0; i < result_.groups.size(); ++i) {
    GroupPlaces& places = result_.groups[i];
    places.record_id = ++last;
    const std::vector<ChannelPlan>& channels = plan_.groups()[i].channels();
    for (std::size_t k = 0; k < channels.size(); ++k) {
      if (channels[k].has_variable_length) {
        places.values.push_back({k});
        places.values.back().record_id = isTogether() ? ++last : 0;
      }
    }
  }
  if (isTogether()) {
    result_.record_id_bytes = last < 256 ? 1 : last < 65536 ? 2 : 4;
  }
}

LINK Describer::addSource(const Source& source) {
  if (source.name.empty() && source.path.empty()) {
    return 0;
  }
  SIBLOCK block(source.type, source.bus, source.is_simulated, blocks_.addText(source.name),
                blocks_.addText(source.path));
  block.setComment(blocks_.addComment("SIcomment", source.comment));
  return blocks_.add(block);
}

/// No text is the nil link only where that stands for the value as it is.
LINK Describer::addReference(const std::string& text, bool is_default) {
  return text.empty() && !is_default ? blocks_.add(TXBLOCK()) : blocks_.addText(text);
}

LINK Describer::addConversion(const Conversion& conversion) {
  if (!conversion.is_stated) {
    return 0;
  }
  CCBLOCK block(conversion.type);
  for (std::size_t i = 0; i < conversion.texts.size(); ++i) {
    const bool is_last = i + 1 == conversion.texts.size();
    const bool has_default = conversion.type != CCBLOCK::CC_CONVTYPE_TEXT2VTAB;
    block.addReference(is_last && !conversion.rest.empty()
                           ? addConversion(conversion.rest.front())
                           : addReference(conversion.texts[i], is_last && has_default));
  }
  block.cc_vals = conversion.numbers;
  return blocks_.add(block);
}

/// Which flag and members a stated range has.
void putRange(const std::optional<Range>& range, CNBLOCK& block, void (CNBLOCK::*set_flag)(bool),
              double& least, double& greatest) {
  if (range) {
    (block.*set_flag)(true);
    least = range->least;
    greatest = range->greatest;
  }
}

void putNotes(const ChannelPlan& channel, CNBLOCK& block) {
  putRange(channel.range, block, &CNBLOCK::setValueRangeValidFlag, block.cn_val_range_min,
           block.cn_val_range_max);
  putRange(channel.limits, block, &CNBLOCK::setLimitRangeValidFlag, block.cn_limit_min,
           block.cn_limit_max);
  putRange(channel.extended_limits, block, &CNBLOCK::setExtendedLimitRangeValidFlag,
           block.cn_limit_ext_min, block.cn_limit_ext_max);
  if (channel.precision) {
    block.setPrecisionValidFlag(true);
    block.setPrecision(*channel.precision);
  }
  block.setDiscreteValueFlag(channel.is_discrete);
}

CNBLOCK::MDF_CN_CHANNELTYPE_t typeOf(const ChannelPlan& channel) {
  if (channel.has_variable_length) {
    return CNBLOCK::CN_CHANNELTYPE_VARLENGTH;
  }
  if (channel.isVirtual()) {
    return CNBLOCK::CN_CHANNELTYPE_VIRTUALMASTER;
  }
  return channel.master != CNBLOCK::CN_SYNCTYPE_NONE ? CNBLOCK::CN_CHANNELTYPE_MASTER
                                                     : CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH;
}

LINK Describer::addChannel(const ChannelPlan& channel, std::size_t index, LINK next, LINK members,
                           GroupPlaces& places) {
  CNBLOCK block(typeOf(channel), channel.master, channel.type, next, blocks_.addText(channel.name),
                0);
  block.setUnitblock(blocks_.addText(channel.unit));
  block.setCommentblock(blocks_.addComment("CNcomment", channel.comment));
  block.setSourceSiblock(addSource(channel.source));
  block.setConversionCcblock(addConversion(channel.conversion));
  block.setCompositionblock(channel.dimensions.empty() ? members
                                                       : blocks_.add(arrayBlock(channel)));
  block.setByteOffset(channel.byte_offset);
  block.setBitOffset(channel.bit_offset);
  block.setBitCount(channel.bits);
  putNotes(channel, block);
  if (channel.invalidation_bit) {
    block.setInvalidationBitFlag(true);
    block.setInvalidBitPos(*channel.invalidation_bit);
  }
  block.setMonotonousFlag(channel.master == CNBLOCK::CN_SYNCTYPE_TIME);
  block.setBusEventFlag(channel.is_bus_event);
  GroupPlaces::Values* const values = places.valuesOf(index);
  if (values != nullptr) {
    block.setDatablock(static_cast<LINK>(values->group));
  }
  const LINK link = blocks_.add(block);
  if (values != nullptr) {
    values->data_link = at(link, placeOfLink(CNBLOCK::cn_data));
  }
  if (channel.master == CNBLOCK::CN_SYNCTYPE_TIME && !channel.range) {
    places.master_flags = at(link, flags_place);
    places.flags_with_range = block.cn_flags | CNBLOCK::value_range_valid;
    places.master_range = at(link, range_place);
  }
  return link;
}

/// Where nothing can be written in place there are none.
LINK Describer::addReductions(const Group& group, GroupPlaces& places) {
  constexpr std::size_t count_place =
      placeOfField(SRBLOCK::SR_BLOCK_LINKS_NUM, srblock_fields, "sr_cycle_count");
  LINK next = 0;
  const std::size_t count = layout_ == Layout::open_end ? 0 : group.reductions.size();
  places.reductions.resize(count);
  for (std::size_t i = count; i-- > 0;) {
    SRBLOCK block(0, group.reductions[i], SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 0, next);
    block.setValidationBytesFlag(group.invalidationBytes() > 0);
    next = blocks_.add(block);
    places.reductions[i] = {at(next, placeOfLink(SRBLOCK::sr_data)), at(next, count_place)};
  }
  return next;
}

/// The channels from one index to another that are a list. Members of a structure come before it
/// and are a list of their own.
LINK Describer::addChannels(const Group& group, std::size_t begin, std::size_t end,
                            GroupPlaces& places) {
  LINK next = 0;
  for (std::size_t i = end; i-- > begin;) {
    const std::size_t index = i;
    const ChannelPlan& channel = group.channels()[index];
    LINK members = 0;
    if (channel.first_member) {
      i = *channel.first_member;
      members = addChannels(group, i, index, places);
    }
    next = addChannel(channel, index, next, members, places);
    group_blocks_[&group].channels[index] = next;
  }
  return next;
}

LINK Describer::addGroup(const Group& group, LINK next, GroupPlaces& places) {
  GroupBlocks& blocks = group_blocks_[&group];
  blocks.channels.resize(group.channels().size());
  CGBLOCK block;
  block.setNextCgblock(next);
  block.setFirstCnblock(addChannels(group, 0, group.channels().size(), places));
  if (group.is_bus_event) {
    block.setBusEventGroup(true);
    block.setPlainBusEventChannelGroup(true);
    block.setPathSeparator(CGBLOCK::CG_PATHSEPARATOR_POINT);
  }
  block.setFirstSrblock(addReductions(group, places));
  block.setAcqTxNameblock(blocks_.addText(group.name()));
  block.setAcqSourceSiblock(addSource(group.source));
  block.setComment(blocks_.addComment("CGcomment", group.comment));
  block.setRecordId(isTogether() ? places.record_id : 0);
  block.setDataBytes(group.dataBytes());
  block.setInvalidBytes(group.invalidationBytes());
  blocks.group = blocks_.add(block);
  places.block = at(blocks.group, 0);
  places.cycle_count = at(blocks.group, cycle_count_place);
  return blocks.group;
}

LINK Describer::addValueGroup(GroupPlaces::Values& values, LINK next) {
  CGBLOCK block;
  block.setNextCgblock(next);
  block.setVLSDChannelGroup(true);
  block.setRecordId(values.record_id);
  const LINK link = blocks_.add(block);
  values.group = static_cast<std::uint64_t>(link);
  values.cycle_count = at(link, cycle_count_place);
  values.total_bytes = at(link, data_bytes_place);
  return link;
}

LINK Describer::addDataGroup(LINK first_group, LINK next) {
  constexpr std::array codes = {DGBLOCK::DG_WITHOUT, DGBLOCK::DG_UINT8, DGBLOCK::DG_UINT16_LE,
                                DGBLOCK::DG_WITHOUT, DGBLOCK::DG_UINT32_LE};
  return blocks_.add(DGBLOCK(next, first_group, 0, codes[result_.record_id_bytes]));
}

LINK Describer::addGroupApart(std::size_t index, LINK next) {
  GroupPlaces& places = result_.groups[index];
  const Group& group = plan_.groups()[index];
  const LINK data_group = addDataGroup(addGroup(group, 0, places), next);
  group_blocks_[&group].data_group = data_group;
  places.data_link = at(data_group, placeOfLink(DGBLOCK::dg_data));
  return data_group;
}

LINK Describer::addGroupsApart() {
  LINK next = 0;
  for (std::size_t i = result_.groups.size(); i-- > 0;) {
    const bool is_last = next == 0;
    next = addGroupApart(i, next);
    if (is_last) {
      result_.group_link = at(next, placeOfLink(DGBLOCK::dg_dg_next));
    }
  }
  return next;
}

LINK Describer::addGroupsTogether() {
  LINK next = 0;
  for (std::size_t i = result_.groups.size(); i-- > 0;) {
    GroupPlaces& places = result_.groups[i];
    for (std::size_t k = places.values.size(); k-- > 0;) {
      next = addValueGroup(places.values[k], next);
    }
    next = addGroup(plan_.groups()[i], next, places);
  }
  const LINK data_group = addDataGroup(next, 0);
  for (std::size_t i = 0; i < result_.groups.size(); ++i) {
    group_blocks_[&plan_.groups()[i]].data_group = data_group;
    result_.groups[i].data_link = at(data_group, placeOfLink(DGBLOCK::dg_data));
  }
  return data_group;
}

void Describer::addHistory(HDBLOCK& header) {
  FHBLOCK block(
      blocks_.addXml(xmlComment(
          "FHcomment", xmlElement("TX", plan_.history) + xmlElement("tool_id", plan_.program) +
                           xmlElement("tool_vendor", plan_.program_vendor) +
                           xmlElement("tool_version", plan_.program_version))),
      plan_.start.nanoseconds, plan_.start.zone_minutes, 0);
  block.setDST(plan_.start.is_daylight_saving);
  header.setFHFirstblock(blocks_.add(block));
}

void Describer::addAttachments(HDBLOCK& header) {
  LINK next = 0;
  result_.attachment_link = IDBLOCK::IDBLOCK_SIZE + placeOfLink(HDBLOCK::hd_at_first);
  for (std::size_t i = plan_.attachments.size(); i-- > 0;) {
    const bool is_last = next == 0;
    next = addAttachment(blocks_, plan_.attachments[i], next);
    if (is_last) {
      result_.attachment_link = at(next, placeOfLink(ATBLOCK::at_at_next));
    }
  }
  header.setATFirstblock(next);
}

/// The block states one link for each channel; it has three, which readers must know to find its
/// type.
LINK Describer::addHierarchy(const std::vector<HierarchyEntry>& entries) {
  LINK next = 0;
  for (std::size_t i = entries.size(); i-- > 0;) {
    const HierarchyEntry& entry = entries[i];
    CHBLOCK block(entry.type);
    if (next != 0) {
      block.setNextCHBlock(next, entries[i + 1].type);
    }
    block.setFirstCHBlock(addHierarchy(entry.entries));
    block.setTXNameBlock(blocks_.addText(entry.name));
    block.setMDBlock(blocks_.addComment("CHcomment", entry.comment));
    for (const ChannelRef& channel : entry.channels) {
      const GroupBlocks& blocks = group_blocks_[channel.group];
      block.addChannelElement(blocks.data_group, blocks.group, blocks.channels[channel.index]);
    }
    std::string bytes = blockBytes(block);
    storeLe(&bytes[place_of_link_count], std::uint64_t{4} + 3 * entry.channels.size());
    next = blocks_.add(bytes);
  }
  return next;
}

IDBLOCK Describer::identification() const { return IDBLOCK(plan_.program.c_str()); }

IDBLOCK Describer::unfinishedIdentification() const {
  IDBLOCK id = identification();
  std::copy(unfinished_file.begin(), unfinished_file.end(), std::begin(id.id_file));
  unsigned flags = cycle_counts_unset;
  if (layout_ == Layout::open_end) {
    flags |= last_data_length_unset;
  }
  for (const GroupPlaces& places : result_.groups) {
    flags |= isTogether() && !places.values.empty() ? bytes_of_values_unset : 0;
    flags |= places.reductions.empty() ? 0 : cycle_counts_of_reductions_unset;
  }
  id.id_reserved2[flags_in_reserved] = static_cast<std::uint8_t>(flags);
  return id;
}

Description Describer::describe() {
  HDBLOCK header(0, 0, plan_.start.nanoseconds, plan_.start.zone_minutes, HDBLOCK::TIME_LOCAL_PC, 0,
                 0);
  header.setDST(plan_.start.is_daylight_saving);
  result_.finished_identification = blockBytes(identification());
  blocks_.add(result_.finished_identification);
  blocks_.add(header);
  addHistory(header);
  header.setMDCommentblock(blocks_.addXml(
      xmlComment("HDcomment", xmlElement("TX", plan_.comment) + xmlProperties(plan_.properties))));
  addAttachments(header);
  result_.group_link = IDBLOCK::IDBLOCK_SIZE + placeOfLink(HDBLOCK::hd_dg_first);
  header.setDGFirstblock(isTogether() ? addGroupsTogether() : addGroupsApart());
  header.setCHFirstblock(addHierarchy(plan_.hierarchy));
  result_.event_link = IDBLOCK::IDBLOCK_SIZE + placeOfLink(HDBLOCK::hd_ev_first);
  const LINK data = layout_ == Layout::open_end ? blocks_.add(DTBLOCK()) : 0;
  result_.bytes = blocks_.bytes();
  result_.bytes.replace(0, IDBLOCK::IDBLOCK_SIZE, blockBytes(unfinishedIdentification()));
  result_.bytes.replace(IDBLOCK::IDBLOCK_SIZE, HDBLOCK::HDBLOCK_SIZE, blockBytes(header));
  if (data != 0 && !result_.groups.empty()) {
    storeLe(&result_.bytes[static_cast<std::size_t>(result_.groups.front().data_link)], data);
  }
  return std::move(result_);
}

GroupDescription Describer::describeGroup(std::size_t group) {
  const LINK data_group = addGroupApart(group, 0);
  return {std::move(blocks_), data_group, std::move(result_.groups[group])};
}

}  // namespace

Description describe(const Plan& plan, Layout layout) {
  return Describer(plan, layout, 0).describe();
}

GroupDescription describe(const Plan& plan, std::size_t group, std::uint64_t at) {
  return Describer(plan, Layout::apart, at).describeGroup(group);
}

}  // namespace mdf_writer
