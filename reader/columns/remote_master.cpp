#include "remote_master.h"

#include <algorithm>
#include <utility>

#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

constexpr const char* used_up =
    "expected remote masters that are quick to read, found long records to be read again and "
    "again";

constexpr std::uint64_t always = std::uint64_t{1} << 28U;
constexpr std::uint64_t times = 256;

}  // namespace

std::optional<std::string_view> MasterRecords::at(std::uint64_t number) {
  constexpr std::uint64_t is_short = 64;  // as much as printing a sample costs anyway
  if (has_ended_) {
    return std::nullopt;
  }
  const auto record = records_.at(number);
  if (!record) {
    endAt(Code::remote_master_missing,
          "expected a sample of the remote master at " + decimalAndHex(group_.master_group) +
              " for each record, found none for record " + std::to_string(number));
    return std::nullopt;
  }
  if (number >= charged_) {
    charged_ = number + 1;
    budget_.spend(record->size() - std::min<std::uint64_t>(record->size(), is_short));
  }
  if (budget_.isOverspent()) {
    endAt(Code::work_limited, used_up);
    return std::nullopt;
  }
  return record;
}

RecordSpan MasterRecords::copy(const RecordSpan& records, std::string& bytes) {
  bytes.clear();
  RecordSpan copies{nullptr, 0, 0, 0, records.first, records.stride};
  for (; copies.count < records.count; ++copies.count) {
    const auto record = at(records.number(copies.count));
    if (!record) {
      break;
    }
    bytes += *record;
    copies.size = copies.step = record->size();
  }
  copies.bytes = bytes.data();
  return copies;
}

void MasterRecords::endAt(Code code, const std::string& sentence) {
  report_({code, group_.offset, sentence});
  has_ended_ = true;
}

RemoteMasters::RemoteMasters(DataFile& file, const Description& description,
                             const FindingSink& report)
    : file_(file),
      description_(description),
      report_(report),
      silent_([](const Finding& /*finding*/) {}),
      budget_(file.bytes().size(), times, always) {}

const RemoteMaster* RemoteMasters::of(const ChannelGroup& group) {
  if (!group.hasRemoteMaster() || group.masterChannel() != nullptr) {
    return nullptr;
  }
  const std::string expected =
      "expected the remote master in a channel group at " + decimalAndHex(group.master_group);
  RemoteMaster* master = masterAt(group.master_group);
  if (master == nullptr) {
    report_({Code::remote_master_missing, group.offset, expected + ", found none of the file"});
  } else if (master->plan.channel == nullptr) {
    report_({Code::remote_master_missing, group.offset,
             expected + ", found one without a master channel"});
  } else if (budget_.isOverspent()) {
    report_({Code::work_limited, group.offset, used_up});
  } else if (!areSorted(*master)) {
    report_({Code::remote_master_missing, group.offset,
             expected + " with its records side by side, found them unsorted"});
  } else {
    return master;
  }
  return nullptr;
}

/// The group at an offset and its master; null where there is no group.
RemoteMaster* RemoteMasters::masterAt(std::uint64_t group_offset) {
  if (masters_.empty()) {
    listGroups();
  }
  const auto found = masters_.find(group_offset);
  if (found == masters_.end()) {
    return nullptr;
  }
  RemoteMaster& master = found->second;
  if (!master.is_looked_for) {
    master.is_looked_for = true;
    const Channel* channel = master.group->masterChannel();
    for (ColumnPlan& plan : columnsOf(*master.group, silent_)) {
      if (plan.channel == channel) {
        master.plan = std::move(plan);
        break;
      }
    }
  }
  return &master;
}

bool RemoteMasters::areSorted(RemoteMaster& master) {
  if (!master.are_sorted) {
    master.are_sorted = recordsOf(*master.data_group)->areSorted(*master.group);
  }
  return *master.are_sorted;
}

void RemoteMasters::listGroups() {
  for (const DataGroup& data_group : description_.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      masters_.emplace(group.offset, RemoteMaster{&data_group, &group, {}, false, {}});
    }
  }
}

/// Many groups may have the same master: what its data has shown is kept for the next one.
const std::shared_ptr<Records>& RemoteMasters::recordsOf(const DataGroup& data_group) {
  if (data_group_ != &data_group) {
    constexpr std::uint64_t for_looking_again = 65536;
    budget_.spend(for_looking_again + (records_ ? records_->storedBytes() : 0));
    records_ = std::make_shared<Records>(file_, data_group, silent_);
    data_group_ = &data_group;
  }
  return records_;
}

std::unique_ptr<MasterRecords> RemoteMasters::recordsFor(const ChannelGroup& group,
                                                         const RemoteMaster& master) {
  const auto& records = recordsOf(*master.data_group);
  return std::make_unique<MasterRecords>(records, records->sortedRecords(*master.group), group,
                                         budget_, report_);
}

}  // namespace mdf_reader
