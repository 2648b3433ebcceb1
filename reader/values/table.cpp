#include "table.h"

#include <fnmatch.h>

#include <algorithm>
#include <memory>
#include <unordered_map>
#include <utility>

#include "../blocks/raw_block.h"
#include "../bytes/input_file.h"
#include "../bytes/work_budget.h"
#include "../model/element_groups.h"
#include "../model/group_choice.h"
#include "column_list.h"
#include "remote_master.h"

namespace mdf_reader {

namespace {

/// The patterns that choose channels, and which of them have matched.
class Patterns {
 public:
  explicit Patterns(const std::vector<std::string>& patterns)
      : patterns_(patterns), has_found_(patterns.size()) {}

  /// Whether a column matches one of them, or there are none.
  bool fit(const ColumnPlan& plan) {
    bool fits = patterns_.empty();
    for (std::size_t i = 0; i < patterns_.size(); ++i) {
      const char* const pattern = patterns_[i].c_str();
      if (fnmatch(pattern, plan.own_name.c_str(), 0) == 0 ||
          fnmatch(pattern, plan.path.c_str(), 0) == 0) {
        has_found_[i] = true;
        fits = true;
      }
    }
    return fits;
  }

  void noteThoseWithoutAny(const NoteSink& note) const {
    for (std::size_t i = 0; i < patterns_.size(); ++i) {
      if (!has_found_[i]) {
        note("no channel matches \"" + patterns_[i] + '"');
      }
    }
  }

 private:
  const std::vector<std::string>& patterns_;
  std::vector<bool> has_found_;
};

/// Goes through the tables of one file.
class Tables {
 public:
  Tables(InputFile& file, const Selection& selection, TableVisitor& visitor,
         const FindingSink& report, const NoteSink& note)
      : file_(file),
        selection_(selection),
        visitor_(visitor),
        report_(report),
        note_(note),
        patterns_(selection.channels),
        description_(readDescription(file, report)),
        data_file_(file),
        conversions_(file, report),
        remote_masters_(data_file_, description_, report) {
    description_.data_groups = splitElements(file, std::move(description_.data_groups), report);
  }

  std::size_t visit();
  void examine();

 private:
  void enter(const DataGroup& data_group);
  void makeRecords(const DataGroup& data_group);
  void examineWhatIsNoTable(const DataGroup& data_group);
  bool haveDataOfTheirOwn(const DataGroup& data_group);
  void examineGroup(const ChannelGroup& group);
  bool isWanted(const ChannelGroup& group) const;
  void visitGroup(const DataGroup& data_group, const ChannelGroup& group);
  std::vector<ColumnPlan> plansOf(const ChannelGroup& group, const RemoteMaster* remote);
  std::vector<Column> columnsFor(const ChannelGroup& group, const std::vector<ColumnPlan>& plans,
                                 const RemoteMaster* remote);
  ColumnSource sourceOf(const ChannelGroup& group, const ColumnPlan& plan);
  std::unique_ptr<SignalValues> valuesOf(const Channel& channel);
  bool isInRange(Table& table, const Sample& sample) const;
  bool hasRange() const { return selection_.from || selection_.to; }

