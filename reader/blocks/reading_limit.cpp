#include "reading_limit.h"

namespace mdf_reader {

bool ReadingLimit::allows(const RawBlock& block, std::uint64_t bytes) {
  if (bytes <= left_) {
    left_ -= bytes;
    return true;
  }
  if (!is_reported_) {
    is_reported_ = true;
    report_({Code::work_limited, block.offset,
             "expected blocks that do not overlap, found several times the file's bytes in "
             "overlapping blocks; some of them are skipped"});
  }
  return false;
}

}  // namespace mdf_reader
