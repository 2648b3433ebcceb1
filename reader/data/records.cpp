#include "records.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

#include "../bytes/input_file.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;
using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::uint64_t most_collected = std::uint64_t{1} << 24U;
constexpr std::uint64_t mark_distance = std::uint64_t{1} << 14U;

/// Values in signal data: each after its length in four bytes.
class SignalData : public SignalValues {
 public:
  SignalData(InputFile& file, std::uint64_t link, bool is_unfinished, const FindingSink& report)
      : data_(file, link, is_unfinished, DataStream::Access::scattered, report) {}

  std::optional<std::string_view> at(std::uint64_t offset) override {
    const std::string_view length_bytes = data_.at(offset, 4);
    if (length_bytes.size() < 4) {
      return std::nullopt;
    }
    const std::size_t length = hostSize(loadLe<std::uint32_t>(length_bytes.data()));
    const std::string_view value = data_.at(offset + 4, length);
    return value.size() < length ? std::nullopt : std::optional(value);
  }

  std::uint64_t size() override { return data_.size(); }

 private:
  DataStream data_;
};

/// The type of the first block with data that a link leads to; "" for none.
std::string firstTypeAt(InputFile& file, std::uint64_t link) {
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const auto first = DataLinks(file, link, silent).next();
  const auto block = first ? readRawBlock(file, first->data) : std::nullopt;
  return block ? originalType(file, *block) : "";
}

/// Whether the counts of a file's channel groups say how many records there are.
bool areCountsFinal(const Identification& id) {
  return !id.isUnfinished() || (id.standard_flags & Identification::cycle_counters_open) == 0;
}

}  // namespace

std::unique_ptr<SignalValues> signalDataAt(InputFile& file, std::uint64_t link, bool is_unfinished,
                                           const FindingSink& report) {
  return std::make_unique<SignalData>(file, link, is_unfinished, report);
}

/// Values that are records among others. A value's offset counts only the values of its group, each
/// with its length in four bytes.
class Records::ValueRecords : public SignalValues {
 public:
  ValueRecords(Records& records, const ChannelGroup& group)
      : group_(group),
        extent_(records.extents_[&group]),
        format_(records.format_),
        data_(records.file_, records.data_group_.data, records.identification_.isUnfinished(),
              DataStream::Access::scattered, records.report_) {}

  std::optional<std::string_view> at(std::uint64_t offset) override {
    if (offset >= extent_.length) {
      return std::nullopt;
    }
    startFor(offset);
    while (cursor_.offset <= offset) {
      const Record record = format_.at(data_, cursor_.position);
      if (record.group == nullptr) {
        return std::nullopt;
      }
      if (record.group == &group_) {
        if (cursor_.offset == offset) {
          return record.bytes;  // the cursor stays, since a value may be wanted again
        }
        cursor_.offset += 4 + record.bytes.size();
      }
      cursor_.position = record.next;
    }
    return std::nullopt;
  }

  std::uint64_t size() override { return extent_.length; }

 private:
  /// Goes to the last mark before a value, unless the cursor is between the two.
  void startFor(std::uint64_t offset) {
    const auto after = std::upper_bound(
        extent_.marks.begin(), extent_.marks.end(), offset,
        [](std::uint64_t wanted, const Mark& mark) { return wanted < mark.offset; });
    const Mark& mark = *(after - 1);  // the first mark is at offset 0
    if (cursor_.offset > offset || cursor_.position < mark.position) {
      cursor_ = mark;
    }
  }

  const ChannelGroup& group_;
  const Extent& extent_;
  const RecordFormat& format_;
  DataStream data_;
  Mark cursor_{0, 0};
};

Records::Records(InputFile& file, const Identification& identification, const DataGroup& data_group,
                 const FindingSink& report)
    : file_(file),
      identification_(identification),
      data_group_(data_group),
      report_(report),
      data_(file, data_group.data, identification.isUnfinished(), DataStream::Access::forward,
            report),
      format_(data_group, recordIdBytes(data_group, data_, areCountsFinal(identification), report)),
      first_type_(firstTypeAt(file, data_group.data)) {}

bool Records::isUnsorted() const { return data_group_.groups.size() > 1 && format_.idBytes() > 0; }

/// A writer begins with a count of 0, whatever it stores later.
bool Records::hasFinalCount(const ChannelGroup& group) const {
  return areCountsFinal(identification_) && (group.cycles > 0 || !identification_.isUnfinished());
}

void Records::forEach(const ChannelGroup& group, const RecordVisitor& visit) {
  if (isUnsorted()) {
    visitUnsorted(group, visit);
  } else if (!ownsAllRecords(group)) {
    if (group.cycles > 0) {
      report_({group.offset,
               "expected record ids to tell the records of several channel groups "
               "apart, found none"});
    }
  } else {
    visitSorted(group, visit);
  }
}

/// Whether no other group has records, as without record ids.
bool Records::ownsAllRecords(const ChannelGroup& group) const {
  const auto is_another = [&](const ChannelGroup& each) { return &each != &group; };
  const auto has_records = [&](const ChannelGroup& each) {
    return is_another(each) && each.cycles > 0;
  };
  const auto& groups = data_group_.groups;
  return group.cycles > 0 ? std::none_of(groups.begin(), groups.end(), has_records)
                          : std::none_of(groups.begin(), groups.end(), is_another);
}

