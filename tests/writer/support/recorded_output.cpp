#include "recorded_output.h"

#include <algorithm>

namespace mdf_tests {

using Step = RecordedOutput::Step;

void RecordedOutput::apply(const Step& step, std::string& file) {
  if (step.kind == Step::Kind::cut) {
    file.resize(std::min<std::size_t>(file.size(), static_cast<std::size_t>(step.at)));
  } else if (step.kind == Step::Kind::write) {
    const auto at = static_cast<std::size_t>(step.at);
    file.resize(std::max(file.size(), at + step.bytes.size()));
    file.replace(at, step.bytes.size(), step.bytes);
  }
}

std::size_t RecordedOutput::write(std::uint64_t offset, const char* bytes, std::size_t count) {
  if (++writes_ == failing_) {
    return 0;
  }
  const std::uint64_t at = is_seekable_ ? offset : bytes_.size();
  const auto taken =
      static_cast<std::size_t>(std::min<std::uint64_t>(count, room_ < at ? 0 : room_ - at));
  if (taken > 0) {
    steps_.push_back({Step::Kind::write, at, std::string(bytes, taken)});
    apply(steps_.back(), bytes_);
  }
  return taken;
}

bool RecordedOutput::cut(std::uint64_t size) {
  steps_.push_back({Step::Kind::cut, size, ""});
  apply(steps_.back(), bytes_);
  return true;
}

bool RecordedOutput::publish() {
  steps_.push_back({Step::Kind::publish, 0, ""});
  return true;
}

bool RecordedOutput::sync() {
  if (++syncs_ == failing_sync_) {
    return false;
  }
  steps_.push_back({Step::Kind::sync, 0, ""});
  return true;
}

std::string afterPowerLoss(const std::vector<Step>& steps, std::size_t done, std::mt19937& random) {
  constexpr std::size_t sector = 512;
  std::size_t synced = done;
  while (synced > 0 && steps[synced - 1].kind != Step::Kind::sync) {
    --synced;
  }
  std::string file;
  for (std::size_t i = 0; i < synced; ++i) {
    RecordedOutput::apply(steps[i], file);
  }
  for (std::size_t i = synced; i < done; ++i) {
    if (steps[i].kind != Step::Kind::write) {
      if (random() % 2 == 0) {
        RecordedOutput::apply(steps[i], file);
      }
      continue;
    }
    // Each sector that the write touches has been written or not.
    const std::uint64_t end = steps[i].at + steps[i].bytes.size();
    for (std::uint64_t at = steps[i].at; at < end;) {
      const std::uint64_t next = std::min(end, (at / sector + 1) * sector);
      if (random() % 2 == 0) {
        const auto from = static_cast<std::size_t>(at - steps[i].at);
        RecordedOutput::apply({Step::Kind::write, at,
                               steps[i].bytes.substr(from, static_cast<std::size_t>(next - at))},
                              file);
      }
      at = next;
    }
  }
  return file;
}

}  // namespace mdf_tests
