#include "recorder.h"

#include <utility>

namespace mdf_tools {

Recorder::Recorder(RecorderOptions options, RecordingInfo info)
    : options_(std::move(options)),
      info_(std::move(info)),
      file_(std::make_unique<RecordingFile>(options_.path, info_, options_.writing)) {}

void Recorder::append(const Sample& sample) {
  file_->append(sample);
  ++records_;
}

void Recorder::add(const mdf_writer::Event& event) { file_->add(event); }

void Recorder::flush() { file_->flush(); }

void Recorder::finish() { file_->finish(); }

std::size_t Recorder::channels() const { return file_->channels(); }

std::uint64_t Recorder::bytes() const { return file_->bytes(); }

std::string Recorder::place() const {
  return options_.path == "-" ? "standard output" : options_.path;
}

}  // namespace mdf_tools
