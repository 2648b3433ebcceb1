#ifndef MDF_TOOLS_RECORDING_RECORDER_H_
#define MDF_TOOLS_RECORDING_RECORDER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "quantity.h"
#include "recording_file.h"
#include "sample_ring.h"
#include "trigger.h"

namespace mdf_tools {

/// What is held in memory, and goes into a file only when a trigger fires, or in the end.
struct RingOptions {
  std::int64_t nanoseconds = 0;  ///< as much of it as lies so long before that, at most
  std::size_t bytes = std::size_t{256} << 20U;  ///< and as has so many bytes
  std::optional<Condition> trigger{};
  std::optional<std::int64_t> post_trigger{};  ///< how long a file goes on then; none for no end
};

/// Where a recording goes.
struct RecorderOptions {
  std::string path;  ///< "-" is standard output
  mdf_writer::Options writing{};
  FileLimit limit{};  ///< of a file, after which the next one goes on; none where both are 0
  std::optional<RingOptions> ring{};
};

/// Takes samples and events and brings them into a file, or where a limit is set into one after
/// another: of trip.mf4 these are trip_001.mf4, trip_002.mf4 and so on, each of which begins where
/// the one before ends. Then each trigger begins a file, too, once that of the one before has
/// ended. Its operations throw as those of RecordingFile do.
class Recorder {
 public:
  /// @throws UnusablePath where there can be no new file, or one of those to come.
  static void refuse(const RecorderOptions& options);

  /// @throws BadOption as Trigger does.
  Recorder(RecorderOptions options, RecordingInfo info);

  void append(const Sample& sample);
  /// Adds a group that later samples are of; false where the file takes no more groups.
  bool addGroup(const SignalGroup& group);
  std::size_t groups() const { return info_.groups.size(); }
  void add(const mdf_writer::Event& event);
  void flush();

  /// @throws RecordingFailure also when there is no file, because no trigger fired.
  void finish();

  /// Whether the time after the trigger has passed, and no file is to follow.
  bool isOver(std::int64_t now) const;

  /// Whether samples are held in memory, and how many.
  bool isWaiting() const { return state_ == State::waiting; }
  std::size_t held() const { return ring_->size(); }

  /// What was recorded so far.
  std::uint64_t records() const { return records_; }
  /// How many samples left the ring early; none when it had all that it was to hold.
  std::uint64_t missing() const { return missing_; }
  std::size_t channels() const;
  std::uint64_t bytes() const;
  /// Where it is, for people.
  std::string place() const;

 private:
  enum class State { recording, waiting, over };

  static std::string path(const RecorderOptions& options, std::size_t number);
  static void refuseNumberedFiles(const RecorderOptions& options);
  void prepareFile();
  void nextFile();
  void goOn(std::int64_t now);
  void hold(Sample sample);
  void trigger(std::int64_t now);
  void putRing();
  void put(const Sample& sample);
  void put(const mdf_writer::Event& event);
  bool hasEnded(std::int64_t now) const;

  RecorderOptions options_;
  RecordingInfo info_;
  std::int64_t flush_interval_;  ///< of the records that are not from the ring
  std::int64_t flushed_ = 0;
  std::unique_ptr<RecordingFile> file_;
  std::size_t number_ = 1;  ///< of the file
  std::int64_t begin_ = 0;  ///< when it begins, in nanoseconds since the recording began
  std::optional<std::int64_t> period_;  ///< in which its first record is, where a limit is a time
  std::uint64_t bytes_before_ = 0;      ///< in the files before
  std::uint64_t records_ = 0;
  State state_ = State::recording;
  std::optional<SampleRing> ring_;
  std::optional<Trigger> trigger_;
  std::int64_t triggered_ = 0;  ///< when the last trigger fired
  std::uint64_t missing_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_RECORDER_H_
