#include "sample_ring.h"

#include <algorithm>
#include <string>
#include <utility>

namespace mdf_tools {

std::int64_t SampleRing::timeOf(const Entry& entry) {
  return std::visit([](const auto& one) { return one.nanoseconds; }, entry);
}

std::size_t SampleRing::bytesOf(const Entry& entry) {
  std::size_t bytes = sizeof entry;
  if (const auto* const sample = std::get_if<Sample>(&entry)) {
    bytes += sample->frame ? sizeof(HeldFrame) + sample->frame->data.size() : 0;
    bytes += sample->values.size() * sizeof sample->values[0] + sample->is_missing.size() / 8;
    for (const std::string& text : sample->texts) {
      bytes += sizeof(std::string) + text.size();
    }
  } else {
    bytes += std::get<mdf_writer::Event>(entry).name.size();
  }
  return bytes;
}

void SampleRing::add(Entry entry) {
  bytes_ += bytesOf(entry);
  newest_ = std::max(newest_, timeOf(entry));
  entries_.push_back(std::move(entry));
  while (isOld(begin())) {
    dropFirst();
  }
  while (bytes_ > limit_ && entries_.size() > 1) {
    dropped_ += std::holds_alternative<Sample>(entries_.front()) ? 1U : 0U;
    last_dropped_ = begin();
    dropFirst();
  }
}

void SampleRing::dropFirst() {
  bytes_ -= bytesOf(entries_.front());
  entries_.pop_front();
}

std::uint64_t SampleRing::missing() const {
  return dropped_ > 0 && !isOld(last_dropped_) ? dropped_ : 0;
}

std::deque<SampleRing::Entry> SampleRing::take() {
  bytes_ = 0;
  dropped_ = 0;
  return std::exchange(entries_, {});
}

}  // namespace mdf_tools
