#include "recorder.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string>

#include "framework/wire.h"

namespace mdf_tools {

using mdf_v4_10::UINT32;
using mdf_v4_10::UINT64;

namespace {

constexpr std::size_t batch_bytes = 65536;
constexpr double longest_in_memory = 1.0;  // seconds

std::vector<Signal> withTime(const std::vector<Signal>& signals) {
  std::vector<Signal> channels = {float64Signal("time", "s")};
  channels.insert(channels.end(), signals.begin(), signals.end());
  return channels;
}

std::string cannotWrite(OutputFile& file) {
  return "cannot write to " + file.path().string() + " at offset " + std::to_string(file.size()) +
         ": " + file.cause() + "; ";
}

std::string count(UINT64 number) {
  return number == 1 ? "1 record" : std::to_string(number) + " records";
}

}  // namespace

Recorder::Recorder(OutputFile& file, const std::vector<Signal>& signals, const RecordingInfo& info,
                   double rate)
    : file_(file),
      channels_(withTime(signals)),
      blocks_(channels_, info),
      flush_interval_(longest_in_memory - 1 / rate) {
  std::ostringstream description;
  blocks_.write(description);
  const std::string bytes = description.str();
  if (!file_.append(bytes.data(), bytes.size())) {
    const std::string failure = cannotWrite(file_);
    file_.discard();
    throw RecordingFailure(failure + "nothing was recorded");
  }
}

void Recorder::append(double seconds, const std::vector<UINT64>& values) {
  put(bitsOf(seconds), channels_.front().bytes);
  for (std::size_t i = 0; i < values.size(); ++i) {
    put(values[i], channels_[i + 1].bytes);
  }
  times_ = TimeRange{times_ ? times_->first : seconds, seconds};
  ++records_;
  if (batch_.size() >= batch_bytes || seconds >= last_flush_ + flush_interval_) {
    flush();
    last_flush_ = seconds;
  }
}

void Recorder::put(UINT64 bits, UINT32 bytes) {
  std::array<char, sizeof bits> value;
  mdf_v4_10::detail::storeLe(value.data(), bits);
  batch_.insert(batch_.end(), value.begin(), value.begin() + bytes);
}

void Recorder::flush() {
  if (!file_.append(batch_.data(), batch_.size())) {
    keepWhatIsWritten();
  }
  batch_.clear();
}

void Recorder::finish() {
  flush();
  if (!complete()) {
    throw RecordingFailure("cannot complete " + file_.path().string() + ": " + file_.cause() +
                           "; the file still says that it is unfinished");
  }
}

bool Recorder::complete() {
  return file_.rewrite([this](std::ostream& os) { blocks_.finish(os, records_, times_); }) &&
         file_.close();
}

void Recorder::keepWhatIsWritten() {
  const std::string failure = cannotWrite(file_);
  const UINT64 size = std::max(file_.size(), blocks_.size());
  times_.reset();  // of the last record that is kept
  records_ = std::min(records_, (size - blocks_.size()) / blocks_.recordBytes());
  const bool kept = file_.cutTo(blocks_.size() + records_ * blocks_.recordBytes()) && complete();
  throw RecordingFailure(failure +
                         (kept ? count(records_) + " written before that make a complete file"
                               : "the file still says that it is unfinished"));
}

}  // namespace mdf_tools
