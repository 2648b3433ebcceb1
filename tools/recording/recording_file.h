#ifndef MDF_TOOLS_RECORDING_RECORDING_FILE_H_
#define MDF_TOOLS_RECORDING_RECORDING_FILE_H_

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

/// A file that samples are recorded in, once it is open. Programs can read it at any moment.
class RecordingFile {
 public:
  /// @param path "-" is standard output.
  /// @throws UnusablePath where there can be no new file of that name.
  static void refuse(const std::string& path, mdf_writer::Existing existing);

  /// @throws UnusablePath as refuse() does, or when the names of channels cannot be in a file.
  RecordingFile(const std::string& path, const RecordingInfo& info,
                const mdf_writer::Options& options);
  ~RecordingFile();
  RecordingFile(const RecordingFile&) = delete;
  RecordingFile& operator=(const RecordingFile&) = delete;

  /// Adds a group, which comes into the file with the next flush where it is open. False where it
  /// takes no more groups, as standard output that is a pipe.
  /// @throws RecordingFailure as append() does.
  bool addGroup(const SignalGroup& group);

  /// Makes the file, before anything else is done with it.
  /// @param begin when it begins, in nanoseconds since the recording began.
  /// @throws UnusablePath where the system makes none.
  /// @throws RecordingFailure when the file does not even take what describes it.
  void open(std::int64_t begin);

  bool isOpen() const { return recording_ != nullptr; }

  /// @throws RecordingFailure when the file takes no more; it is then complete with those records
  /// that were written whole.
  void append(const Sample& sample);

  /// Adds an event with a time since the recording began. Standard output takes none if it is a
  /// pipe.
  /// @throws RecordingFailure as append() does.
  void add(mdf_writer::Event event);

  /// Brings everything into the file.
  /// @throws RecordingFailure as append() does.
  void flush();

  /// Completes the file.
  /// @throws RecordingFailure as append() does.
  void finish();

  /// How many channels it has, those with times included.
  std::size_t channels() const;

  /// How long the file is so far.
  std::uint64_t bytes() const;

 private:
  using Channel = std::variant<mdf_writer::Channel<float>, mdf_writer::Channel<double>,
                               mdf_writer::Channel<std::uint64_t>, mdf_writer::VariableChannel>;
  struct Group {
    mdf_writer::Group* group;
    std::vector<Channel> channels;
    std::unique_ptr<BusGroup> frames{};  ///< of a group of these
  };
  class Output;

  void add(const SignalGroup& signals);
  void require(bool success) const;
  [[noreturn]] void fail() const;

  std::string path_;
  std::string name_;
  mdf_writer::Options options_;
  std::int64_t begin_ = 0;
  mdf_writer::Plan plan_;
  std::vector<Group> groups_;
  std::unique_ptr<Output> output_;
  std::unique_ptr<mdf_writer::Recording> recording_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDING_FILE_H_
