#include "recorder.h"

#include <algorithm>
#include <filesystem>
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
    : options_(std::move(options)), info_(std::move(info)) {
  if (hasLimit()) {
    refuseLaterFiles();
  }
  open();
}

/// A recording is not to end hours later because of a file that was there all the time.
void Recorder::refuseLaterFiles() const {
  if (isStandardOutput(options_.path)) {
    throw UnusablePath("cannot record to standard output: it is one file only");
  }
  const fs::path path = options_.path;
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
      RecordingFile::refuse((path.parent_path() / name).string(), options_.writing.existing);
    }
  }
}

std::string Recorder::path() const {
  return hasLimit() ? numberedFile(options_.path, number_).string() : options_.path;
}

void Recorder::open() {
  file_ = std::make_unique<RecordingFile>(path(), info_, options_.writing, begin_);
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
  file_->finish();
  bytes_before_ += file_->bytes();
  begin_ += is_old ? period * limit.nanoseconds : age;
  period_ = 0;
  ++number_;
  open();
}

void Recorder::append(const Sample& sample) {
  goOn(sample.nanoseconds);
  file_->append(sample);
  ++records_;
}

void Recorder::add(const mdf_writer::Event& event) { file_->add(event); }

void Recorder::flush() { file_->flush(); }

void Recorder::finish() { file_->finish(); }

std::size_t Recorder::channels() const { return file_->channels(); }

std::uint64_t Recorder::bytes() const { return bytes_before_ + file_->bytes(); }

std::string Recorder::place() const {
  if (isStandardOutput(options_.path)) {
    return "standard output";
  }
  return number_ == 1 ? path() : numberedFile(options_.path, 1).string() + " to " + path();
}

}  // namespace mdf_tools
