#include "deflater.h"

#include <libdeflate.h>

#include <algorithm>

namespace mdf_writer {

Deflater::Deflater(int level)
    : compressor_(libdeflate_alloc_compressor(std::clamp(level, 1, 12)),
                  libdeflate_free_compressor) {}

std::size_t Deflater::pack(std::string_view data, std::uint32_t row_bytes,
                           std::vector<char>& packed) {
  if (compressor_ == nullptr) {
    return 0;
  }
  const char* bytes = data.data();
  if (row_bytes > 0) {
    transpose(data, row_bytes, columns_);
    bytes = columns_.data();
  }
  packed.resize(std::max(packed.size(), data.size()));
  return libdeflate_zlib_compress(compressor_.get(), bytes, data.size(), packed.data(),
                                  data.size());
}

void transpose(std::string_view rows, std::size_t row_bytes, std::vector<char>& columns) {
  columns.resize(std::max(columns.size(), rows.size()));
  const std::size_t height = rows.size() / row_bytes;
  // Some rows at a time, which stay in the processor's cache while each column takes its bytes.
  constexpr std::size_t room = std::size_t{1} << 14U;
  const std::size_t at_once = std::max<std::size_t>(1, room / row_bytes);
  for (std::size_t begin = 0; begin < height; begin += at_once) {
    const std::size_t end = std::min(height, begin + at_once);
    for (std::size_t column = 0; column < row_bytes; ++column) {
      char* const to = columns.data() + column * height;
      for (std::size_t row = begin; row < end; ++row) {
        to[row] = rows[row * row_bytes + column];
      }
    }
  }
  const std::size_t whole = height * row_bytes;
  std::copy(rows.begin() + static_cast<std::ptrdiff_t>(whole), rows.end(),
            columns.begin() + static_cast<std::ptrdiff_t>(whole));
}

}  // namespace mdf_writer
