#ifndef MDF_TOOLS_RECORDING_RECORDER_H_
#define MDF_TOOLS_RECORDING_RECORDER_H_

#include <optional>
#include <stdexcept>
#include <vector>

#include "mdf_v4_10.h"
#include "output_file.h"
#include "recording_blocks.h"
#include "signal_source.h"

namespace mdf_tools {

/// A recording that could not be written. The message is a whole sentence and says what is left.
class RecordingFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Writes a recording: first the description, then record by record, at last what depends on their
/// number. It needs the same memory however long the recording is.
class Recorder {
 public:
  /// `rate` in Hz says when the next record is to be expected.
  /// @throws RecordingFailure when the description cannot be written; no file is left then.
  Recorder(OutputFile& file, const std::vector<Signal>& signals, const RecordingInfo& info,
           double rate);

  /// Adds a record: its time in seconds since the start, and the bits of each signal's value. It is
  /// in the file within a second.
  /// @throws RecordingFailure when the file takes no more; it is then complete with those records
  /// that were written whole.
  void append(double seconds, const std::vector<mdf_v4_10::UINT64>& values);

  /// Completes the file.
  /// @throws RecordingFailure as append() does.
  void finish();

  /// How many records the file has, or will have when it is finished.
  mdf_v4_10::UINT64 records() const { return records_; }

  /// How many channels it has, the time channel included.
  std::size_t channels() const { return channels_.size(); }

 private:
  void put(mdf_v4_10::UINT64 bits, mdf_v4_10::UINT32 bytes);
  void flush();
  bool complete();
  [[noreturn]] void keepWhatIsWritten();

  OutputFile& file_;
  std::vector<Signal> channels_;
  RecordingBlocks blocks_;
  std::vector<char> batch_;  ///< records that are not in the file yet
  mdf_v4_10::UINT64 records_ = 0;
  std::optional<TimeRange> times_;  ///< of the first and the last record, as far as they are known
  double flush_interval_;
  double last_flush_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDER_H_
