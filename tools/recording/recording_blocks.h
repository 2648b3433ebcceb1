#ifndef MDF_TOOLS_RECORDING_RECORDING_BLOCKS_H_
#define MDF_TOOLS_RECORDING_RECORDING_BLOCKS_H_

#include <deque>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "file_plan.h"
#include "mdf_v4_10.h"
#include "signal_source.h"
#include "start_time.h"

namespace mdf_tools {

/// What a recording says about itself.
struct RecordingInfo {
  StartTime start;
  std::string title;         ///< what was recorded
  std::string change;        ///< what was done to the file, for its history
  std::string tool_version;  ///< of this program
};

/// Times of the first and the last record, in seconds.
struct TimeRange {
  double first;
  double last;
};

/// The blocks of a recording: everything that describes it, and last in the file, where it can
/// grow, one data block with the records.
///
/// Until it is finished, the file says so in the standard's own way: by another file identifier,
/// and by flags for the cycle count and the length of the last data block, which are still to be
/// set.
class RecordingBlocks {
 public:
  /// The first channel is the time master.
  RecordingBlocks(const std::vector<Signal>& channels, const RecordingInfo& info);
  ~RecordingBlocks() = default;
  RecordingBlocks(const RecordingBlocks&) = delete;
  RecordingBlocks& operator=(const RecordingBlocks&) = delete;

  /// Bytes of all blocks without records: where the first record belongs.
  mdf_v4_10::UINT64 size() const { return plan_.end(); }

  /// Bytes of each record.
  mdf_v4_10::UINT64 recordBytes() const { return group_.getDataBytes(); }

  /// Writes all blocks, without records and unfinished.
  void write(std::ostream& os) const { plan_.write(os); }

  /// Rewrites in place what depends on the records, and last of all the identification. Their
  /// times, if they are known, become the value range of the time channel, so that programs can
  /// tell the duration without reading the records.
  void finish(std::ostream& os, mdf_v4_10::UINT64 records, const std::optional<TimeRange>& times);

 private:
  void addFrame(const RecordingInfo& info);
  void addGroups();
  void addChannels(const std::vector<Signal>& channels);
  mdf_v4_10::LINK addText(const std::string& text);

  FilePlan plan_;
  mdf_v4_10::IDBLOCK id_;
  mdf_v4_10::HDBLOCK header_;
  mdf_v4_10::FHBLOCK history_;
  mdf_v4_10::MDBLOCK history_comment_;
  mdf_v4_10::MDBLOCK header_comment_;
  std::deque<mdf_v4_10::TXBLOCK> texts_;
  std::map<std::string, mdf_v4_10::LINK> text_links_;
  mdf_v4_10::DGBLOCK data_group_;
  mdf_v4_10::CGBLOCK group_;
  std::deque<mdf_v4_10::CNBLOCK> channels_;
  mdf_v4_10::DTBLOCK data_;
  mdf_v4_10::LINK group_at_ = 0;
  mdf_v4_10::LINK data_at_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDING_BLOCKS_H_
