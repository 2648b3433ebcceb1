#ifndef MDF_TOOLS_RECORDING_RECORDER_H_
#define MDF_TOOLS_RECORDING_RECORDER_H_

#include <cstdint>
#include <memory>
#include <string>

#include "recording_file.h"

namespace mdf_tools {

/// Where a recording goes.
struct RecorderOptions {
  std::string path;  ///< "-" is standard output
  mdf_writer::Options writing{};
};

/// Takes samples and events and brings them into a file. Its operations throw as those of
/// RecordingFile do.
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
  RecorderOptions options_;
  RecordingInfo info_;
  std::unique_ptr<RecordingFile> file_;
  std::uint64_t records_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDER_H_
