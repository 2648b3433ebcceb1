#ifndef MDF_READER_DATA_RECORD_SPAN_H_
#define MDF_READER_DATA_RECORD_SPAN_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace mdf_reader {

/// Records of one channel group that stand together in memory, without their record ids.
struct RecordSpan {
  const char* bytes = nullptr;  ///< the first one's
  std::size_t size = 0;         ///< bytes of each
  std::size_t step = 0;         ///< from one to the next
  std::size_t count = 0;
  std::uint64_t first = 0;   ///< the number of the first one in its group, from 0 on
  std::uint64_t stride = 1;  ///< from one number to the next

  std::string_view at(std::size_t index) const { return {bytes + index * step, size}; }

  std::uint64_t number(std::size_t index) const { return first + index * stride; }

  /// Some of them.
  RecordSpan part(std::size_t begin, std::size_t how_many) const {
    return {bytes + begin * step, size, step, how_many, number(begin), stride};
  }

  /// Each so many-th of them, from the first one on.
  RecordSpan every(std::size_t times) const {
    const std::size_t chosen = count == 0 ? 0 : (count - 1) / times + 1;
    return {bytes, size, chosen > 1 ? step * times : step, chosen, first, stride * times};
  }
};

/// A single record.
inline RecordSpan oneRecord(std::string_view record, std::uint64_t number) {
  return {record.data(), record.size(), record.size(), 1, number, 1};
}

/// Reads the records of one channel group in order.
class RecordCursor {
 public:
  RecordCursor() = default;
  virtual ~RecordCursor() = default;
  RecordCursor(const RecordCursor&) = delete;
  RecordCursor& operator=(const RecordCursor&) = delete;

  /// The next records: at least one and at most so many; none at the end. They last until the next
  /// call.
  virtual RecordSpan next(std::size_t most) = 0;

  /// The record of any number, without going there; nothing where it cannot be had so.
  virtual std::optional<std::string_view> at(std::uint64_t /*number*/) { return std::nullopt; }

  /// Whether that may unzip a block for each record.
  virtual bool isZipped() { return false; }

  /// How many records are still to come.
  virtual std::uint64_t rest() = 0;

  /// Leaves out records. Those that stand side by side are not read for it.
  virtual void skip(std::uint64_t count) = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_DATA_RECORD_SPAN_H_
