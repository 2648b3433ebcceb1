#include "recording_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace mdf_tools {

namespace fs = std::filesystem;

using mdf_writer::Existing;

namespace {

template <class T>
void set(mdf_writer::Group& group, const mdf_writer::Channel<T>& channel, const Sample& sample,
         std::size_t index) {
  group.set(channel, valueOf<T>(sample.values[index]));
}

void set(mdf_writer::Group& group, const mdf_writer::VariableChannel& channel, const Sample& sample,
         std::size_t index) {
  group.set(channel, sample.texts[index]);
}

bool isStandardOutput(const std::string& path) { return path == "-"; }

}  // namespace

/// Knows how long the file is.
class RecordingFile::Output : public mdf_writer::FileOutput {
 public:
  using FileOutput::FileOutput;

  std::size_t write(std::uint64_t offset, const char* bytes, std::size_t count) override {
    const std::size_t written = FileOutput::write(offset, bytes, count);
    end_ = std::max(end_, offset + written);
    return written;
  }

  std::uint64_t end() const { return end_; }

 private:
  std::uint64_t end_ = 0;
};

/// The writer would say no more of these than the system does.
void RecordingFile::refuse(const std::string& path, Existing existing) {
  std::error_code error;
  const fs::path folder = fs::path(path).parent_path();
  const auto because = [&](const std::string& reason) {
    throw UnusablePath("cannot record to " + path + ": " + reason);
  };
  if (isStandardOutput(path)) {
    if (isatty(STDOUT_FILENO) != 0) {
      throw UnusablePath("cannot record to standard output: it is a terminal");
    }
  } else if (fs::is_block_file(path, error)) {
    because("it is a whole disk or a part of one");
  } else if (existing == Existing::keep && fs::is_regular_file(path, error)) {
    because("it exists; --force replaces it");
  } else if (!folder.empty() && !fs::exists(folder, error) && !error) {
    because("there is no directory " + folder.string());
  } else if (fs::is_directory(path, error)) {
    because(std::generic_category().message(EISDIR));
  } else if (!fs::exists(path, error) && access((folder / ".").c_str(), W_OK) != 0) {
    because(std::generic_category().message(errno));
  }
}

RecordingFile::RecordingFile(const std::string& path, const RecordingInfo& info,
                             const mdf_writer::Options& options)
    : path_(path),
      name_(isStandardOutput(path) ? "standard output" : path),
      options_(options),
      plan_(info.title) {
  refuse(path, options.existing);
  plan_.start = info.start;
  plan_.program_vendor = "The mdf maintainers";
  plan_.program_version = info.tool_version;
  plan_.history = "Recorded live signals";
  for (const SignalGroup& group : info.groups) {
    add(group);
  }
  const std::string fault = plan_.fault();
  if (!fault.empty()) {
    throw UnusablePath("cannot record to " + name_ + ": " + fault);
  }
}

void RecordingFile::open(std::int64_t begin) {
  begin_ = begin;
  plan_.start.nanoseconds += static_cast<std::uint64_t>(begin);
  output_ = isStandardOutput(path_) ? std::make_unique<Output>(STDOUT_FILENO)
                                    : std::make_unique<Output>(path_, options_.existing);
  if (!output_->isOpen()) {
    throw UnusablePath("cannot record to " + name_ + ": " + output_->cause());
  }
  if (options_.packer != nullptr && !output_->isSeekable()) {
    throw UnusablePath("cannot record zipped data to " + name_ +
                       ": it takes no changes of what was written before");
  }
  recording_ = std::make_unique<mdf_writer::Recording>(*output_, plan_, options_);
  require(recording_->good());
}

RecordingFile::~RecordingFile() = default;

bool RecordingFile::addGroup(const SignalGroup& group) {
  if (isOpen() && !output_->isSeekable()) {
    return false;
  }
  add(group);
  require(!isOpen() || recording_->addGroup(*groups_.back().group));
  return true;
}

void RecordingFile::add(const SignalGroup& signals) {
  if (signals.frames) {
    auto frames = std::make_unique<BusGroup>(plan_, *signals.frames);
    mdf_writer::Group& group = frames->group();
    groups_.push_back({&group, {}, std::move(frames)});
    return;
  }
  Group group{&plan_.addGroup(signals.name), {}};
  for (const Signal& signal : signals.signals) {
    using mdf_v4_10::CNBLOCK;
    if (signal.isText()) {
      group.channels.emplace_back(group.group->addText(signal.name));
      group.group->describe(std::get<mdf_writer::VariableChannel>(group.channels.back())).unit =
          signal.unit;
    } else if (signal.data_type == CNBLOCK::CN_DATATYPE_UINT_LE) {
      group.channels.emplace_back(group.group->addChannel<std::uint64_t>(signal.name, signal.unit));
    } else if (signal.bytes == sizeof(float)) {
      group.channels.emplace_back(group.group->addChannel<float>(signal.name, signal.unit));
    } else {
      group.channels.emplace_back(group.group->addChannel<double>(signal.name, signal.unit));
    }
    if (signals.has_gaps) {
      std::visit([&](const auto& channel) { group.group->mayBeInvalid(channel); },
                 group.channels.back());
    }
  }
  groups_.push_back(std::move(group));
}

void RecordingFile::append(const Sample& sample) {
  mdf_writer::Group& group = *groups_[sample.group].group;
  const std::vector<Channel>& channels = groups_[sample.group].channels;
  if (sample.frame) {
    groups_[sample.group].frames->set(sample.frame->frame, sample.frame->number);
  }
  for (std::size_t i = 0; i < channels.size(); ++i) {
    std::visit(
        [&](const auto& channel) {
          set(group, channel, sample, i);
          if (!sample.is_missing.empty()) {
            group.setValid(channel, !sample.is_missing[i]);
          }
        },
        channels[i]);
  }
  require(recording_->append(group, sample.nanoseconds - begin_));
}

void RecordingFile::add(mdf_writer::Event event) {
  event.nanoseconds -= begin_;
  if (event.nanoseconds_at_end) {
    *event.nanoseconds_at_end -= begin_;
  }
  recording_->addEvent(event);
  require(recording_->good());
}

void RecordingFile::flush() { require(recording_->flush()); }

void RecordingFile::finish() { require(recording_->finish()); }

std::uint64_t RecordingFile::bytes() const { return isOpen() ? output_->end() : 0; }

std::size_t RecordingFile::channels() const {
  std::size_t channels = 0;
  for (const mdf_writer::Group& group : plan_.groups()) {
    channels += group.channels().size();
  }
  return channels;
}

void RecordingFile::require(bool success) const {
  if (!success) {
    fail();
  }
}

/// The writer knows no name of an output; it belongs before the first colon.
void RecordingFile::fail() const {
  std::string sentence = recording_->cause();
  throw RecordingFailure(
      sentence.insert(std::min(sentence.find(':'), sentence.size()), " " + name_));
}

}  // namespace mdf_tools
