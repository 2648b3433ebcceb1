#include "inflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <new>

namespace mdf_tools {

namespace {

constexpr std::uint64_t most_from_a_byte = 1032;

using Decompressor =
    std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;

}  // namespace

Inflated inflate(std::string_view stream, std::uint64_t stated_size) {
  const Decompressor decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  if (!decompressor) {
    throw std::bad_alloc();
  }
  const std::uint64_t possible = stream.size() * most_from_a_byte;
  Inflated result{Inflating::broken,
                  std::string(static_cast<std::size_t>(std::min(stated_size, possible)), '\0')};
  std::size_t size = 0;
  const libdeflate_result outcome =
      libdeflate_zlib_decompress(decompressor.get(), stream.data(), stream.size(),
                                 result.bytes.data(), result.bytes.size(), &size);
  if (outcome == LIBDEFLATE_SUCCESS) {
    result.state = size == stated_size ? Inflating::fine : Inflating::too_short;
  } else if (outcome == LIBDEFLATE_INSUFFICIENT_SPACE) {
    result.state = Inflating::too_long;
    size = 0;
  } else {
    size = 0;
  }
  result.bytes.resize(size);
  return result;
}

std::string transposedBack(std::string_view bytes, std::uint64_t columns) {
  std::string rows(bytes);
  if (columns < 2 || columns > bytes.size()) {
    return rows;
  }
  const auto width = static_cast<std::size_t>(columns);
  const std::size_t height = bytes.size() / width;
  for (std::size_t column = 0; column < width; ++column) {
    for (std::size_t row = 0; row < height; ++row) {
      rows[row * width + column] = bytes[column * height + row];
    }
  }
  return rows;
}

}  // namespace mdf_tools
