#ifndef MDF_READER_BYTES_SHORT_COPY_H_
#define MDF_READER_BYTES_SHORT_COPY_H_

#include <cstddef>
#include <cstring>
#include <string_view>

namespace mdf_reader {

/// Copies bytes, most often some 20 of them: a call would take longer than these do.
inline void copyShort(std::string_view from, char* to) {
  constexpr std::size_t step = 16;
  const std::size_t size = from.size();
  if (size >= step && size <= 2 * step) {
    std::memcpy(to, from.data(), step);
    std::memcpy(to + size - step, from.data() + size - step, step);
  } else if (size != 0) {  // there may be no place for nothing
    std::memcpy(to, from.data(), size);
  }
}

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_SHORT_COPY_H_
