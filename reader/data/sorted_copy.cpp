#include "sorted_copy.h"

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace mdf_reader {

namespace {

constexpr std::size_t longest_waiting = std::size_t{1} << 18U;
constexpr std::size_t all_waiting = std::size_t{48} << 20U;  // bytes of all groups

bool writeAt(int file, std::uint64_t offset, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
    offset += static_cast<std::uint64_t>(written);
  }
  return true;
}

}  // namespace

class SortedCopy::Cursor : public RecordCursor {
 public:
  Cursor(std::shared_ptr<const SortedCopy> copy, const Place& place, std::uint64_t count)
      : copy_(std::move(copy)), size_(place.record_bytes), begin_(place.begin), count_(count) {}

  RecordSpan next(std::size_t most) override {
    constexpr std::size_t most_bytes = std::size_t{1} << 18U;
    const std::size_t fit = std::max<std::size_t>(1, most_bytes / std::max<std::size_t>(1, size_));
    RecordSpan span{nullptr, size_, size_, std::min(most, fit), number_, 1};
    span.count = static_cast<std::size_t>(std::min<std::uint64_t>(span.count, rest()));
    const std::string_view bytes =
        copy_->bytesAt(begin_ + number_ * size_, span.count * size_, room_);
    if (bytes.size() < span.count * size_) {
      copy_->lost_(rest() * size_);
      count_ = number_;
      return {};
    }
    span.bytes = bytes.data();
    number_ += span.count;
    return span;
  }
  std::uint64_t rest() override { return count_ - number_; }
  void skip(std::uint64_t count) override { number_ += std::min(count, rest()); }

 private:
  std::shared_ptr<const SortedCopy> copy_;
  std::size_t size_;
  std::uint64_t begin_;
  std::uint64_t count_;
  std::uint64_t number_ = 0;
  std::string room_;
};

SortedCopy::SortedCopy(const std::vector<Part>& parts, Lost lost, const std::string& folder)
    : lost_(std::move(lost)),
      file_(namelessFile(folder)),
      most_waiting_(std::min(longest_waiting, all_waiting / parts.size())),
      is_whole_(file_.number() >= 0) {
  std::uint64_t end = 0;
  for (const Part& part : parts) {
    const std::uint64_t begin = end;
    end += part.record_bytes * part.records;
    places_.push_back({part.record_bytes, begin, end, begin, {}});
  }
}

void SortedCopy::put(Place& place, std::string_view record) {
  place.next += record.size();
  place.waiting += record;
  if (place.waiting.size() > most_waiting_) {
    flush(place);
  }
}

void SortedCopy::flush(Place& place) {
  is_whole_ =
      is_whole_ && writeAt(file_.number(), place.next - place.waiting.size(), place.waiting);
  place.waiting.clear();
}

bool SortedCopy::finish() {
  for (Place& place : places_) {
    flush(place);
    place.waiting.shrink_to_fit();
  }
  return is_whole_;
}

std::unique_ptr<RecordCursor> SortedCopy::read(std::size_t part, std::uint64_t most) {
  const Place& place = places_[part];
  const std::uint64_t there =
      place.record_bytes == 0 ? most : (place.next - place.begin) / place.record_bytes;
  return std::make_unique<Cursor>(shared_from_this(), place, std::min(most, there));
}

std::string_view SortedCopy::bytesAt(std::uint64_t offset, std::size_t count,
                                     std::string& room) const {
  room.resize(count);
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got =
        pread(file_.number(), room.data() + done, count - done, static_cast<off_t>(offset + done));
    if (got <= 0) {
      break;
    }
    done += static_cast<std::size_t>(got);
  }
  room.resize(done);
  return room;
}

}  // namespace mdf_reader
