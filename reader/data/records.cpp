#include "records.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "../bytes/input_file.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;
using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::uint64_t mark_distance = std::uint64_t{1} << 14U;

/// Values in signal data: each after its length in four bytes.
class SignalData : public SignalValues {
 public:
  SignalData(DataFile& file, DataLink link, const FindingSink& report)
      : data_(file, link, DataStream::Access::scattered, report) {}

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

const FindingSink silent = [](const Finding& /*finding*/) {};

/// The type of the first block with data that a link leads to; "" for none.
std::string firstTypeAt(InputFile& file, DataLink link) {
  const auto first = DataLinks(file, link, silent).next();
  const auto block = first ? readRawBlock(file, first->data) : std::nullopt;
  return block ? originalType(file, *block) : "";
}

std::uint64_t multiplied(std::uint64_t bytes, std::uint64_t count) {
  return bytes > 0 && count > UINT64_MAX / bytes ? UINT64_MAX : bytes * count;
}

}  // namespace

CopyLimits CopyLimits::forFile(std::uint64_t size) {
  constexpr std::uint64_t times = 16;
  constexpr std::uint64_t always = std::uint64_t{1} << 30U;
  CopyLimits limits{};
  limits.in_file = WorkBudget(size, times, always).left();
  return limits;
}

std::string countProblem(std::uint64_t data_bytes, std::uint64_t records,
                         std::uint64_t record_bytes) {
  const bool is_right =
      record_bytes == 0 ? data_bytes == 0
                        : data_bytes % record_bytes == 0 && data_bytes / record_bytes == records;
  if (is_right) {
    return "";
  }
  const std::uint64_t whole = record_bytes == 0 ? 0 : data_bytes / record_bytes;
  const std::uint64_t read = (records == 0 ? whole : std::min(whole, records)) * record_bytes;
  return "expected data for " + std::to_string(records) + " records of " +
         std::to_string(record_bytes) + " bytes, found " + std::to_string(data_bytes) + " bytes" +
         notRead(data_bytes - read);
}

std::unique_ptr<SignalValues> signalDataAt(DataFile& file, DataLink link,
                                           const FindingSink& report) {
  return std::make_unique<SignalData>(file, link, report);
}

/// Values that are records among others. A value's offset counts only the values of its group, each
/// with its length in four bytes.
class Records::ValueRecords : public SignalValues {
 public:
  ValueRecords(Records& records, const ChannelGroup& group)
      : group_(group),
        extent_(records.extentOf(group)),
        format_(records.format_),
        data_(records.file_, records.link(), DataStream::Access::scattered, records.report_) {}

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

class Records::SortedCursor : public RecordCursor {
 public:
  explicit SortedCursor(SortedRecords records) : records_(std::move(records)) {}

  RecordSpan next(std::size_t most) override {
    const RecordSpan span = records_.from(number_, most);
    number_ += span.count;
    return span;
  }
  std::optional<std::string_view> at(std::uint64_t number) override {
    return records_.isInAnyOrder() ? records_.at(number) : std::nullopt;
  }
  bool isZipped() override { return records_.isZipped(); }
  std::uint64_t rest() override { return records_.count() - std::min(records_.count(), number_); }
  void skip(std::uint64_t count) override { number_ += std::min(count, rest()); }

 private:
  SortedRecords records_;
  std::uint64_t number_ = 0;
};

/// Records among those of other groups.
class Records::ScatteredCursor : public RecordCursor {
 public:
  ScatteredCursor(Records& records, const ChannelGroup& group, std::uint64_t count)
      : records_(records), group_(group), count_(count) {}

