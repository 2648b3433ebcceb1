#include "tables.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <unordered_map>
#include <utility>

#include "../blocks/raw_block.h"
#include "../bytes/input_file.h"
#include "../bytes/work_budget.h"
#include "../model/element_groups.h"
#include "../model/group_choice.h"
#include "column.h"
#include "column_list.h"
#include "framework/wire.h"
#include "master_search.h"
#include "name_patterns.h"
#include "remote_master.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;

namespace {

constexpr std::size_t most_at_once = 4096;                      // records, which stay in the cache
constexpr std::size_t room_for_values = std::size_t{1} << 20U;  // of the records taken at once
constexpr std::size_t most_bytes = std::size_t{1} << 23U;       // of a batch
constexpr std::size_t most_columns = 65536;                     // of tables at a time
constexpr std::size_t rows_beside = 256;                        // of their batches

}  // namespace

/// Goes through the tables of one file.
class Tables::Walk {
 public:
  Walk(InputFile& file, const Query& query, const FindingSink& report, const NoteSink& note)
      : file_(file),
        query_(query),
        report_(report),
        note_(note),
        patterns_(query.channels),
        description_(readDescription(file, report)),
        data_file_(file, query.threads),
        conversions_(file, report),
        remote_masters_(data_file_, description_, report) {
    description_.data_groups = splitElements(file, std::move(description_.data_groups), report);
  }

  Table* next();
  Table* of(const DataGroup& data_group, const ChannelGroup& group);
  std::vector<std::unique_ptr<Table>> all(const ChannelGroup* base);
  std::vector<TableHead> heads(std::size_t most);
  std::size_t count() const { return count_; }
  const Header& header() const { return description_.header; }
  const std::vector<DataGroup>& dataGroups() const { return description_.data_groups; }
  void examine();

 private:
  void begin();
  void enter(const DataGroup& data_group);
  void makeRecords(const DataGroup& data_group);
  void expectGroups(const DataGroup& data_group);
  bool fitsAny(const ChannelGroup& group, const std::vector<ColumnPlan>& plans);
  void examineWhatIsNoTable(const DataGroup& data_group);
  bool haveDataOfTheirOwn(const DataGroup& data_group);
  void examineGroup(const ChannelGroup& group);
  bool isQueried(const ChannelGroup& group) const;
  bool isWanted(const ChannelGroup& group) const;
  bool isBase(const ChannelGroup& group) const { return &group == base_; }
  bool isLimited() const { return !are_beside_ && (query_.from || query_.to); }
  const Query& queryOf(const ChannelGroup& group) const;
  std::unique_ptr<Table> tableOf(const DataGroup& data_group, const ChannelGroup& group);
  std::vector<ColumnPlan> plansOf(const ChannelGroup& group, const RemoteMaster* remote);
  static bool hasMaster(const ChannelGroup& group, const std::vector<ColumnPlan>& plans,
                        const RemoteMaster* remote);
  std::vector<Column> columnsFor(const ChannelGroup& group, const std::vector<ColumnPlan>& plans,
                                 const RemoteMaster* remote);
  ColumnHead headOf(const ChannelGroup& group, const ColumnPlan& plan);
  ColumnSource sourceOf(const ChannelGroup& group, const ColumnPlan& plan);
  std::unique_ptr<SignalValues> valuesOf(const Channel& channel);

  InputFile& file_;
  const Query& query_;
  const FindingSink& report_;
  const NoteSink& note_;
  NamePatterns patterns_;
  Description description_;
  DataFile data_file_;
  Conversions conversions_;
  RemoteMasters remote_masters_;
  std::shared_ptr<Records> records_;  ///< of the data group that is being visited
  std::unordered_map<std::uint64_t, const ChannelGroup*> groups_;  ///< of it, by their offsets
  std::unordered_map<std::uint64_t, const Channel*> channels_;     ///< of one group, the same
  std::size_t data_group_ = 0;  ///< where the walk is: the next group
  std::size_t group_ = 0;
  const DataGroup* entered_ = nullptr;  ///< the one of whose groups was asked for last
  bool is_over_ = false;                ///< there is nothing more to be had of the others
  std::unique_ptr<Table> table_;
  bool has_wanted_ = false;  ///< channels, the group whose columns were planned last
  std::size_t count_ = 0;
  bool is_examining_ = false;
  bool are_beside_ = false;  ///< the tables, all at a time
  const ChannelGroup* base_ = nullptr;
  Query base_query_;
  Query beside_query_;  ///< of the other tables
};

