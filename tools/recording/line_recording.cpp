#include "line_recording.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "line_input.h"
#include "markers.h"
#include "status_line.h"
#include "stop_request.h"

namespace mdf_tools {

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// Lines on their way to a recording, which begins with the first sample.
class LineRecording {
 public:
  LineRecording(std::unique_ptr<SampleLines> source, double duration, RecorderOptions options,
                const std::string& tool_version)
      : source_(std::move(source)),
        end_(duration > 0 ? std::llround(duration * 1e9)
                          : std::numeric_limits<std::int64_t>::max()),
        options_(std::move(options)),
        info_{"Live signals of standard input", tool_version, {}} {}

  std::uint64_t run() {
    while (now_ < end_ && !input_.hasEnded() && !stopRequested() && !isOver()) {
      input_.wait(std::min(end_ - now_, second));
      now_ = std::chrono::nanoseconds(Clock::now() - start_).count();
      for (auto line = input_.next(); line && !isOver(); line = input_.next()) {
        take(*line);
      }
      beginWhenReady();
      if (recorder_) {
        keepUp();
      }
    }
    finish();
    return bad_lines_;
  }

 private:
  using Clock = std::chrono::steady_clock;

  void take(std::string_view line) {
    ++lines_;
    try {
      if (source_->take(line)) {
        append();
      }
    } catch (const UnfitLine& bad) {
      if (bad_lines_++ == 0) {
        status_.note("standard input, line " + std::to_string(lines_) + ": " + bad.what() +
                     "; such lines are left out");
      }
    }
  }

  void append() {
    Sample& sample = source_->sample();
    if (!source_->hasTimes()) {
      sample.nanoseconds = now_;
    }
    last_ = sample.nanoseconds;
    if (!recorder_) {
      first_.push_back(sample);
      begun_ = first_.size() == 1 ? now_ : begun_;
      beginWhenReady();
      return;
    }
    if (sample.group >= recorder_->groups()) {
      addGroups();
    }
    recorder_->append(sample);
  }

  /// A pipe takes no groups later, so those of the first second are waited for.
  void beginWhenReady(bool is_last = false) {
    const bool waits =
        source_->canBringGroups() && options_.path == "-" && now_ < begun_ + second && !is_last;
    if (recorder_ || first_.empty() || waits) {
      return;
    }
    info_.start.nanoseconds = source_->start().value_or(info_.start.nanoseconds);
    info_.groups = source_->groups();
    recorder_.emplace(options_, info_);
    for (const Sample& sample : first_) {
      recorder_->append(sample);
    }
    first_ = {};
  }

  void addGroups() {
    while (source_->groups().size() > recorder_->groups()) {
      if (!recorder_->addGroup(source_->groups()[recorder_->groups()])) {
        throw UnfitLine("a pipe takes no frames of a bus or a kind that comes after a second");
      }
    }
  }

  bool isOver() const { return recorder_ && recorder_->isOver(time()); }

  /// Of what is not a line.
  std::int64_t time() const { return source_->hasTimes() ? last_ : now_; }

  /// Markers, what lies in memory, and what people see.
  void keepUp() {
    markers_.add(*recorder_, time());
    if (now_ >= flushed_ + second) {
      recorder_->flush();
      flushed_ = now_;
    }
    status_.show(now_, *recorder_, losses());
  }

  void finish() {
    status_.end();
    beginWhenReady(true);
    if (!recorder_) {
      throw UnusablePath("there is no sample on standard input; nothing was recorded");
    }
    recorder_->finish();
    summarise(*recorder_, now_, losses());
  }

  std::string losses() const { return counted(bad_lines_, "line") + " left out"; }

  std::unique_ptr<SampleLines> source_;
  std::int64_t end_;
  RecorderOptions options_;
  RecordingInfo info_;
  LineInput input_{STDIN_FILENO};
  Markers markers_{-1};
  StatusLine status_;
  std::optional<Recorder> recorder_;
  std::vector<Sample> first_;  ///< before there is one
  std::int64_t begun_ = 0;     ///< when the first one of these came
  Clock::time_point start_ = Clock::now();
  std::int64_t now_ = 0;
  std::int64_t last_ = 0;  ///< the time of the last sample
  std::int64_t flushed_ = 0;
  std::uint64_t lines_ = 0;
  std::uint64_t bad_lines_ = 0;
};

}  // namespace

std::uint64_t recordLines(std::unique_ptr<SampleLines> source, double duration,
                          RecorderOptions options, const std::string& tool_version) {
  Recorder::refuse(options);
  return LineRecording(std::move(source), duration, std::move(options), tool_version).run();
}

}  // namespace mdf_tools