/// How many records there may be, whatever the data holds. Where records have no bytes, only the
/// count says how many there are.
std::uint64_t Records::mostRecords(const ChannelGroup& group, std::uint64_t size) {
  constexpr std::uint64_t believable = std::uint64_t{1} << 20U;
  const bool is_counted = hasFinalCount(group) && group.cycles > 0;
  const std::uint64_t most = std::max(believable, file_.size());
  if (size > 0) {
    return is_counted ? group.cycles : std::numeric_limits<std::uint64_t>::max();
  }
  if (group.cycles > most) {
    report_({group.offset, "expected at most " + std::to_string(most) +
                               " records without a byte of data, found a count of " +
                               std::to_string(group.cycles)});
  }
  return std::min(group.cycles, most);
}

/// Since version 4.2 there is data without invalidation bytes.
bool Records::hasInvalidationApart(const ChannelGroup& group) const {
  return group.invalidation_bytes > 0 && first_type_ == "DV";
}

SortedRecords Records::sortedRecords(const ChannelGroup& group) {
  const std::uint64_t size =
      format_.idBytes() + (hasInvalidationApart(group) ? group.data_bytes : group.recordBytes());
  return {data_, mostRecords(group, size), size, format_.idBytes()};
}

void Records::visitSorted(const ChannelGroup& group, const RecordVisitor& visit) {
  SortedRecords records = sortedRecords(group);
  if (hasInvalidationApart(group) && group.data_bytes > 0) {
    records.join(std::make_unique<InvalidationData>(file_, data_group_.data, group,
                                                    identification_.isUnfinished(), report_));
  }
  std::uint64_t count = 0;
  for (auto record = records.at(0); record; record = records.at(count)) {
    if (!visit(*record)) {
      return;
    }
    ++count;
  }
  compareCount(group, count, count < records.most());
}

void Records::visitUnsorted(const ChannelGroup& group, const RecordVisitor& visit) {
  lookThrough();
  const std::uint64_t there = extents_[&group].count;
  const bool is_counted = hasFinalCount(group) && group.cycles > 0;
  const std::uint64_t most = is_counted ? std::min(group.cycles, there) : there;
  compareCount(group, there, there < group.cycles || !is_counted);
  if (most == 0) {
    return;
  }
  if (bytesOf(group) <= most_collected) {
    visitCollected(group, most, visit);
    return;
  }
  std::uint64_t count = 0;
  walk([&](const Record& record) {
    return record.group != &group || (visit(record.bytes) && ++count < most);
  });
}

/// Goes through unsorted data from the beginning, until the visitor ends it.
void Records::walk(const std::function<bool(const Record& record)>& visit) {
  std::uint64_t position = 0;
  for (Record record = format_.at(data_, position); record.group != nullptr && visit(record);
       record = format_.at(data_, position)) {
    position = record.next;
  }
}

std::uint64_t Records::bytesOf(const ChannelGroup& group) {
  return extents_[&group].count * group.recordBytes();
}

/// Collects the records of several small groups at once: there may be very many of them, too many
/// to go through the data for each.
void Records::visitCollected(const ChannelGroup& group, std::uint64_t count,
                             const RecordVisitor& visit) {
  if (collected_.find(&group) == collected_.end()) {
    collectFrom(group);
  }
  const std::string records = std::move(collected_[&group]);
  collected_.erase(&group);
  const auto size = static_cast<std::size_t>(group.recordBytes());
  std::string_view rest = records;
  for (std::uint64_t i = 0; i < count && size <= rest.size() && visit(rest.substr(0, size)); ++i) {
    rest.remove_prefix(size);
  }
}

void Records::collectFrom(const ChannelGroup& first) {
  collected_.clear();
  std::uint64_t bytes = 0;
  std::uint64_t missing = 0;
  bool is_reached = false;
  for (const ChannelGroup& group : data_group_.groups) {
    is_reached = is_reached || &group == &first;
    if (!is_reached || group.holdsVariableLength()) {
      continue;
    }
    bytes += bytesOf(group);
    if (bytes > most_collected) {
      break;
    }
    if (extents_[&group].count > 0) {
      missing += extents_[&group].count;
      collected_[&group].reserve(static_cast<std::size_t>(bytesOf(group)));
    }
  }
  walk([&](const Record& record) {
    const auto wanted = collected_.find(record.group);
    if (wanted != collected_.end()) {
      wanted->second += record.bytes;
      --missing;
    }
    return missing > 0;
  });
}

void Records::lookThrough() {
  if (is_looked_through_) {
    return;
  }
  is_looked_through_ = true;
  std::uint64_t position = 0;
  walk([&](const Record& record) {
    note(record, position);
    position = record.next;
    return true;
  });
  const Record record = format_.at(data_, position);
  if (!record.is_end) {
    report_({data_group_.offset, "expected the record id of a channel group at byte " +
                                     std::to_string(position) + " of the data, found " +
                                     std::to_string(record.unknown_id)});
  }
}

void Records::note(const Record& record, std::uint64_t position) {
  Extent& extent = extents_[record.group];
  ++extent.count;
  if (record.group->holdsVariableLength()) {
    if (extent.marks.empty() || position - extent.marks.back().position >= mark_distance) {
      extent.marks.push_back({extent.length, position});
    }
    extent.length += 4 + record.bytes.size();
  }
}

/// Reports a count that does not match the data.
void Records::compareCount(const ChannelGroup& group, std::uint64_t found, bool is_end) {
  if (is_end && hasFinalCount(group) && found != group.cycles) {
    report_({group.offset, "expected as many records as the cycle count " +
                               std::to_string(group.cycles) + " says, found " +
                               std::to_string(found)});
  }
}

std::unique_ptr<SignalValues> Records::valuesIn(const ChannelGroup& group) {
  lookThrough();
  return std::make_unique<ValueRecords>(*this, group);
}

}  // namespace mdf_reader