Table* Tables::Walk::next() {
  table_.reset();
  if (data_group_ == 0 && group_ == 0) {
    begin();
  }
  while (data_group_ < description_.data_groups.size()) {
    const DataGroup& data_group = description_.data_groups[data_group_];
    if (group_ == 0) {
      enter(data_group);
    }
    while (group_ < data_group.groups.size()) {
      const ChannelGroup& group = data_group.groups[group_++];
      table_ = isWanted(group) ? tableOf(data_group, group) : nullptr;
      if (table_ != nullptr) {
        count_ += has_wanted_ ? 1 : 0;
        return table_.get();
      }
    }
    examineWhatIsNoTable(data_group);
    const bool goes_on = haveDataOfTheirOwn(data_group);
    data_group_ = goes_on ? data_group_ + 1 : description_.data_groups.size();
    group_ = 0;
    if (data_group_ == description_.data_groups.size() && count_ > 0) {
      patterns_.noteThoseWithoutAny(note_);
    }
  }
  return nullptr;
}

Table* Tables::Walk::of(const DataGroup& data_group, const ChannelGroup& group) {
  table_.reset();
  if (entered_ == nullptr) {
    begin();
  } else if (entered_ != &data_group) {
    examineWhatIsNoTable(*entered_);
    is_over_ = is_over_ || !haveDataOfTheirOwn(*entered_);
  }
  if (entered_ != &data_group) {
    enter(data_group);
    entered_ = &data_group;
  }
  table_ = is_over_ || !isWanted(group) ? nullptr : tableOf(data_group, group);
  return table_.get();
}

std::vector<std::unique_ptr<Table>> Tables::Walk::all(const ChannelGroup* base) {
  are_beside_ = true;
  base_ = base;
  base_query_ = query_;
  base_query_.batch_rows = std::min(query_.batch_rows, rows_beside);
  beside_query_ = base_query_;
  beside_query_.skip = 0;
  beside_query_.first.reset();
  beside_query_.last.reset();
  beside_query_.stride = 1;
  std::vector<std::unique_ptr<Table>> tables;
  std::size_t columns = 0;
  std::size_t left_out = 0;
  while (next() != nullptr) {
    columns += table_->head().columns.size();
    if (columns <= most_columns || isBase(table_->group())) {
      tables.push_back(std::move(table_));
    } else {
      ++left_out;
    }
  }
  if (left_out > 0) {
    note_("a table has room for " + std::to_string(most_columns) + " channels; " +
          std::to_string(left_out) + (left_out == 1 ? " group is" : " groups are") + " left out");
  }
  return tables;
}

const Query& Tables::Walk::queryOf(const ChannelGroup& group) const {
  if (!are_beside_) {
    return query_;
  }
  return isBase(group) ? base_query_ : beside_query_;
}

void Tables::Walk::begin() {
  if (data_file_.isUnfinished()) {
    note_("the file was not finished; its records are read as far as they go");
  }
}

/// Data that makes no table is read all the same when everything is wanted: what cannot be read of
/// it must not go unsaid.
void Tables::Walk::examineWhatIsNoTable(const DataGroup& data_group) {
  if (query_.channels.empty() && query_.group.empty() && !query_.element) {
    makeRecords(data_group);
    records_->examine();
  }
}

void Tables::Walk::makeRecords(const DataGroup& data_group) {
  if (!records_) {
    records_ = std::make_shared<Records>(data_file_, data_group, report_);
    if (data_group.groups.size() > 1) {
      expectGroups(data_group);
    }
  }
}

