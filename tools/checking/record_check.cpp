#include "record_check.h"

#include <algorithm>
#include <string>
#include <utility>

#include "mdf_v4_10.h"
#include "reader/columns/tables.h"
#include "reader/data/records.h"
#include "reader/values/raw_type.h"

namespace mdf_tools {

using namespace mdf_reader;
using namespace mdf_v4_10;

void RecordCheck::take(const BlockFields& block, std::uint32_t index) {
  const std::string_view type = block.raw().letters();
  if (type == "DG") {
    leave();
    enterDataGroup(block, index);
  } else if (type == "CG") {
    enterChannelGroup(block, index);
  } else if (channels_ && type == "CN") {
    takeChannel(block, index);
  } else if (channels_) {
    checkReduction(block, index);
  }
}

void RecordCheck::takeArray(const BlockFields& block, std::uint32_t index, std::uint64_t elements) {
  are_blocks_enough_ = false;
  if (channels_) {
    channels_->takeArray(block, index, elements);
  }
}

void RecordCheck::leave() {
  if (channels_) {
    channels_->leave();
    channels_.reset();
  }
  is_in_data_group_ = false;
}

void RecordCheck::enterDataGroup(const BlockFields& block, std::uint32_t index) {
  DataGroup data_group;
  data_group.offset = block.offset();
  data_group.record_id_code = static_cast<unsigned>(block.number("dg_rec_id_size"));
  data_group.data = block.link(DGBLOCK::dg_data);
  checkShared({data_group.offset, data_group.data}, "dg_data", index);
  data_groups_.push_back(std::move(data_group));
  is_in_data_group_ = true;
}

void RecordCheck::enterChannelGroup(const BlockFields& block, std::uint32_t index) {
  if (channels_) {
    channels_->leave();
    channels_.reset();
  }
  ChannelGroup group;
  group.offset = block.offset();
  group.record_id = block.number("cg_record_id");
  group.cycles = block.number("cg_cycle_count");
  group.flags = static_cast<unsigned>(block.number("cg_flags"));
  group.data_bytes = static_cast<std::uint32_t>(block.number("cg_data_bytes"));
  group.invalidation_bytes = static_cast<std::uint32_t>(block.number("cg_inval_bytes"));
  are_blocks_enough_ = are_blocks_enough_ && !group.hasRemoteMaster();
  if (!group.holdsVariableLength()) {
    channels_.emplace(subject_, block, index);
  }
  if (is_in_data_group_) {
    data_groups_.back().groups.push_back(std::move(group));
  }
}

void RecordCheck::takeChannel(const BlockFields& block, std::uint32_t index) {
  const std::uint64_t type = block.number("cn_type");
  const RawType stored{static_cast<unsigned>(block.number("cn_data_type")), 0, 0};
  const bool is_virtual = type == Channel::virtual_master || type == Channel::virtual_data;
  channels_->take(block, index);
  are_blocks_enough_ = are_blocks_enough_ && type != Channel::variable_length;
  if (!is_virtual && block.link(CNBLOCK::cn_composition) == 0 && !stored.isKnown()) {
    subject_.report(Code::data_type_unknown, index,
                    "expected a known data type, found " + std::to_string(stored.data_type));
  }
}

/// Whether some of the data, or a list of it, was there before. What comes after that is not looked
/// at, so that however many groups share their data, each block is looked at once.
bool RecordCheck::isShared(DataLink link) {
  const FindingSink silent = [](const Finding& /*finding*/) {};
  DataLinks links(subject_.file, link, silent);
  std::uint64_t list = 0;
  for (auto part = links.next(); part; part = links.next()) {
    if (part->list != part->data && part->list != list) {
      if (seen_data_.contains(part->list)) {
        return true;
      }
      seen_data_.insert(part->list);
      list = part->list;
    }
    if (seen_data_.contains(part->data)) {
      return true;
    }
    seen_data_.insert(part->data);
  }
  return false;
}

void RecordCheck::checkShared(DataLink link, std::string_view link_name, std::uint32_t index) {
  if (isShared(link)) {
    subject_.report(Code::data_shared, index,
                    "expected " + std::string(link_name) +
                        " to lead to data of its own, found data that another link leads to");
  }
}

/// A record of a reduction has a record's data bytes three times: mean, least and greatest values.
void RecordCheck::checkReduction(const BlockFields& block, std::uint32_t index) {
  const DataLink link{block.offset(), block.link(SRBLOCK::sr_data)};
  checkShared(link, "sr_data", index);
  if (!is_in_data_group_) {
    return;
  }
  const ChannelGroup& group = data_groups_.back().groups.back();
  const std::uint64_t size =
      std::uint64_t{3} * group.data_bytes +
      (block.hasFlag("sr_flags", SRBLOCK::invalidation_bytes) ? group.invalidation_bytes : 0);
  const FindingSink silent = [](const Finding& /*finding*/) {};
  DataStream data(subject_.data_file, link, DataStream::Access::forward, silent);
  const std::string problem = countProblem(data.size(), block.number("sr_cycle_count"), size);
  if (!subject_.data_file.isUnfinished() && !problem.empty() && !data.isDamaged()) {
    subject_.report(Code::cycle_count_wrong, index, problem);
  }
}

/// Whether a data group states what was found out of its records before.
bool RecordCheck::isAsKnown(const DataGroup& data_group,
                            const std::vector<KnownRecords>& known) const {
  const auto found = std::find_if(known.begin(), known.end(), [&](const KnownRecords& each) {
    return each.data_group == data_group.offset;
  });
  if (found == known.end() ||
      !std::equal(data_group.groups.begin(), data_group.groups.end(), found->counts.begin(),
                  found->counts.end(), [](const ChannelGroup& group, std::uint64_t count) {
                    return group.cycles == count;
                  })) {
    return false;
  }
  const FindingSink silent = [](const Finding& /*finding*/) {};
  DataStream data(subject_.data_file, {data_group.offset, data_group.data},
                  DataStream::Access::forward, silent);
  return data.size() == found->bytes && !data.isDamaged();
}

void RecordCheck::checkRecords(const FindingSink& report, const std::vector<KnownRecords>& known) {
  if (!are_blocks_enough_) {
    examineTables(subject_.file, report);
    return;
  }
  for (const DataGroup& data_group : data_groups_) {
    if (isAsKnown(data_group, known)) {
      continue;
    }
    Records records(subject_.data_file, data_group, report);
    records.examine();
    if (!subject_.data_file.mayGoOnAfter(records.storedBytes())) {
      return;
    }
  }
}

}  // namespace mdf_tools
