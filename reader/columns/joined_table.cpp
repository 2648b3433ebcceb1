#include "joined_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "../model/group_choice.h"
#include "../values/text_encoding.h"
#include "unique_names.h"

namespace mdf_reader {

namespace {

constexpr std::size_t most_bytes = std::size_t{1} << 23U;  // of a batch
constexpr std::size_t most_listed = 10;                    // channel groups in a sentence
constexpr unsigned is_time = 1;                            // a synchronization type

/// "4", or "4.1" for an element of an array.
std::string numberOf(const ChannelGroup& group) {
  return std::to_string(group.index) + (group.element ? '.' + std::to_string(*group.element) : "");
}

/// "4 "engine"".
std::string titleOf(const ChannelGroup& group) {
  return numberOf(group) + " \"" + fromUtf8(group.shownName().substr(0, 1024)) + '"';
}

/// Whether a name can stand in front of those of channels.
bool isName(std::string_view name) {
  constexpr std::size_t most = 256;
  return !name.empty() && name.size() <= most;
}

/// The first ones of a list, and how many more there are.
class Listed {
 public:
  std::size_t count() const { return count_; }

  void add(const std::string& item) {
    if (++count_ <= most_listed) {
      text_ += (count_ == 1 ? "" : ", ") + item;
    }
  }

  std::string text() const {
    return count_ <= most_listed ? text_
                                 : text_ + " and " + std::to_string(count_ - most_listed) + " more";
  }

 private:
  std::size_t count_ = 0;
  std::string text_;
};

bool hasAxis(const TableHead& head) {
  return head.has_master && isNumber(head.columns.front().type);
}

/// What its master channel counts, and in which unit, such as "time in s".
std::string axisOf(const TableHead& head) {
  constexpr std::array<const char*, 5> kinds = {"nothing", "time", "angle", "distance", "index"};
  const ColumnHead& master = head.columns.front();
  const unsigned kind = master.channel->sync_type;
  const std::string unit = kind == is_time && master.unit.empty() ? "s" : master.unit;
  return (kind < kinds.size() ? kinds[kind] : "type " + std::to_string(kind)) +
         (unit.empty() ? "" : " in " + unit);
}

/// How many decimal places a number has; nothing for many.
std::optional<int> decimalsOf(double number) {
  std::array<char, 64> digits;
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::fixed);
  const char* const point = std::find(digits.data(), end.ptr, '.');
  const auto decimals = static_cast<int>(point == end.ptr ? 0 : end.ptr - point - 1);
  return end.ec == std::errc() && decimals <= 12 ? std::optional(decimals) : std::nullopt;
}

}  // namespace

JoinedTable::JoinedTable(Tables& tables, const Query& query, const TimeBase& base,
                         const NoteSink& note)
    : tables_(tables), query_(query), base_(base), note_(note), row_(query.skip) {
  const ChannelGroup* const group = base_.rate ? nullptr : chooseGroup();
  if (!problem_.empty()) {
    return;
  }
  chooseTracks(tables_.all(group), group);
  if (problem_.empty()) {
    findStart();
    makeHead();
    makeBatch();
  }
}

/// The only group that is meant; null, and a problem, where there is none or another one.
const ChannelGroup* JoinedTable::chooseGroup() {
  const ChannelGroup* chosen = nullptr;
  Listed found;
  for (const DataGroup& data_group : tables_.dataGroups()) {
    for (const ChannelGroup& group : data_group.groups) {
      if (!group.holdsVariableLength() && isChosen(group, base_.group)) {
        chosen = &group;
        found.add(titleOf(group));
      }
    }
  }
  if (found.count() == 0) {
    problem_ =
        "expected one channel group for the rows, found none that matches \"" + base_.group + '"';
  } else if (found.count() > 1) {
    problem_ = "expected one channel group for the rows, found " + std::to_string(found.count()) +
               " that match \"" + base_.group + "\": " + found.text();
  }
  return chosen;
}

/// The tables whose masters count the same as that of the rows.
void JoinedTable::chooseTracks(std::vector<std::unique_ptr<Table>> tables,
                               const ChannelGroup* base) {
  const auto rows = std::find_if(tables.begin(), tables.end(),
                                 [&](const auto& table) { return &table->group() == base; });
  if (base != nullptr && (rows == tables.end() || !hasAxis((*rows)->head()))) {
    problem_ = "expected a master channel of numbers for the rows, found none in channel group " +
               titleOf(*base);
    return;
  }
  const std::string axis = base == nullptr ? "time in s" : axisOf((*rows)->head());
  Listed left_out;
  std::size_t rows_at = tables.size();
  for (std::unique_ptr<Table>& table : tables) {
    const TableHead& head = table->head();
    const bool is_base = head.group == base;
    if (!hasAxis(head) || axisOf(head) != axis) {
      left_out.add(numberOf(*head.group));
    } else if (is_base || head.columns.size() > 1) {
      rows_at = is_base ? tracks_.size() : rows_at;
      tracks_.emplace_back(std::move(table), base_.between);
    }
  }
  rows_ = rows_at < tracks_.size() ? &tracks_[rows_at] : nullptr;
  if (left_out.count() > 0) {
    note_((left_out.count() == 1
               ? "channel group " + left_out.text() + " is left out: it has"
               : "channel groups " + left_out.text() + " are left out: they have") +
          " no master channel of " + axis);
  }
  if (tracks_.empty()) {
    problem_ = "expected channels over " + axis + ", found none";
  }
}

