#include "recorder.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <system_error>
#include <utility>

namespace mdf_tools {

namespace fs = std::filesystem;

namespace {

bool isStandardOutput(const std::string& path) { return path == "-"; }

/// trip_007.mf4 of trip.mf4.
fs::path numberedFile(const fs::path& path, std::size_t number) {
  constexpr std::size_t digits = 3;
  const std::string text = std::to_string(number);
  const std::string zeros(digits - std::min(digits, text.size()), '0');
  fs::path numbered = path;
  return numbered.replace_filename(path.stem().string() + '_' + zeros + text +
                                   path.extension().string());
}

}  // namespace

Recorder::Recorder(RecorderOptions options, RecordingInfo info)
    : options_(std::move(options)),
      info_(std::move(info)),
      flush_interval_(std::exchange(options_.writing.flush_interval, 0)) {
  refuse(options_);
  prepareFile();
  if (!options_.ring) {
    file_->open(begin_);
    return;
  }
  const RingOptions& ring = *options_.ring;
  state_ = State::waiting;
  ring_.emplace(ring.nanoseconds, ring.bytes);
  if (ring.trigger) {
    trigger_.emplace(*ring.trigger, info_.groups);
  }
}

/// A recording is not to end hours later because of a file that was there all the time.
void Recorder::refuse(const RecorderOptions& options) {
  if (options.limit.isSet()) {
    refuseNumberedFiles(options);
  }
  RecordingFile::refuse(path(options, 1), options.writing.existing);
}

void Recorder::refuseNumberedFiles(const RecorderOptions& options) {
  if (isStandardOutput(options.path)) {
    throw UnusablePath("cannot record to standard output: it is one file only");
  }
  const fs::path path = options.path;
  const fs::path folder = path.parent_path().empty() ? "." : path.parent_path();
  const std::string start = path.stem().string() + '_';
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const fs::path name = entry.path().filename();
    const std::string stem = name.stem().string();
    const bool is_numbered =
        name.extension() == path.extension() && stem.compare(0, start.size(), start) == 0 &&
        stem.size() > start.size() &&
        stem.find_first_not_of("0123456789", start.size()) == std::string::npos;
    if (is_numbered) {
      RecordingFile::refuse((path.parent_path() / name).string(), options.writing.existing);
    }
  }
}

std::string Recorder::path(const RecorderOptions& options, std::size_t number) {
  return options.limit.isSet() ? numberedFile(options.path, number).string() : options.path;
}

void Recorder::prepareFile() {
  file_ = std::make_unique<RecordingFile>(path(options_, number_), info_, options_.writing);
}

void Recorder::nextFile() {
  file_->finish();
  bytes_before_ += file_->bytes();
  ++number_;
  prepareFile();
}

/// Goes on in the next file when this one has reached its limit. Where that is a time, files begin
/// at multiples of it.
void Recorder::goOn(std::int64_t nanoseconds) {
  const FileLimit& limit = options_.limit;
  const std::int64_t age = nanoseconds - begin_;
  const std::int64_t period = limit.nanoseconds > 0 ? age / limit.nanoseconds : 0;
  const bool is_old = period > period_.value_or(period);
  if (!is_old && (limit.bytes == 0 || file_->bytes() < limit.bytes)) {
    period_ = period_.value_or(period);
    return;
  }
  nextFile();
  begin_ += is_old ? period * limit.nanoseconds : age;
  period_ = 0;
  file_->open(begin_);
}

void Recorder::append(const Sample& sample) {
  const std::int64_t now = sample.nanoseconds;
  if (hasEnded(now)) {
    state_ = options_.limit.isSet() ? State::waiting : State::over;
    file_->finish();
  }
  const bool fires = trigger_ && trigger_->fires(sample);
  if (state_ == State::recording) {
    put(sample);
    if (flush_interval_ > 0 && now - flushed_ >= flush_interval_) {
      flush();
      flushed_ = now;
    }
  } else if (state_ == State::waiting) {
    hold(sample);
    if (fires) {
      trigger(now);
    }
  }
}

bool Recorder::addGroup(const SignalGroup& group) {
  const bool is_added = file_->addGroup(group);
  if (is_added) {
    info_.groups.push_back(group);
  }
  return is_added;
}

/// Samples of lines have their numbers as texts, too.
void Recorder::hold(Sample sample) {
  const std::vector<Signal>& signals = info_.groups[sample.group].signals;
  if (std::none_of(signals.begin(), signals.end(), std::mem_fn(&Signal::isText))) {
    sample.texts = std::vector<std::string>();
  }
  ring_->add(std::move(sample));
}

void Recorder::trigger(std::int64_t now) {
  state_ = State::recording;
  triggered_ = now;
  putRing();
  mdf_writer::Event event{trigger_->text(), now};
  event.type = mdf_v4_10::EVBLOCK::EV_TYPE_TRIGGER;
  event.cause = mdf_v4_10::EVBLOCK::EV_CAUSETYPE_TOOL;
  put(event);
  flush();
  flushed_ = now;
}

/// In a new file, which begins with it.
void Recorder::putRing() {
  if (file_->isOpen()) {
    nextFile();
  }
  begin_ = ring_->begin();
  period_.reset();
  file_->open(begin_);
  missing_ += ring_->missing();
  for (const SampleRing::Entry& entry : ring_->take()) {
    std::visit([this](const auto& one) { put(one); }, entry);
  }
}

void Recorder::put(const Sample& sample) {
  goOn(sample.nanoseconds);
  file_->append(sample);
  ++records_;
}

void Recorder::put(const mdf_writer::Event& event) { file_->add(event); }

void Recorder::add(const mdf_writer::Event& event) {
  if (state_ == State::recording) {
    put(event);
  } else if (state_ == State::waiting) {
    ring_->add(event);
  }
}

void Recorder::flush() {
  if (state_ == State::recording) {
    file_->flush();
  }
}

void Recorder::finish() {
  if (state_ == State::waiting && !trigger_) {
    putRing();
  }
  if (!file_->isOpen()) {
    throw RecordingFailure("the trigger did not fire: \"" + trigger_->text() +
                           "\" did not become true; nothing was recorded");
  }
  file_->finish();
}

bool Recorder::hasEnded(std::int64_t now) const {
  return state_ == State::recording && trigger_ && options_.ring->post_trigger &&
         now - triggered_ > *options_.ring->post_trigger;
}

bool Recorder::isOver(std::int64_t now) const {
  return state_ == State::over || (hasEnded(now) && !options_.limit.isSet());
}

std::size_t Recorder::channels() const { return file_->channels(); }

std::uint64_t Recorder::bytes() const { return bytes_before_ + file_->bytes(); }

std::string Recorder::place() const {
  if (isStandardOutput(options_.path)) {
    return "standard output";
  }
  const std::string last = path(options_, number_);
  return number_ == 1 ? last : path(options_, 1) + " to " + last;
}

}  // namespace mdf_tools
