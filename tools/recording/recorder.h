#ifndef MDF_TOOLS_RECORDING_RECORDER_H_
#define MDF_TOOLS_RECORDING_RECORDER_H_

#include <mdf_writer/mdf_writer.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "sample.h"

namespace mdf_tools {

/// A path that cannot be recorded to. The message is a whole sentence.
class UnusablePath : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A recording that could not be written. The message is a whole sentence and says what is left.
class RecordingFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a recording says about itself and what is in it.
struct RecordingInfo {
  std::string title;         ///< what was recorded
  std::string tool_version;  ///< of this program
  std::vector<SignalGroup> groups;
  mdf_writer::Moment start = mdf_writer::now();
};

/// A recording: samples go to a file that can be opened at any moment.
class Recorder {
 public:
  /// @throws UnusablePath when there can be no file of that name.
  /// @throws RecordingFailure when the file does not even take what describes it.
  Recorder(const std::string& path, const RecordingInfo& info, const mdf_writer::Options& options);

  /// @throws RecordingFailure when the file takes no more; it is then complete with those records
  /// that were written whole.
  void append(const Sample& sample);

  /// Completes the file.
  /// @throws RecordingFailure as append() does.
  void finish();

  /// How many records the file has, or will have when it is finished.
  std::uint64_t records() const { return records_; }

  /// How many channels it has, those with times included.
  std::size_t channels() const;

 private:
  using Channel = std::variant<mdf_writer::Channel<float>, mdf_writer::Channel<double>,
                               mdf_writer::Channel<std::uint64_t>>;
  struct Group {
    mdf_writer::Group* group;
    std::vector<Channel> channels;
  };

  void add(const SignalGroup& signals);
  [[noreturn]] void fail() const;

  std::string name_;
  mdf_writer::Plan plan_;
  std::vector<Group> groups_;
  std::unique_ptr<mdf_writer::FileOutput> output_;
  std::unique_ptr<mdf_writer::Recording> recording_;
  std::uint64_t records_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDER_H_