/// Where a rate has its first row: at the earliest sample that is wanted.
void JoinedTable::findStart() {
  std::optional<double> start;
  for (const SampleTrack& track : tracks_) {
    const auto time = track.nextTime();
    start = time && !(start && *start <= *time) ? time : start;
  }
  start_ = std::max(start.value_or(0), query_.from.value_or(start.value_or(0)));
}

/// The column in front.
ColumnHead JoinedTable::timeHead() const {
  ColumnHead time = (rows_ == nullptr ? tracks_.front() : *rows_).head().columns.front();
  if (rows_ == nullptr) {
    const auto places = base_.rate->decimals();
    const auto of_start = decimalsOf(start_);
    time.type = ColumnType::float64;
    time.decimals = places && of_start ? std::optional(std::max(*places, *of_start)) : std::nullopt;
  }
  return time;
}

/// A name that several channels have gets that of its group in front.
void JoinedTable::makeHead() {
  TableHead head;
  head.group = rows_ == nullptr ? nullptr : rows_->head().group;
  head.has_master = true;
  head.columns.push_back(timeHead());
  decimals_ = Decimals(head.columns.front().decimals);
  std::unordered_map<std::string, std::size_t> counts = {{head.columns.front().name, 1}};
  std::unordered_map<std::string_view, std::size_t> groups;
  for (const SampleTrack& track : tracks_) {
    ++groups[track.head().group->shownName()];
    for (const ColumnHead& column : track.columns()) {
      ++counts[column.name];
    }
  }
  UniqueNames names;
  names.unique(head.columns.front().name);
  for (const SampleTrack& track : tracks_) {
    const ChannelGroup& group = *track.head().group;
    const bool is_named = isName(group.shownName()) && groups[group.shownName()] == 1;
    const std::string prefix = (is_named ? fromUtf8(group.shownName()) : numberOf(group)) + '.';
    for (ColumnHead& column : track.columns()) {
      column.name = names.unique((counts[column.name] > 1 ? prefix : "") + column.name);
      head.columns.push_back(std::move(column));
    }
  }
  head_ = std::make_shared<const TableHead>(std::move(head));
}

void JoinedTable::makeBatch() {
  batch_ = std::make_unique<Batch>(head_);
  std::size_t row_bytes = tracks_.size() * SampleTrack::row_bytes;
  ColumnData* to = batch_->columns_.data();
  ColumnData* const master = to++;
  for (SampleTrack& track : tracks_) {
    track.writeTo(to, &track == rows_ ? master : nullptr);
    to += track.head().columns.size() - 1;
  }
  for (const ColumnHead& column : head_->columns) {
    row_bytes += widthOf(column.type);
  }
  most_rows_ = std::clamp<std::size_t>(most_bytes / row_bytes, 1, query_.batch_rows);
}

const Batch* JoinedTable::next() {
  batch_->first_ += batch_->rows_;
  batch_->clear();
  std::size_t bytes = 0;
  while (batch_->rows_ < most_rows_ && bytes < most_bytes && goToNextRow()) {
    bytes += addRow();
    ++batch_->rows_;
  }
  for (SampleTrack& track : tracks_) {
    track.write();
  }
  return batch_->rows_ > 0 ? batch_.get() : nullptr;
}

/// False after the last row.
bool JoinedTable::goToNextRow() {
  if (has_ended_) {
    return false;
  }
  has_ended_ = rows_ == nullptr ? !goToNextTime() : !goToNextSample();
  if (has_ended_) {
    for (const SampleTrack& track : tracks_) {
      track.noteLeftOut(note_);
    }
  }
  return !has_ended_;
}

bool JoinedTable::goToNextSample() {
  do {
    if (!rows_->goOn()) {
      return false;
    }
    time_ = rows_->time();
  } while (query_.from && time_ < *query_.from);
  if (query_.to && time_ > *query_.to) {
    return false;
  }
  for (SampleTrack& track : tracks_) {
    if (&track != rows_) {
      track.goTo(time_);
    }
  }
  return true;
}

bool JoinedTable::goToNextTime() {
  if (query_.first && row_ - query_.skip >= *query_.first) {
    return false;
  }
  time_ = decimals_.nearest(start_ + base_.rate->secondsTo(row_));
  row_ += std::min(query_.stride, UINT64_MAX - row_);
  bool is_reached = false;
  for (SampleTrack& track : tracks_) {
    track.goTo(time_);
    is_reached = is_reached || track.reaches(time_);
  }
  return is_reached && !(query_.to && time_ > *query_.to);
}

/// Returns the bytes of its texts.
std::size_t JoinedTable::addRow() {
  if (rows_ == nullptr) {
    *batch_->columns_.front().extend<double>(1) = time_;
  }
  std::size_t bytes = 0;
  for (SampleTrack& track : tracks_) {
    bytes += &track == rows_ ? track.addSample() : track.addRow(time_);
  }
  return bytes;
}

}  // namespace mdf_reader
