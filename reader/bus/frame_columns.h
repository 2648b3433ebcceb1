#ifndef MDF_READER_BUS_FRAME_COLUMNS_H_
#define MDF_READER_BUS_FRAME_COLUMNS_H_

#include <cstddef>
#include <memory>

#include "../columns/batch.h"
#include "bus_frames.h"

namespace mdf_reader {

/// Frames as rows of columns: time, bus, frame, id, extended, direction, fd, brs, esi, error,
/// length and data, with the words that `mdf frames --format csv` has for them. What a frame does
/// not tell has no value.
class FrameColumns {
 public:
  FrameColumns();

  const TableHead& head() const { return *head_; }

  /// The next frames, so many at most; null when there are none.
  std::unique_ptr<const Batch> next(BusFrames& frames, std::size_t rows) const;

 private:
  static void add(const BusFrame& frame, std::vector<ColumnData>& columns);

  std::shared_ptr<const TableHead> head_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_FRAME_COLUMNS_H_
