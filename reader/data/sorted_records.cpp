#include "sorted_records.h"

#include <algorithm>

#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;

RecordSpan SortedRecords::from(std::uint64_t number, std::size_t most) {
  if (number >= most_) {
    return {};
  }
  const std::size_t size = hostSize(size_);
  const std::size_t wanted = hostSize(std::min<std::uint64_t>(most, most_ - number));
  std::size_t count = wanted;
  std::string_view stored;
  if (size > 0) {
    stored = data_.from(number * size_, size, wanted > SIZE_MAX / size ? SIZE_MAX : wanted * size);
    count = stored.size() / size;
  }
  if (count == 0) {
    return {};
  }
  const RecordSpan span{stored.data() + id_bytes_, size - id_bytes_, size, count, number, 1};
  return invalidation_ == nullptr ? span : joined(span);
}

std::uint64_t SortedRecords::count() {
  return size_ == 0 ? most_ : std::min(most_, data_.size() / size_);
}

/// Records with as many invalidation bytes as the first one has: all or, where the file lacks them,
/// none.
RecordSpan SortedRecords::joined(const RecordSpan& stored) {
  constexpr std::size_t most_bytes = std::size_t{1} << 18U;
  const std::size_t size = stored.size + invalidation_->at(stored.first).size();
  const std::size_t most = std::min(stored.count, std::max<std::size_t>(1, most_bytes / size));
  joined_.clear();
  std::size_t count = 0;
  for (; count < most; ++count) {
    const std::string_view invalidation = invalidation_->at(stored.first + count);
    if (stored.size + invalidation.size() != size) {
      break;
    }
    joined_ += stored.at(count);
    joined_ += invalidation;
  }
  return {joined_.data(), size, size, count, stored.first, 1};
}

}  // namespace mdf_reader