/// Says which groups will be read, so that unsorted data is gone through for all of them at once.
void Tables::Walk::expectGroups(const DataGroup& data_group) {
  const FindingSink nobody = [](const Finding& /*finding*/) {};
  std::vector<const ChannelGroup*> expected;
  for (const ChannelGroup& group : data_group.groups) {
    const bool is_read =
        !is_examining_ || group.hasRemoteMaster() ||
        std::any_of(group.channels.begin(), group.channels.end(),
                    [](const Channel& each) { return each.type == Channel::variable_length; });
    if (is_read && isWanted(group) && (isBase(group) || fitsAny(group, columnsOf(group, nobody)))) {
      expected.push_back(&group);
    }
  }
  records_->expect(std::move(expected), CopyLimits::forFile(file_.size()));
}

/// The same without values that are in the records.
void Tables::Walk::examine() {
  is_examining_ = true;
  for (const DataGroup& data_group : description_.data_groups) {
    enter(data_group);
    makeRecords(data_group);
    records_->examine();
    for (const ChannelGroup& group : data_group.groups) {
      if (isWanted(group)) {
        examineGroup(group);
      }
    }
    if (!haveDataOfTheirOwn(data_group)) {
      break;
    }
  }
}

void Tables::Walk::examineGroup(const ChannelGroup& group) {
  const RemoteMaster* remote = remote_masters_.of(group);
  const std::vector<ColumnPlan> plans = plansOf(group, remote);
  if (plans.empty()) {
    return;
  }
  std::vector<Column> columns = columnsFor(group, plans, remote);
  std::vector<Column*> elsewhere;
  // Channels that share bytes of the record would have it read again and again.
  WorkBudget offsets(group.data_bytes);
  for (Column& column : columns) {
    if (!column.isInRecords() && offsets.take(column.storedBytes())) {
      elsewhere.push_back(&column);
    }
  }
  if (elsewhere.empty()) {
    return;
  }
  const auto cursor = records_->read(group);
  for (RecordSpan records = cursor->next(most_at_once); records.count > 0;
       records = cursor->next(most_at_once)) {
    for (Column* const column : elsewhere) {
      column->look(records);
    }
  }
}

void Tables::Walk::enter(const DataGroup& data_group) {
  groups_.clear();
  for (const ChannelGroup& group : data_group.groups) {
    groups_.emplace(group.offset, &group);
  }
}

/// Whether the data groups up to this one have data of their own, not the same blocks again and
/// again.
bool Tables::Walk::haveDataOfTheirOwn(const DataGroup& data_group) {
  const std::uint64_t stored = records_ ? records_->storedBytes() : 0;
  records_.reset();
  if (data_file_.mayGoOnAfter(stored)) {
    return true;
  }
  report_({Code::work_limited, data_group.offset,
           "expected data groups with data of their own, found the same blocks again and again; "
           "the other data groups are left out"});
  return false;
}

bool Tables::Walk::isQueried(const ChannelGroup& group) const {
  return isChosen(group, query_.group) && (!query_.element || query_.element == group.element);
}

bool Tables::Walk::isWanted(const ChannelGroup& group) const {
  return !group.holdsVariableLength() && (isBase(group) || isQueried(group));
}

/// The wanted columns of a group, after its own master channel's; none when no channel is wanted,
/// of the base its own master's.
std::vector<ColumnPlan> Tables::Walk::plansOf(const ChannelGroup& group,
                                              const RemoteMaster* remote) {
  const Channel* master = group.masterChannel();
  std::vector<ColumnPlan> plans =
      columnsOf(group, report_, remote == nullptr ? "" : remote->plan.name);
  std::stable_partition(plans.begin(), plans.end(),
                        [&](const ColumnPlan& plan) { return plan.channel == master; });
  has_wanted_ = fitsAny(group, plans);
  if (!has_wanted_ && !isBase(group)) {
    return {};
  }
  const auto is_left_out = [&](const ColumnPlan& plan) {
    return plan.channel != master && !(has_wanted_ && patterns_.fit(plan.own_name, plan.path));
  };
  plans.erase(std::remove_if(plans.begin(), plans.end(), is_left_out), plans.end());
  return plans;
}

/// Whether any of a group's columns are wanted.
bool Tables::Walk::fitsAny(const ChannelGroup& group, const std::vector<ColumnPlan>& plans) {
  return isQueried(group) &&
         std::any_of(plans.begin(), plans.end(), [this](const ColumnPlan& plan) {
           return patterns_.fit(plan.own_name, plan.path);
         });
}

