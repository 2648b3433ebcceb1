#include "block_writer.h"

#include <ostream>

namespace mdf_v4_10::detail {

void BlockWriter::bytes(const std::vector<UINT8>& bytes) {
  if (bytes.empty()) {
    return;
  }
  if (bytes.size() <= frame_size - used_) {
    std::memcpy(frame_.data() + used_, bytes.data(), bytes.size());
    used_ += bytes.size();
    return;
  }
  finish();
  os_.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

std::ostream& BlockWriter::finish() {
  if (used_ != 0) {
    os_.write(frame_.data(), static_cast<std::streamsize>(used_));
    used_ = 0;
  }
  return os_;
}

}  // namespace mdf_v4_10::detail
