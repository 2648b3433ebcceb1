#ifndef MDF_TOOLS_RECORDING_RECORDER_H_
#define MDF_TOOLS_RECORDING_RECORDER_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "quantity.h"
#include "recording_file.h"

namespace mdf_tools {

/// Where a recording goes.
struct RecorderOptions {
  std::string path;  ///< "-" is standard output
  mdf_writer::Options writing{};
  FileLimit limit{};  ///< of a file, after which the next one goes on; none where both are 0
};

/// Takes samples and events and brings them into a file, or where a limit is set into one after
/// another: of trip.mf4 these are trip_001.mf4, trip_002.mf4 and so on, each of which begins where
/// the one before ends. Its operations throw as those of RecordingFile do.
class Recorder {
 public:
  Recorder(RecorderOptions options, RecordingInfo info);

  void append(const Sample& sample);
  void add(const mdf_writer::Event& event);
  void flush();
  void finish();

  /// What was recorded so far.
  std::uint64_t records() const { return records_; }
  std::size_t channels() const;
  std::uint64_t bytes() const;
  /// Where it is, for people.
  std::string place() const;

 private:
  bool hasLimit() const { return options_.limit.bytes > 0 || options_.limit.nanoseconds > 0; }
  std::string path() const;
  void refuseLaterFiles() const;
  void open();
  void goOn(std::int64_t nanoseconds);

  RecorderOptions options_;
  RecordingInfo info_;
  std::unique_ptr<RecordingFile> file_;
  std::size_t number_ = 1;  ///< of the file
  std::int64_t begin_ = 0;  ///< when it begins, in nanoseconds since the recording began
  std::optional<std::int64_t> period_;  ///< in which its first record is, where a limit is a time
  std::uint64_t bytes_before_ = 0;      ///< in the files before
  std::uint64_t records_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDER_H_
