#ifndef MDF_READER_DATA_SORTED_RECORDS_H_
#define MDF_READER_DATA_SORTED_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "data_stream.h"
#include "invalidation_data.h"
#include "record_span.h"

namespace mdf_reader {

/// The records of a channel group that follow one another, with nothing but record ids between
/// them.
class SortedRecords {
 public:
  /// @param most the most records that there are, whatever the data holds.
  /// @param size bytes of each in the data, which may be 0.
  SortedRecords(DataStream& data, std::uint64_t most, std::uint64_t size, unsigned id_bytes)
      : data_(data), most_(most), size_(size), id_bytes_(id_bytes) {}

  /// Appends to each record its invalidation bytes, where they stand apart.
  void join(std::unique_ptr<InvalidationData> invalidation) {
    invalidation_ = std::move(invalidation);
  }

  std::uint64_t most() const { return most_; }

  /// How many records there are. It looks for all blocks of the data.
  std::uint64_t count();

  /// Whether records may be asked for in any order.
  bool isInAnyOrder() const { return invalidation_ == nullptr; }

  /// Whether they are in zipped blocks, as far as the first one tells.
  bool isZipped() { return data_.isZipped(); }

  /// The records from a number on, which is counted from 0: at least one and at most so many; none
  /// after the last one. Numbers go up. The bytes last until the next call.
  RecordSpan from(std::uint64_t number, std::size_t most);

  /// The record of a number; nothing after the last one.
  std::optional<std::string_view> at(std::uint64_t number) {
    const RecordSpan span = from(number, 1);
    return span.count == 0 ? std::nullopt : std::optional(span.at(0));
  }

 private:
  RecordSpan joined(const RecordSpan& stored);

  DataStream& data_;
  std::uint64_t most_;
  std::uint64_t size_;
  unsigned id_bytes_;
  std::unique_ptr<InvalidationData> invalidation_;
  std::string joined_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_SORTED_RECORDS_H_
