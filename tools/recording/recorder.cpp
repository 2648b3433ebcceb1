#include "recorder.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace mdf_tools {

namespace fs = std::filesystem;

namespace {

/// A value from the low bytes of 64 bits.
template <class T>
T valueOf(mdf_v4_10::UINT64 bits) {
  static_assert(sizeof(T) == 4 || sizeof(T) == 8);
  const auto low = static_cast<std::uint32_t>(bits);
  T value;
  std::memcpy(&value, sizeof value == sizeof low ? static_cast<const void*>(&low) : &bits,
              sizeof value);
  return value;
}

template <class T>
void set(mdf_writer::Group& group, const mdf_writer::Channel<T>& channel, mdf_v4_10::UINT64 bits) {
  group.set(channel, valueOf<T>(bits));
}

/// The writer would say no more of these than the system does.
void refuse(const std::string& path) {
  std::error_code error;
  const fs::path folder = fs::path(path).parent_path();
  const auto because = [&](const std::string& reason) {
    throw UnusablePath("cannot record to " + path + ": " + reason);
  };
  if (fs::is_block_file(path, error)) {
    because("it is a whole disk or a part of one");
  }
  if (!folder.empty() && !fs::exists(folder, error) && !error) {
    because("there is no directory " + folder.string());
  }
}

}  // namespace

Recorder::Recorder(const std::string& path, const RecordingInfo& info,
                   const mdf_writer::Options& options)
    : name_(path), plan_(info.title) {
  refuse(path);
  plan_.start = info.start;
  plan_.program_vendor = "The mdf maintainers";
  plan_.program_version = info.tool_version;
  plan_.history = "Recorded live signals";
  for (const SignalGroup& group : info.groups) {
    add(group);
  }
  output_ = std::make_unique<mdf_writer::FileOutput>(path, options.existing);
  if (!output_->isOpen()) {
    throw UnusablePath("cannot record to " + path + ": " + output_->cause());
  }
  recording_ = std::make_unique<mdf_writer::Recording>(*output_, plan_, options);
  if (!recording_->good()) {
    fail();
  }
}

void Recorder::add(const SignalGroup& signals) {
  Group group{&plan_.addGroup(signals.name), {}};
  for (const Signal& signal : signals.signals) {
    if (signal.data_type == mdf_v4_10::CNBLOCK::CN_DATATYPE_UINT_LE) {
      group.channels.emplace_back(group.group->addChannel<std::uint64_t>(signal.name, signal.unit));
    } else if (signal.bytes == sizeof(float)) {
      group.channels.emplace_back(group.group->addChannel<float>(signal.name, signal.unit));
    } else {
      group.channels.emplace_back(group.group->addChannel<double>(signal.name, signal.unit));
    }
  }
  groups_.push_back(std::move(group));
}

void Recorder::append(const Sample& sample) {
  const Group& to = groups_[sample.group];
  for (std::size_t i = 0; i < to.channels.size(); ++i) {
    std::visit([&](const auto& channel) { set(*to.group, channel, sample.values[i]); },
               to.channels[i]);
  }
  if (!recording_->append(*to.group, sample.nanoseconds)) {
    fail();
  }
  ++records_;
}

void Recorder::finish() {
  if (!recording_->finish()) {
    fail();
  }
}

std::size_t Recorder::channels() const {
  std::size_t channels = 0;
  for (const mdf_writer::Group& group : plan_.groups()) {
    channels += group.channels().size();
  }
  return channels;
}

/// The writer knows no name of an output; it belongs before the first colon.
void Recorder::fail() const {
  std::string sentence = recording_->cause();
  throw RecordingFailure(
      sentence.insert(std::min(sentence.find(':'), sentence.size()), " " + name_));
}

}  // namespace mdf_tools
