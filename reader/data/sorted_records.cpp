#include "sorted_records.h"

#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;

std::optional<std::string_view> SortedRecords::at(std::uint64_t number) {
  if (number >= most_) {
    return std::nullopt;
  }
  const std::string_view stored = data_.at(number * size_, hostSize(size_));
  if (stored.size() < size_) {
    return std::nullopt;
  }
  const std::string_view record = stored.substr(id_bytes_);
  if (invalidation_ == nullptr) {
    return record;
  }
  joined_.assign(record);
  joined_ += invalidation_->at(number);
  return joined_;
}

}  // namespace mdf_reader