bool Tables::Walk::hasMaster(const ChannelGroup& group, const std::vector<ColumnPlan>& plans,
                             const RemoteMaster* remote) {
  return remote != nullptr || plans.front().channel == group.masterChannel();
}

/// The table of a group; null where no channel of it is wanted.
std::unique_ptr<Table> Tables::Walk::tableOf(const DataGroup& data_group,
                                             const ChannelGroup& group) {
  const RemoteMaster* remote = remote_masters_.of(group);
  const std::vector<ColumnPlan> plans = plansOf(group, remote);
  if (plans.empty() && (remote == nullptr || !isBase(group))) {
    return nullptr;
  }
  const bool has_master = hasMaster(group, plans, remote);
  if (isLimited() && !has_master) {
    note_("channel group " + std::to_string(group.index) +
          " is left out: it has no master channel to compare with --from and --to");
    return nullptr;
  }
  makeRecords(data_group);
  std::vector<Column> columns = columnsFor(group, plans, remote);
  return std::unique_ptr<Table>(new Table(
      {&group, {}, has_master, records_->idBytes() + group.recordBytes()},
      {records_, records_->read(group), std::move(columns), are_beside_}, queryOf(group)));
}

std::vector<Column> Tables::Walk::columnsFor(const ChannelGroup& group,
                                             const std::vector<ColumnPlan>& plans,
                                             const RemoteMaster* remote) {
  channels_.clear();
  for (const Channel& channel : group.channels) {
    channels_.emplace(channel.offset, &channel);
  }
  std::vector<Column> columns;
  columns.reserve(plans.size() + 1);
  if (remote != nullptr) {
    ColumnSource master = sourceOf(*remote->group, remote->plan);
    master.elsewhere = remote_masters_.recordsFor(group, *remote);
    columns.emplace_back(remote->plan.name, std::move(master), report_);
  }
  for (const ColumnPlan& plan : plans) {
    ColumnSource source = sourceOf(group, plan);
    if (plan.channel->type == Channel::variable_length) {
      source.values = valuesOf(*plan.channel);
    }
    columns.emplace_back(plan.name, std::move(source), report_);
  }
  return columns;
}

/// The heads of the columns say nothing of where values are, so that no data is read.
std::vector<TableHead> Tables::Walk::heads(std::size_t most) {
  std::vector<TableHead> heads;
  for (const DataGroup& data_group : description_.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      const RemoteMaster* remote = isWanted(group) ? remote_masters_.of(group) : nullptr;
      const auto plans = isWanted(group) ? plansOf(group, remote) : std::vector<ColumnPlan>();
      if (plans.empty() || (isLimited() && !hasMaster(group, plans, remote))) {
        continue;
      }
      TableHead head{&group, {}, hasMaster(group, plans, remote), 0};
      if (remote != nullptr) {
        head.columns.push_back(headOf(*remote->group, remote->plan));
      }
      for (const ColumnPlan& plan : plans) {
        head.columns.push_back(headOf(group, plan));
      }
      heads.push_back(std::move(head));
      if (heads.size() >= most) {
        return heads;
      }
    }
  }
  return heads;
}

ColumnHead Tables::Walk::headOf(const ChannelGroup& group, const ColumnPlan& plan) {
  return Column(plan.name, sourceOf(group, plan), report_).head();
}

ColumnSource Tables::Walk::sourceOf(const ChannelGroup& group, const ColumnPlan& plan) {
  const Channel& channel = *plan.channel;
  ColumnSource source;
  source.group = &group;
  source.channel = &channel;
  source.byte_shift = plan.byte_shift;
  source.invalidation_shift = plan.invalidation_shift;
  if (channel.type == Channel::maximum_length) {
    const auto length = channels_.find(channel.data);
    source.length_channel = length == channels_.end() ? nullptr : length->second;
  }
  source.numbers = query_.numbers;
  source.conversion = query_.raw ? nullptr : conversions_.at(channel.conversion);
  return source;
}

