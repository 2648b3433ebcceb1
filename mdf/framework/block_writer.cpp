#include "block_writer.h"

#include <ostream>

namespace mdf_v4_10::detail {

char* BlockWriter::room(std::size_t count) {
  if (count > frame_size - used_) {
    finish();
  }
  char* at = frame_.data() + used_;
  used_ += count;
  return at;
}

void BlockWriter::header(const HeaderSection& header, UINT64 length, UINT64 link_count) {
  header.encode(room(HeaderSection::HEADER_SIZE), length, link_count);
}

void BlockWriter::headerAndLinks(const GENERALBLOCK& block) {
  header(block.header);
  numbers(block.links);
}

template <class Number>
void BlockWriter::numbers(const std::vector<Number>& values) {
  for (const Number value : values) {
    number(value);
  }
}

template void BlockWriter::numbers(const std::vector<LINK>& values);
template void BlockWriter::numbers(const std::vector<REAL>& values);

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