  RecordSpan next(std::size_t most) override {
    constexpr std::size_t most_bytes = std::size_t{1} << 18U;
    const std::size_t size = hostSize(group_.recordBytes());
    most = std::min(most, std::max<std::size_t>(1, most_bytes / std::max<std::size_t>(1, size)));
    RecordSpan span{nullptr, size, size, 0, number_, 1};
    bytes_.clear();
    while (span.count < most && number_ < count_) {
      const Record record = records_.format_.at(records_.data_, position_);
      if (record.group == nullptr) {
        break;
      }
      position_ = record.next;
      if (record.group == &group_) {
        bytes_ += record.bytes;
        ++span.count;
        ++number_;
      }
    }
    span.bytes = bytes_.data();
    return span;
  }
  std::uint64_t rest() override { return count_ - number_; }
  void skip(std::uint64_t count) override {
    for (std::size_t skipped = 1; count > 0 && skipped > 0; count -= skipped) {
      skipped = next(hostSize(count)).count;
    }
  }

 private:
  Records& records_;
  const ChannelGroup& group_;
  std::uint64_t count_;
  std::uint64_t number_ = 0;
  std::uint64_t position_ = 0;
  std::string bytes_;
};

Records::Records(DataFile& file, const DataGroup& data_group, const FindingSink& report)
    : file_(file),
      data_group_(data_group),
      report_(report),
      unzipping_report_([&report](const Finding& finding) {
        if (finding.code == Code::zip_broken || finding.code == Code::zip_original_length_wrong) {
          report(finding);
        }
      }),
      data_(file, link(), DataStream::Access::forward, report),
      format_(data_group, recordIdBytes(data_group, data_, file.areCountsFinal())),
      first_type_(firstTypeAt(file.bytes(), link())),
      extents_(data_group.groups.size()) {}

/// Whether one has to go through the records to tell where each begins.
bool Records::areFramed() const {
  const auto& groups = data_group_.groups;
  return groups.size() > 1 ? format_.idBytes() > 0
                           : !groups.empty() && groups.front().holdsVariableLength();
}

void Records::examine() {
  if (std::exchange(is_examined_, true)) {
    return;
  }
  const auto& groups = data_group_.groups;
  const auto owner = std::find_if(groups.begin(), groups.end(),
                                  [&](const ChannelGroup& group) { return ownsAllRecords(group); });
  const bool can_read = areFramed() || owner != groups.end();
  if (recordIdBytesFor(data_group_.record_id_code).empty()) {
    report_({Code::record_id_size_wrong, data_group_.offset,
             "expected record ids of 0, 1, 2, 4 or 8 bytes, found dg_rec_id_size " +
                 std::to_string(data_group_.record_id_code) +
                 (can_read ? "" : notRead(data_.size()))});
  } else if (!can_read) {
    examineUnowned();
  }
  whole_bytes_ = data_.size();
  if (areFramed()) {
    examineFramed();
  } else if (can_read) {
    examineSorted(*owner);
  }
}

/// Of records side by side the number of bytes tells how many there are.
void Records::examineSorted(const ChannelGroup& group) {
  const std::uint64_t size = storedSize(group);
  const std::uint64_t there = data_.size();
  const std::uint64_t most = mostRecords(group, size);
  const std::string problem = countProblem(there, group.cycles, size);
  if (!file_.isCountFinal(group)) {
    const std::uint64_t rest = size == 0 ? there : there % size;
    if (rest > 0) {
      whole_bytes_ = there - rest;
      reportRest({Record::torn, nullptr, {}, 0, size}, there - rest);
    }
  } else if (!problem.empty() && !data_.isDamaged()) {
    report_({Code::cycle_count_wrong, group.offset, problem});
  } else if (size == 0 && group.cycles > most) {
    report_({Code::cycle_count_wrong, group.offset,
             "expected at most " + std::to_string(most) +
                 " records without a byte of data, found a count of " +
                 std::to_string(group.cycles)});
  }
  const std::uint64_t count = size == 0 ? 0 : std::min(there / size, most);
  if (count > 0 && hasInvalidationApart(group) && group.data_bytes > 0) {
    InvalidationData(file_, link(), group, report_).examine(count);
  }
}

/// Without record ids the records of several groups cannot be told apart.
void Records::examineUnowned() {
  const std::uint64_t there = data_.size();
  if (there > 0 && !data_group_.groups.empty()) {
    report_({Code::record_id_size_wrong, data_group_.offset,
             "expected record ids for " + std::to_string(data_group_.groups.size()) +
                 " channel groups, found dg_rec_id_size 0" + notRead(there)});
    return;
  }
  std::for_each(data_group_.groups.begin(), data_group_.groups.end(),
                [&](const ChannelGroup& group) { compareCount(group); });
}

void Records::examineFramed() {
  const bool can_compare = haveIdsOfTheirOwn();
  std::uint64_t position = 0;
  const Record last = lookThrough(position);
  whole_bytes_ = position;
  if (last.kind != Record::end) {
    reportRest(last, position);
  } else if (can_compare) {
    for (const ChannelGroup& group : data_group_.groups) {
      compareCount(group);
    }
  }
}

bool Records::haveIdsOfTheirOwn() {
  bool are_different = true;
  std::unordered_map<std::uint64_t, const ChannelGroup*> groups;
  for (const ChannelGroup& group : data_group_.groups) {
    const auto [other, is_new] = groups.emplace(group.record_id, &group);
    if (!is_new) {
      are_different = false;
      report_({Code::record_id_twice, group.offset,
               "expected a record id of its own, found " + std::to_string(group.record_id) +
                   " as of ##CG at " + decimalAndHex(other->second->offset)});
    }
  }
  return are_different;
}

/// Reports the bytes from a position on, where there is no whole record.
void Records::reportRest(const Record& record, std::uint64_t position) {
  const std::uint64_t rest = data_.size() - position;
  const std::string end = " up to " + std::to_string(data_.placeOf(data_.size()));
  const std::string number = std::to_string(record.number);
  const bool is_unfinished = file_.isUnfinished();
  Finding finding{Code::bytes_not_read, data_.placeOf(position), {}};
  if (record.kind == Record::past_end) {
    finding.code = Code::record_past_end;
    finding.sentence = "expected a record of variable length" + end + ", found one that states " +
                       number + " bytes";
  } else if (record.kind == Record::unknown_id) {
    finding.code = is_unfinished ? Code::bytes_not_read : Code::record_id_unknown;
    finding.sentence =
        "expected records" + end + ", found record id " + number + " of no channel group";
  } else {
    finding.code = is_unfinished ? Code::bytes_not_read : Code::record_cut_off;
    finding.sentence =
        "expected " + number + " bytes of a record" + end + ", found " + std::to_string(rest);
  }
  finding.sentence += notRead(rest);
  report_(finding);
}

/// Reports a count that is not that of the records which were gone through.
void Records::compareCount(const ChannelGroup& group) {
  const std::uint64_t found = extentOf(group).count;
  if (!file_.isCountFinal(group) || found == group.cycles) {
    return;
  }
  const std::uint64_t beyond = isLimited(group) && found > group.cycles ? found - group.cycles : 0;
  report_({Code::cycle_count_wrong, group.offset,
           "expected " + std::to_string(group.cycles) + " records with id " +
               std::to_string(group.record_id) + ", found " + std::to_string(found) +
               (group.holdsVariableLength() ? "" : notRead(beyond * storedSize(group)))});
}

std::optional<std::uint64_t> Records::countOf(const ChannelGroup& group) {
  examine();
  if (file_.isCountFinal(group)) {
    return group.cycles;
  }
  if (areFramed()) {
    return extentOf(group).count;
  }
  const std::uint64_t size = storedSize(group);
  if (!ownsAllRecords(group) || (size == 0 && data_.size() > 0)) {
    return std::nullopt;
  }
  return size == 0 ? mostRecords(group, size) : data_.size() / size;
}

std::unique_ptr<RecordCursor> Records::read(const ChannelGroup& group) {
  examine();
  if (areFramed()) {
    return readUnsorted(group);
  }
  if (ownsAllRecords(group)) {
    return readSorted(group);
  }
  return std::make_unique<ScatteredCursor>(*this, group, 0);
}

void Records::forEach(const ChannelGroup& group, const RecordVisitor& visit) {
  const auto cursor = read(group);
  for (RecordSpan span = cursor->next(SIZE_MAX); span.count > 0; span = cursor->next(SIZE_MAX)) {
    for (std::size_t i = 0; i < span.count; ++i) {
      if (!visit(span.at(i))) {
        return;
      }
    }
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
std::uint64_t Records::mostRecords(const ChannelGroup& group, std::uint64_t size) const {
  constexpr std::uint64_t believable = std::uint64_t{1} << 20U;
  if (size > 0) {
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() / size;
    return isLimited(group) ? std::min(group.cycles, most) : most;
  }
  return std::min(group.cycles, std::max(believable, file_.bytes().size()));
}

/// Whether records beyond the count are left out. A count of 0 is what writers begin with.
bool Records::isLimited(const ChannelGroup& group) const {
  return file_.isCountFinal(group) && group.cycles > 0;
}

/// Since version 4.2 there is data without invalidation bytes.
bool Records::hasInvalidationApart(const ChannelGroup& group) const {
  return group.invalidation_bytes > 0 && first_type_ == "DV";
}

/// Bytes of a record in the data.
std::uint64_t Records::storedSize(const ChannelGroup& group) const {
  return format_.idBytes() + (hasInvalidationApart(group) ? group.data_bytes : group.recordBytes());
}

SortedRecords Records::sortedRecords(const ChannelGroup& group) {
  const std::uint64_t size = storedSize(group);
  return {data_, mostRecords(group, size), size, format_.idBytes()};
}

std::unique_ptr<RecordCursor> Records::readSorted(const ChannelGroup& group) {
  SortedRecords records = sortedRecords(group);
  if (hasInvalidationApart(group) && group.data_bytes > 0) {
    records.join(std::make_unique<InvalidationData>(file_, link(), group, unzipping_report_));
  }
  return std::make_unique<SortedCursor>(std::move(records));
}

void Records::visitSortedEnds(const ChannelGroup& group, const EndVisitor& visit) {
  const auto count = file_.isCountFinal(group) ? group.cycles : countOf(group).value_or(0);
  SortedRecords records = sortedRecords(group);
  for (const std::uint64_t number : {std::uint64_t{0}, count - 1}) {
    const auto record = count == 0 ? std::nullopt : records.at(number);
    if (record) {
      visit(group, {number, *record});
    }
  }
}

/// The records are read in the order in which they stand, so that no zipped block is read twice.
void Records::forEachEnd(const std::function<bool(const ChannelGroup&)>& is_wanted,
                         const EndVisitor& visit) {
  struct End {
    std::uint64_t position;
    std::uint64_t number;
    const ChannelGroup* group;
  };
  std::vector<End> ends;
  for (const ChannelGroup& group : data_group_.groups) {
    if (!is_wanted(group)) {
      continue;
    }
    if (areSorted(group)) {
      visitSortedEnds(group, visit);
    } else if (areFramed() && countOf(group) == extentOf(group).count) {
      const Extent& extent = extentOf(group);
      ends.push_back({extent.first, 0, &group});
      ends.push_back({extent.last, extent.count - 1, &group});
    }
  }
  std::sort(ends.begin(), ends.end(),
            [](const End& left, const End& right) { return left.position < right.position; });
  for (const End& end : ends) {
    visit(*end.group, {end.number, format_.at(data_, end.position).bytes});
  }
}

std::unique_ptr<RecordCursor> Records::readUnsorted(const ChannelGroup& group) {
  const std::uint64_t there = extentOf(group).count;
  const std::uint64_t most = isLimited(group) ? std::min(group.cycles, there) : there;
  if (gathered_ && gathered_->has(indexOf(group))) {
    return gathered_->read(indexOf(group), most);
  }
  if (mayCopyFor(group)) {
    copyExpected(group);
  }
  const auto part = parts_.find(&group);
  if (part == parts_.end()) {
    return std::make_unique<ScatteredCursor>(*this, group, most);
  }
  return copy_->read(part->second, most);
}

/// Goes through unsorted data from the beginning, until the visitor ends it: through the records
/// that stand in memory together, and those that go on elsewhere.
template <class Visit>
void Records::walk(const Visit& visit) {
  std::uint64_t position = 0;
  std::string_view bytes;
  while (true) {
    Record record = format_.wholeIn(bytes, position);
    const bool is_in_memory = record.group != nullptr;
    if (!is_in_memory) {
      record = format_.at(data_, position);
    }
    if (record.group == nullptr || !visit(record)) {
      return;
    }
    bytes = is_in_memory ? bytes.substr(static_cast<std::size_t>(record.next - position))
                         : data_.from(record.next, 1, SIZE_MAX);
    position = record.next;
  }
}

/// Gathers the records of the groups that will be read while they are looked through, for there may
/// be very many groups, too many to go through the data for each. Where they state that they are
/// too long, that is not tried.
void Records::gatherExpected() {
  if (expected_.size() < 2) {
    return;
  }
  WorkBudget room(limits_.in_memory);
  gathered_ = std::make_unique<GatheredRecords>(extents_.size(), limits_.in_memory);
  for (const ChannelGroup* const group : expected_) {
    gathered_->want(indexOf(*group), hostSize(group->recordBytes()));
    if (!room.spend(multiplied(group->recordBytes(), group->cycles))) {
      gathered_.reset();
      return;
    }
  }
}

/// Whether a copy is worth its while. One at a time takes room on the disk.
bool Records::mayCopyFor(const ChannelGroup& group) const {
  return copy_.use_count() < 2 && parts_.find(&group) == parts_.end() &&
         std::find(expected_.begin(), expected_.end(), &group) != expected_.end();
}

/// Copies the records of a group and of as many others that will be read as there is room for.
void Records::copyExpected(const ChannelGroup& first) {
  copy_.reset();
  parts_.clear();
  std::vector<SortedCopy::Part> parts;
  std::uint64_t missing = 0;
  WorkBudget room(limits_.in_file);
  const auto take = [&](const ChannelGroup* group) {
    const std::uint64_t count = extentOf(*group).count;
    const bool fits = room.take(multiplied(group->recordBytes(), count));
    if (fits && count > 0) {
      parts_.emplace(group, parts.size());
      parts.push_back({hostSize(group->recordBytes()), count});
      missing += count;
    }
    return fits;
  };
  take(&first);
  const auto is_taken = [&](const ChannelGroup* group) { return group == &first || take(group); };
  expected_.erase(std::remove_if(expected_.begin(), expected_.end(), is_taken), expected_.end());
  if (parts.size() > 1) {
    copy_ = std::make_shared<SortedCopy>(parts, [this](std::uint64_t bytes) {
      report_({Code::bytes_not_read, data_group_.offset,
               "expected a file with sorted records as it was written" + notRead(bytes)});
    });
    copyRecords(missing);
  }
  if (!copy_ || !copy_->finish()) {
    parts_.clear();
    copy_.reset();  // what it has taken of a full disk is given back
  }
}

void Records::copyRecords(std::uint64_t missing) {
  std::vector<std::optional<std::size_t>> part_of(data_group_.groups.size());
  for (const auto& [group, part] : parts_) {
    part_of[indexOf(*group)] = part;
  }
  walk([&](const Record& record) {
    const std::optional<std::size_t> part = part_of[record.index];
    if (part) {
      copy_->add(*part, record.bytes);
      --missing;
    }
    return missing > 0;
  });
}

/// Returns what stands after the last whole record.
Record Records::lookThrough(std::uint64_t& position) {
  gatherExpected();
  walk([&](const Record& record) {
    extents_[record.index].add(record, position);
    if (gathered_ && !gathered_->add(record.index, record.bytes)) {
      gathered_.reset();
    }
    if (visit_ != nullptr) {
      (*visit_)(record);
    }
    position = record.next;
    return true;
  });
  return format_.at(data_, position);
}

void Records::Extent::addLength(std::uint64_t bytes, std::uint64_t position) {
  if (marks.empty() || position - marks.back().position >= mark_distance) {
    marks.push_back({length, position});
  }
  length += 4 + bytes;
}

std::unique_ptr<SignalValues> Records::valuesIn(const ChannelGroup& group) {
  examine();
  return std::make_unique<ValueRecords>(*this, group);
}

}  // namespace mdf_reader