/// Where the values of a channel of variable length are: in signal data, or in the records of
/// another channel group.
std::unique_ptr<SignalValues> Tables::Walk::valuesOf(const Channel& channel) {
  const auto block = channel.data == 0 ? std::nullopt : readRawBlock(file_, channel.data);
  if (block && block->hasId() && block->letters() == "CG") {
    const auto group = groups_.find(channel.data);
    if (group != groups_.end() && group->second->holdsVariableLength()) {
      return records_->valuesIn(*group->second);
    }
    report_({Code::value_outside_signal_data, channel.offset,
             "expected the values in a channel group for variable-length data of "
             "the same data group, found " +
                 decimalAndHex(channel.data)});
    return nullptr;
  }
  return signalDataAt(data_file_, {channel.offset, channel.data}, report_);
}

Table::Table(TableHead head, Source source, const Query& query)
    : of_(std::move(source.of)),
      columns_(std::move(source.columns)),
      records_(std::move(source.records)),
      has_more_(source.has_more),
      query_(query),
      batch_rows_(std::max<std::size_t>(1, query.batch_rows)) {
  std::size_t row_bytes = 1;
  for (const Column& column : columns_) {
    head.columns.push_back(column.head());
    row_bytes += widthOf(column.head().type);
    has_texts_ = has_texts_ || !isNumber(column.head().type);
  }
  most_at_once_ = std::clamp<std::size_t>(room_for_values / row_bytes, 1, most_at_once);
  at_once_ = has_texts_ ? 1 : most_at_once_;
  rows_before_ = static_cast<std::size_t>(
      std::min<std::uint64_t>(head.group->cycles, std::min(batch_rows_, most_bytes / row_bytes)));
  masters_ = ColumnData(head.columns.front().type);
  head_ = std::make_shared<const TableHead>(std::move(head));
  stride_ = hostSize(std::max<std::uint64_t>(1, query.stride));
  skipFirst(query.skip);
  if (query.last) {
    const std::uint64_t rest = records_->rest();
    skipFirst(rest - std::min(rest, *query.last));
  }
  if (query.first) {
    end_ = position_ + std::min(*query.first, UINT64_MAX - position_);
  }
  if (query_.from || query_.to) {
    narrow();
  }
}

Table::~Table() = default;

const Batch* Table::next() {
  if (batch_ == nullptr) {
    batch_ = std::make_unique<Batch>(head_, rows_before_);
    batch_->stride_ = stride_;
  }
  batch_->clear();
  while (batch_->rows() < batch_rows_ && batch_->size() < most_bytes && findRun() && isNext()) {
    add();
  }
  return batch_->rows() > 0 ? batch_.get() : nullptr;
}

std::unique_ptr<const Batch> Table::take() {
  rows_before_ = batch_ == nullptr ? 0 : batch_->rows();
  return rows_before_ > 0 ? std::move(batch_) : nullptr;
}

/// Leaves out so many of the first records, as far as there are such.
void Table::skipFirst(std::uint64_t count) {
  const std::uint64_t there = std::min(count, records_->rest());
  if (there > 0) {
    records_->skip(there);
    position_ += there;
  }
}

/// Finds the next records that are wanted and stand together: the first `run_` of the pending ones.
bool Table::findRun() {
  while (run_ == 0) {
    if (pending_.count == 0 && !readOn()) {
      return false;
    }
    if (!hasRange()) {
      run_ = pending_.count;
      return true;
    }
    std::size_t begin = 0;
    while (begin < pending_.count && !isInRange(begin)) {
      ++begin;
    }
    skip(begin);
    while (run_ < pending_.count && isInRange(run_)) {
      ++run_;
    }
  }
  return true;
}

bool Table::readOn() {
  pending_ = nextRecords();
  if (hasRange()) {
    masters_.clear();
    columns_.front().append(pending_, masters_);
    master_row_ = 0;
  }
  return pending_.count > 0;
}

