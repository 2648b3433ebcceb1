#ifndef MDF_READER_COLUMNS_JOINED_TABLE_H_
#define MDF_READER_COLUMNS_JOINED_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batch.h"
#include "query.h"
#include "row_rate.h"
#include "sample_track.h"
#include "tables.h"

namespace mdf_reader {

/// Where a table has its rows.
struct TimeBase {
  std::optional<RowRate> rate;  ///< at this rate, or
  std::string group;            ///< where the only channel group with this number or pattern has
  Between between = Between::held;
};

/// The channels of several channel groups in one table. It has the times of one group, or of a
/// rate, in front, and then the wanted channels group by group, as in the file. Before the first
/// sample of a group and after its last one its columns have no values.
///
/// Groups are read side by side: memory grows with their number, and not with the samples. Groups
/// that have no master channel of the same kind and unit are left out.
class JoinedTable {
 public:
  /// @param tables those of a file, none of which has been asked for.
  /// @param query what they were made with.
  JoinedTable(Tables& tables, const Query& query, const TimeBase& base, const NoteSink& note);

  /// Why there are no rows to be had; "" where there are.
  const std::string& problem() const { return problem_; }
  const TableHead& head() const { return *head_; }
  /// The next rows; null after the last ones. A batch lasts until the next call.
  const Batch* next();

 private:
  const ChannelGroup* chooseGroup();
  void chooseTracks(std::vector<std::unique_ptr<Table>> tables, const ChannelGroup* base);
  void findStart();
  ColumnHead timeHead() const;
  void makeHead();
  void makeBatch();
  bool goToNextRow();
  bool goToNextSample();
  bool goToNextTime();
  std::size_t addRow();

  Tables& tables_;
  const Query& query_;
  TimeBase base_;
  const NoteSink& note_;
  std::string problem_;

  std::vector<SampleTrack> tracks_;
  SampleTrack* rows_ = nullptr;  ///< the one whose samples are the rows; null for a rate
  std::shared_ptr<const TableHead> head_;
  std::unique_ptr<Batch> batch_;
  std::size_t most_rows_ = 1;

  Decimals decimals_{std::nullopt};  ///< of the rate's times
  double start_ = 0;                 ///< where a rate has its first row
  std::uint64_t row_;                ///< of a rate, the next one
  double time_ = 0;
  bool has_ended_ = false;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_JOINED_TABLE_H_
