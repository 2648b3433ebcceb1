#include "file_buffer.h"

#include <cstddef>
#include <string_view>

namespace mdf_reader {

FileBuffer::int_type FileBuffer::underflow() {
  const std::string_view bytes = file_.bytesAt(end_);
  if (bytes.empty()) {
    return traits_type::eof();
  }
  // A get area is never written to without pbackfail(), which this buffer leaves refusing.
  char* begin = const_cast<char*>(bytes.data());
  setg(begin, begin, begin + bytes.size());
  end_ += bytes.size();
  return traits_type::to_int_type(*begin);
}

std::streamsize FileBuffer::xsgetn(char* bytes, std::streamsize count) {
  const std::uint64_t begin = position();
  const std::size_t got = file_.read(begin, bytes, static_cast<std::size_t>(count));
  goTo(begin + got);
  return static_cast<std::streamsize>(got);
}

FileBuffer::pos_type FileBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                         std::ios_base::openmode) {
  std::uint64_t base = 0;
  if (from == std::ios_base::cur) {
    base = position();
  } else if (from == std::ios_base::end) {
    base = file_.size();
  }
  const std::uint64_t target = base + static_cast<std::uint64_t>(offset);
  if (static_cast<off_type>(target) < 0) {
    return pos_type(off_type(-1));
  }
  goTo(target);
  return pos_type(static_cast<off_type>(target));
}

FileBuffer::pos_type FileBuffer::seekpos(pos_type position, std::ios_base::openmode which) {
  return seekoff(off_type(position), std::ios_base::beg, which);
}

std::uint64_t FileBuffer::position() const {
  return end_ - static_cast<std::uint64_t>(egptr() - gptr());
}

void FileBuffer::goTo(std::uint64_t position) {
  setg(nullptr, nullptr, nullptr);
  end_ = position;
}

}  // namespace mdf_reader