/// Limits the records to those in the range, where each can be had by its number. Where the
/// master's values are seen not to grow, all records are gone through instead.
void Table::narrow() {
  const std::uint64_t begin = position_;
  const std::uint64_t end = position_ + std::min(records_->rest(), end_ - position_);
  if (begin == end || std::isnan(masterAt(begin))) {
    return;
  }
  MasterSearch search(begin, end, [this](std::uint64_t number) { return masterAt(number); });
  if (!records_->isZipped()) {
    search.look();
  }
  const std::uint64_t first = query_.from ? search.firstFrom(*query_.from) : begin;
  const std::uint64_t last = query_.to ? search.firstAfter(*query_.to) : end;
  if (!search.isGrowing()) {
    return;
  }
  const std::uint64_t stride = stride_;
  const std::uint64_t most = (first - begin) / stride + ((first - begin) % stride == 0 ? 0 : 1);
  const std::uint64_t strides = most - (has_more_ && most > 0 ? 1 : 0);
  records_->skip(strides * stride);
  position_ += strides * stride;
  end_ = has_more_ ? std::min(end, last + std::min(stride, end - last)) : last;
}

/// The master's value of any record; NaN where it cannot be had alone.
double Table::masterAt(std::uint64_t number) {
  Column& column = columns_.front();
  const auto record =
      column.isInRecords() ? records_->at(number) : std::optional<std::string_view>();
  if (!record) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  masters_.clear();
  column.append(oneRecord(*record, number), masters_);
  return masters_.real(0);
}

/// Some of the records that are wanted for their numbers; the first one to come is.
RecordSpan Table::nextRecords() {
  const std::uint64_t left = end_ - std::min(end_, position_);
  const RecordSpan records =
      left == 0 ? RecordSpan()
                : records_->next(static_cast<std::size_t>(std::min<std::uint64_t>(at_once_, left)));
  if (records.count == 0) {
    return records;
  }
  position_ += records.count;
  const RecordSpan wanted = records.every(stride_);
  const std::uint64_t last = wanted.number(wanted.count - 1);
  const std::uint64_t next = last + std::min<std::uint64_t>(stride_, UINT64_MAX - last);
  if (next > position_) {
    records_->skip(next - position_);
    position_ = next;
  }
  return wanted;
}

void Table::skip(std::size_t count) {
  pending_ = pending_.part(count, pending_.count - count);
  master_row_ += count;
}

bool Table::isInRange(std::size_t index) const {
  const double master = masters_.real(master_row_ + index);
  return !std::isnan(master) && (!query_.from || master >= *query_.from) &&
         (!query_.to || master <= *query_.to);
}

/// Whether the run continues the batch.
bool Table::isNext() const {
  return batch_->rows() == 0 || batch_->record(batch_->rows()) == pending_.first;
}

void Table::add() {
  const RecordSpan records = pending_.part(0, std::min(run_, batch_rows_ - batch_->rows()));
  if (batch_->rows_ == 0) {
    batch_->first_ = records.first;
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i == 0 && hasRange()) {
      batch_->columns_[i].append(masters_, master_row_, records.count);
    } else {
      columns_[i].append(records, batch_->columns_[i]);
    }
  }
  batch_->rows_ += records.count;
  skip(records.count);
  run_ -= records.count;
  if (has_texts_) {
    const std::size_t row_bytes = 1 + batch_->size() / batch_->rows();
    at_once_ = std::clamp<std::size_t>(room_for_values / row_bytes, 1,
                                       std::min(2 * at_once_, most_at_once_));
  }
}

Tables::Tables(InputFile& file, const Query& query, const FindingSink& report, const NoteSink& note)
    : walk_(std::make_unique<Walk>(file, query, report, note)) {}

Tables::~Tables() = default;

Table* Tables::next() { return walk_->next(); }

Table* Tables::of(const DataGroup& data_group, const ChannelGroup& group) {
  return walk_->of(data_group, group);
}

std::vector<std::unique_ptr<Table>> Tables::all(const ChannelGroup* base) {
  return walk_->all(base);
}

const std::vector<DataGroup>& Tables::dataGroups() const { return walk_->dataGroups(); }

const Header& Tables::header() const { return walk_->header(); }

std::vector<TableHead> Tables::heads(std::size_t most) { return walk_->heads(most); }

std::size_t Tables::count() const { return walk_->count(); }

void examineTables(InputFile& file, const FindingSink& report) {
  Query raw;
  raw.raw = true;
  const NoteSink nobody = [](const std::string& /*note*/) {};
  Tables::Walk(file, raw, report, nobody).examine();
}

}  // namespace mdf_reader