  InputFile& file_;
  const Selection& selection_;
  TableVisitor& visitor_;
  const FindingSink& report_;
  const NoteSink& note_;
  Patterns patterns_;
  Description description_;
  DataFile data_file_;
  Conversions conversions_;
  RemoteMasters remote_masters_;
  std::unique_ptr<Records> records_;  ///< of the data group that is being visited
  std::unordered_map<std::uint64_t, const ChannelGroup*> groups_;  ///< of it, by their offsets
  std::unordered_map<std::uint64_t, const Channel*> channels_;     ///< of one group, the same
  std::size_t count_ = 0;
};

std::size_t Tables::visit() {
  if (data_file_.isUnfinished()) {
    note_("the file was not finished; its records are read as far as they go");
  }
  for (const DataGroup& data_group : description_.data_groups) {
    enter(data_group);
    for (const ChannelGroup& group : data_group.groups) {
      if (isWanted(group)) {
        visitGroup(data_group, group);
      }
    }
    examineWhatIsNoTable(data_group);
    if (!haveDataOfTheirOwn(data_group)) {
      break;
    }
  }
  if (count_ > 0) {
    patterns_.noteThoseWithoutAny(note_);
  }
  return count_;
}

/// Data that makes no table is read all the same when everything is wanted: what cannot be read of
/// it must not go unsaid.
void Tables::examineWhatIsNoTable(const DataGroup& data_group) {
  if (selection_.channels.empty() && selection_.group.empty()) {
    makeRecords(data_group);
    records_->examine();
  }
}

void Tables::makeRecords(const DataGroup& data_group) {
  if (!records_) {
    records_ = std::make_unique<Records>(data_file_, data_group, report_);
  }
}

/// The same without values that are in the records.
void Tables::examine() {
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

void Tables::examineGroup(const ChannelGroup& group) {
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
  std::uint64_t number = 0;
  records_->forEach(group, [&](std::string_view bytes) {
    const Sample sample{bytes, number++};
    std::for_each(elsewhere.begin(), elsewhere.end(),
                  [&](Column* column) { column->look(sample); });
    return !elsewhere.empty();
  });
}

void Tables::enter(const DataGroup& data_group) {
  groups_.clear();
  for (const ChannelGroup& group : data_group.groups) {
    groups_.emplace(group.offset, &group);
  }
}

/// Whether the data groups up to this one have data of their own, not the same blocks again and
/// again.
bool Tables::haveDataOfTheirOwn(const DataGroup& data_group) {
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

bool Tables::isWanted(const ChannelGroup& group) const {
  return !group.holdsVariableLength() && isChosen(group, selection_.group);
}

/// The wanted columns of a group, after its own master channel's; none when no channel is wanted.
std::vector<ColumnPlan> Tables::plansOf(const ChannelGroup& group, const RemoteMaster* remote) {
  const Channel* master = group.masterChannel();
  std::vector<ColumnPlan> plans =
      columnsOf(group, report_, remote == nullptr ? "" : remote->plan.name);
  std::stable_partition(plans.begin(), plans.end(),
                        [&](const ColumnPlan& plan) { return plan.channel == master; });
  const auto is_wanted = [&](const ColumnPlan& plan) { return patterns_.fit(plan); };
  if (std::none_of(plans.begin(), plans.end(), is_wanted)) {
    return {};
  }
  const auto is_left_out = [&](const ColumnPlan& plan) {
    return plan.channel != master && !is_wanted(plan);
  };
  plans.erase(std::remove_if(plans.begin(), plans.end(), is_left_out), plans.end());
  return plans;
}

void Tables::visitGroup(const DataGroup& data_group, const ChannelGroup& group) {
  const RemoteMaster* remote = remote_masters_.of(group);
  const std::vector<ColumnPlan> plans = plansOf(group, remote);
  if (plans.empty()) {
    return;
  }
  const bool has_master = remote != nullptr || plans.front().channel == group.masterChannel();
  if (hasRange() && !has_master) {
    note_("channel group " + std::to_string(group.index) +
          " is left out: it has no master channel to compare with --from and --to");
    return;
  }
  makeRecords(data_group);
  Table table(group, columnsFor(group, plans, remote), has_master);
  ++count_;
  visitor_.begin(table);
  std::uint64_t number = 0;
  records_->forEach(group, [&](std::string_view bytes) {
    const Sample sample{bytes, number++};
    return !isInRange(table, sample) || visitor_.sample(table, sample);
  });
  visitor_.end();
}

std::vector<Column> Tables::columnsFor(const ChannelGroup& group,
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
    columns.emplace_back(plan.name, sourceOf(group, plan), report_);
  }
  return columns;
}

ColumnSource Tables::sourceOf(const ChannelGroup& group, const ColumnPlan& plan) {
  const Channel& channel = *plan.channel;
  ColumnSource source;
  source.group = &group;
  source.channel = &channel;
  source.byte_shift = plan.byte_shift;
  source.invalidation_shift = plan.invalidation_shift;
  if (channel.type == Channel::variable_length) {
    source.values = valuesOf(channel);
  } else if (channel.type == Channel::maximum_length) {
    const auto length = channels_.find(channel.data);
    source.length_channel = length == channels_.end() ? nullptr : length->second;
  }
  source.conversion = selection_.is_raw ? nullptr : conversions_.at(channel.conversion);
  return source;
}

/// Where the values of a channel of variable length are: in signal data, or in the records of
/// another channel group.
std::unique_ptr<SignalValues> Tables::valuesOf(const Channel& channel) {
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

bool Tables::isInRange(Table& table, const Sample& sample) const {
  if (!hasRange()) {
    return true;
  }
  const auto master = numberOf(table.columns().front().value(sample));
  return master && (!selection_.from || *master >= *selection_.from) &&
         (!selection_.to || *master <= *selection_.to);
}

}  // namespace

std::size_t visitTables(InputFile& file, const Selection& selection, TableVisitor& visitor,
                        const FindingSink& report, const NoteSink& note) {
  return Tables(file, selection, visitor, report, note).visit();
}

void examineTables(InputFile& file, const FindingSink& report) {
  class Nobody : public TableVisitor {
   public:
    void begin(Table& /*table*/) override {}
    bool sample(Table& /*table*/, const Sample& /*sample*/) override { return false; }
    void end() override {}
  };
  Nobody nobody;
  const Selection raw{{}, {}, {}, {}, true};
  Tables(file, raw, nobody, report, [](const std::string& /*note*/) {}).examine();
}

}  // namespace mdf_reader
