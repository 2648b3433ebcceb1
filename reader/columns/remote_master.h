#ifndef MDF_READER_VALUES_REMOTE_MASTER_H_
#define MDF_READER_VALUES_REMOTE_MASTER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "../blocks/finding.h"
#include "../bytes/work_budget.h"
#include "../data/records.h"
#include "../data/sorted_records.h"
#include "../model/description.h"
#include "column_list.h"

namespace mdf_reader {

/// The master channel that a channel group has in another one, since version 4.2: each of its
/// samples belongs to the sample of the same number there.
struct RemoteMaster {
  const DataGroup* data_group = nullptr;
  const ChannelGroup* group = nullptr;
  ColumnPlan plan;  ///< without a channel where there is none
  bool is_looked_for = false;
  std::optional<bool> are_sorted;  ///< its records, once that is known
};

/// The records of the group with the master, one for each sample of the group without.
class MasterRecords {
 public:
  /// @param of what the records are of.
  MasterRecords(std::shared_ptr<Records> of, SortedRecords records, const ChannelGroup& group,
                WorkBudget& budget, const FindingSink& report)
      : of_(std::move(of)),
        records_(std::move(records)),
        group_(group),
        budget_(budget),
        report_(report) {}

  /// The record of a number; numbers go up. Nothing where there is none; the first missing one is
  /// reported.
  std::optional<std::string_view> at(std::uint64_t number);

  /// The records for those of the group, copied to `bytes`: fewer where there are no more.
  RecordSpan copy(const RecordSpan& records, std::string& bytes);

 private:
  void endAt(Code code, const std::string& sentence);

  std::shared_ptr<Records> of_;
  SortedRecords records_;
  const ChannelGroup& group_;
  WorkBudget& budget_;
  const FindingSink& report_;
  std::uint64_t charged_ = 0;  ///< records that the budget knows of
  bool has_ended_ = false;
};

/// Finds the masters that channel groups have in other groups.
class RemoteMasters {
 public:
  RemoteMasters(DataFile& file, const Description& description, const FindingSink& report);

  /// Null for a group that has none, and, with a finding, where it cannot be had.
  const RemoteMaster* of(const ChannelGroup& group);

  /// The records with the master that was found last.
  std::unique_ptr<MasterRecords> recordsFor(const ChannelGroup& group, const RemoteMaster& master);

 private:
  void listGroups();
  RemoteMaster* masterAt(std::uint64_t group_offset);
  bool areSorted(RemoteMaster& master);
  const std::shared_ptr<Records>& recordsOf(const DataGroup& data_group);

  DataFile& file_;
  const Description& description_;
  const FindingSink& report_;
  FindingSink silent_;  ///< problems there are reported when that group is visited
  /// By the offsets of their groups. The names of their columns are not known at first.
  std::unordered_map<std::uint64_t, RemoteMaster> masters_;
  std::shared_ptr<Records> records_;
  const DataGroup* data_group_ = nullptr;  ///< the one that they are of
  WorkBudget budget_;  ///< for what all readers of masters take of the file together
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_REMOTE_MASTER_H_
