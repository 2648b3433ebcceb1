#include "description.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "../blocks/block_fields.h"
#include "../blocks/later_types.h"
#include "../bytes/input_file.h"
#include "../bytes/offset_set.h"
#include "array_elements.h"
#include "mdf_v4_10.h"

namespace mdf_reader {

using namespace mdf_v4_10;

namespace {

static_assert(unsigned{ChannelGroup::has_remote_master} == cg_remote_master);

/// @param was_visited whether there is a block that was visited before; otherwise none of this type
void reportNoNew(std::uint64_t from, std::uint64_t offset, std::string_view letters,
                 bool was_visited, const FindingSink& report) {
  report({was_visited ? Code::chain_endless : Code::link_wrong_type, from,
          "expected a link to a new block \"##" + std::string(letters) + "\" at " +
              decimalAndHex(offset) + ", found " +
              (was_visited ? "one that was visited before" : "none")});
}

/// Reads the description of a file block by block.
class DescriptionReader {
 public:
  DescriptionReader(InputFile& file, const FindingSink& report, const ChannelVisitor& visit,
                    Texts& texts)
      : file_(file), report_(report), visit_(visit), texts_(texts) {}

  Header header();
  std::vector<DataGroup> dataGroups();

 private:
  /// A channel that is still to be read, and how deep it is nested.
  struct Step {
    std::uint64_t from;  ///< the block with the link
    std::uint64_t offset;
    std::size_t depth;
  };

  /// The block of this type that a link leads to, if there is one and it is new.
  std::optional<BlockFields> follow(std::uint64_t from, std::uint64_t offset,
                                    std::string_view letters);
  DataGroup dataGroup(const BlockFields& block);
  ChannelGroup channelGroup(const BlockFields& block);
  void readChannels(std::uint64_t first, ChannelGroup& group);
  Channel channel(const BlockFields& block);
  ArrayShape arrayShape(const BlockFields& array);
  Step readElements(BlockFields array, ArrayShape& shape);
  std::string_view text(std::uint64_t offset) { return texts_.at(file_, offset); }
  std::string_view comment(std::uint64_t offset) { return texts_.commentAt(file_, offset); }

