#include "reading_limit.h"

namespace mdf_reader {

bool ReadingLimit::allows(const RawBlock& block, std::uint64_t bytes) {
  if (bytes <= left_) {
    left_ -= bytes;
    return true;
  }
  if (!is_reported_) {
    is_reported_ = true;
    report_({block.offset,
             "expected blocks that lie beside one another, found several times the file's bytes in "
             "blocks that overlap; not all of them are gone through"});
  }
  return false;
}

}  // namespace mdf_reader