  InputFile& file_;
  const FindingSink& report_;
  const ChannelVisitor& visit_;  ///< none for channels that are kept
  Texts& texts_;
  OffsetSet seen_;
  std::uint64_t first_data_group_ = 0;
  std::size_t group_count_ = 0;
};

std::optional<BlockFields> DescriptionReader::follow(std::uint64_t from, std::uint64_t offset,
                                                     std::string_view letters) {
  if (offset == 0) {
    return std::nullopt;
  }
  const bool was_visited = seen_.contains(offset);
  auto block = was_visited ? std::nullopt : readFields(file_, offset, letters);
  if (!block) {
    reportNoNew(from, offset, letters, was_visited, report_);
    return std::nullopt;
  }
  seen_.insert(offset);
  if (!block->isComplete()) {
    report_({Code::length_too_small, offset,
             "expected all links and fields of " + block->raw().name() + ", found a length of " +
                 std::to_string(block->raw().length) + " and " +
                 std::to_string(block->raw().link_count) + " links"});
  }
  return block;
}

Header DescriptionReader::header() {
  Header header;
  const auto finding = identificationFinding(file_);
  if (finding && !readFields(file_, header_block_offset, "HD")) {
    report_(*finding);
    return header;
  }
  const auto block = follow(0, header_block_offset, "HD");
  if (!block) {
    return header;
  }
  header.start_time = block->number("hd_start_time_ns");
  header.zone_minutes = static_cast<int>(block->signedNumber("hd_tz_offset_min"));
  header.daylight_minutes = static_cast<int>(block->signedNumber("hd_dst_offset_min"));
  header.time_flags = static_cast<unsigned>(block->number("hd_time_flags"));
  header.time_class = static_cast<unsigned>(block->number("hd_time_class"));
  header.flags = static_cast<unsigned>(block->number("hd_flags"));
  header.start_angle = block->real("hd_start_angle_rad");
  header.start_distance = block->real("hd_start_distance_m");
  first_data_group_ = block->link(HDBLOCK::hd_dg_first);
  header.first_history = block->link(HDBLOCK::hd_fh_first);
  header.first_hierarchy = block->link(HDBLOCK::hd_ch_first);
  header.first_attachment = block->link(HDBLOCK::hd_at_first);
  header.first_event = block->link(HDBLOCK::hd_ev_first);
  header.comment_block = block->link(HDBLOCK::hd_md_comment);
  header.comment = comment(header.comment_block);
  return header;
}

std::vector<DataGroup> DescriptionReader::dataGroups() {
  std::vector<DataGroup> groups;
  auto block = follow(header_block_offset, first_data_group_, "DG");
  while (block) {
    groups.push_back(dataGroup(*block));
    groups.back().index = groups.size() - 1;
    block = follow(block->offset(), block->link(DGBLOCK::dg_dg_next), "DG");
  }
  return groups;
}

DataGroup DescriptionReader::dataGroup(const BlockFields& block) {
  DataGroup data_group;
  data_group.offset = block.offset();
  data_group.record_id_code = static_cast<unsigned>(block.number("dg_rec_id_size"));
  data_group.data = block.link(DGBLOCK::dg_data);
  data_group.comment = comment(block.link(DGBLOCK::dg_md_comment));
  auto group = follow(block.offset(), block.link(DGBLOCK::dg_cg_first), "CG");
  while (group) {
    data_group.groups.push_back(channelGroup(*group));
    group = follow(group->offset(), group->link(CGBLOCK::cg_cg_next), "CG");
  }
  return data_group;
}

ChannelGroup DescriptionReader::channelGroup(const BlockFields& block) {
  ChannelGroup group;
  group.offset = block.offset();
  group.index = group_count_++;
  group.name = text(block.link(CGBLOCK::cg_tx_acq_name));
  group.source = block.link(CGBLOCK::cg_si_acq_source);
  group.source_name = readSource(file_, group.source, texts_).name;
  group.first_reduction = block.link(CGBLOCK::cg_sr_first);
  group.comment = comment(block.link(CGBLOCK::cg_md_comment));
  group.record_id = block.number("cg_record_id");
  group.cycles = block.number("cg_cycle_count");
  group.flags = static_cast<unsigned>(block.number("cg_flags"));
  group.data_bytes = static_cast<std::uint32_t>(block.number("cg_data_bytes"));
  group.invalidation_bytes = static_cast<std::uint32_t>(block.number("cg_inval_bytes"));
  if (group.hasRemoteMaster()) {
    group.master_group = linkAt(file_, block.raw(), CGBLOCK::CG_BLOCK_LINKS_NUM);
  }
  readChannels(block.link(CGBLOCK::cg_cn_first), group);
  return group;
}

/// Members of a structure come before the channel that follows it. They may be nested deeper than
/// calls can be.
void DescriptionReader::readChannels(std::uint64_t first, ChannelGroup& group) {
  std::vector<Step> steps = {{group.offset, first, 0}};
  while (!steps.empty()) {
    const Step step = steps.back();
    steps.pop_back();
    const auto block = follow(step.from, step.offset, "CN");
    if (!block) {
      continue;
    }
    Channel channel = this->channel(*block);
    channel.depth = step.depth;
    steps.push_back({block->offset(), block->link(CNBLOCK::cn_cn_next), step.depth});
    const std::uint64_t composition = block->link(CNBLOCK::cn_composition);
    if (readFields(file_, composition, "CA")) {
      if (const auto array = follow(block->offset(), composition, "CA")) {
        channel.array = arrayShape(*array);
        const Step members = readElements(*array, channel.array);
        channel.is_structure = members.offset != 0;
        steps.push_back({members.from, members.offset, step.depth + 1});
      }
    } else if (composition != 0) {
      channel.is_structure = true;
      steps.push_back({block->offset(), composition, step.depth + 1});
    }
    if (visit_) {
      visit_(group, channel);
    }
    const bool has_records = !channel.array.dimensions.empty() && !channel.array.in_records;
    if (!visit_ || has_records) {
      group.channels.push_back(std::move(channel));
    }
  }
}

Channel DescriptionReader::channel(const BlockFields& block) {
  Channel channel;
  channel.offset = block.offset();
  channel.name = text(block.link(CNBLOCK::cn_tx_name));
  channel.source = block.link(CNBLOCK::cn_si_source);
  channel.conversion = block.link(CNBLOCK::cn_cc_conversion);
  channel.data = block.link(CNBLOCK::cn_data);
  channel.unit = text(block.link(CNBLOCK::cn_md_unit));
  channel.comment = comment(block.link(CNBLOCK::cn_md_comment));
  channel.type = static_cast<unsigned>(block.number("cn_type"));
  channel.sync_type = static_cast<unsigned>(block.number("cn_sync_type"));
  channel.data_type = static_cast<unsigned>(block.number("cn_data_type"));
  channel.bit_offset = static_cast<unsigned>(block.number("cn_bit_offset"));
  channel.byte_offset = static_cast<std::uint32_t>(block.number("cn_byte_offset"));
  channel.bit_count = static_cast<std::uint32_t>(block.number("cn_bit_count"));
  channel.flags = static_cast<std::uint32_t>(block.number("cn_flags"));
  channel.invalidation_bit = static_cast<std::uint32_t>(block.number("cn_inval_bit_pos"));
  channel.precision = static_cast<unsigned>(block.number("cn_precision"));
  if (channel.unit.empty()) {
    if (const auto conversion = readFields(file_, channel.conversion, "CC")) {
      channel.unit = text(conversion->link(CCBLOCK::cc_md_unit));
    }
  }
  return channel;
}

ArrayShape DescriptionReader::arrayShape(const BlockFields& array) {
  ArrayShape shape;
  shape.offset = array.offset();
  shape.byte_step = array.signedNumber("ca_byte_offset_base");
  shape.invalidation_step = array.number("ca_inval_bit_pos_base");
  shape.in_records = array.number("ca_storage") == CABLOCK::in_records;
  shape.is_column_oriented = array.hasFlag("ca_flags", CABLOCK::inverse_layout);
  // One more than anybody takes is enough to tell: blocks may overlap.
  const std::uint64_t count = std::min<std::uint64_t>(
      {array.number("ca_ndim"), array.tailBytes() / 8, most_array_dimensions + 1});
  for (std::uint64_t i = 0; i < count; ++i) {
    shape.dimensions.push_back(numberAt(file_, array.tailAt() + 8 * i));
  }
  return shape;
}

/// What the elements of an array are: arrays, as deep as they go, and then structures, whose first
/// member is returned, or nothing more.
DescriptionReader::Step DescriptionReader::readElements(BlockFields array, ArrayShape& shape) {
  while (readFields(file_, array.link(CABLOCK::ca_composition), "CA")) {
    const auto inner = follow(array.offset(), array.link(CABLOCK::ca_composition), "CA");
    if (!inner) {
      return {array.offset(), 0, 0};
    }
    shape.inner.push_back(arrayShape(*inner));
    array = *inner;
  }
  return {array.offset(), array.link(CABLOCK::ca_composition), 0};
}

}  // namespace

std::vector<unsigned> recordIdBytesFor(std::uint64_t code) {
  switch (code) {
    case 0:
    case 1:
    case 2:
    case 8:
      return {static_cast<unsigned>(code)};
    case 3:
      return {4};
    case 4:
      return {4, 8};
    default:
      return {};
  }
}

const Channel* ChannelGroup::masterChannel() const {
  const Channel* best = nullptr;
  for (const Channel& channel : channels) {
    if (channel.isBetterMasterThan(best)) {
      best = &channel;
    }
  }
  return best;
}

Description readDescription(InputFile& file, const FindingSink& report) {
  return readDescription(file, report, nullptr);
}

Description readDescription(InputFile& file, const FindingSink& report,
                            const ChannelVisitor& visit) {
  Description description;
  description.texts = std::make_unique<Texts>();
  description.identification = readIdentification(file);
  DescriptionReader reader(file, report, visit, *description.texts);
  description.header = reader.header();
  description.data_groups = reader.dataGroups();
  return description;
}

void forEachInChain(InputFile& file, std::uint64_t first, std::string_view letters,
                    const FindingSink& report,
                    const std::function<void(const BlockFields& block)>& visit) {
  OffsetSet seen;
  std::uint64_t from = header_block_offset;
  for (std::uint64_t offset = first; offset != 0;) {
    const auto block = readFields(file, offset, letters);
    if (!block || seen.contains(offset)) {
      reportNoNew(from, offset, letters, block.has_value(), report);
      return;
    }
    seen.insert(offset);
    visit(*block);
    from = offset;
    offset = block->link(next_link);
  }
}

Source readSource(InputFile& file, std::uint64_t offset, Texts& texts) {
  Source source;
  if (const auto block = readFields(file, offset, "SI")) {
    source.name = texts.at(file, block->link(SIBLOCK::si_tx_name));
    source.path = texts.at(file, block->link(SIBLOCK::si_tx_path));
    source.type = static_cast<unsigned>(block->number("si_type"));
    source.bus_type = static_cast<unsigned>(block->number("si_bus_type"));
    source.is_simulated = block->hasFlag("si_flags", SIBLOCK::simulated_source);
  }
  return source;
}

}  // namespace mdf_reader
