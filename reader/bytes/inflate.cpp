#include "inflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;

namespace {

constexpr std::uint64_t most_from_a_byte = 1032;

using Decompressor =
    std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)>;

/// Tries a buffer of one size; a stream that does not fit is `too_long`.
Inflated inflateInto(libdeflate_decompressor* decompressor, std::string_view stream,
                     std::size_t room, std::string bytes) {
  bytes.resize(room);
  Inflated result{Inflating::broken, std::move(bytes)};
  std::size_t size = 0;
  const libdeflate_result outcome = libdeflate_zlib_decompress(
      decompressor, stream.data(), stream.size(), result.bytes.data(), room, &size);
  if (outcome == LIBDEFLATE_SUCCESS) {
    result.state = size == room ? Inflating::fine : Inflating::too_short;
  } else if (outcome == LIBDEFLATE_INSUFFICIENT_SPACE) {
    result.state = Inflating::too_long;
  }
  result.bytes.resize(outcome == LIBDEFLATE_SUCCESS ? size : 0);
  return result;
}

}  // namespace

Inflated inflate(std::string_view stream, std::uint64_t stated_size, std::string room_to_use) {
  const Decompressor decompressor(libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  if (!decompressor) {
    throw std::bad_alloc();
  }
  // The buffer grows as needed: a stated size may lie.
  constexpr std::uint64_t usual_from_a_byte = 16;
  constexpr std::uint64_t growth = 8;
  const std::uint64_t most = std::min(stated_size, stream.size() * most_from_a_byte);
  std::uint64_t room = std::min(most, stream.size() * usual_from_a_byte);
  Inflated result = inflateInto(decompressor.get(), stream, hostSize(room), std::move(room_to_use));
  while (result.state == Inflating::too_long && room < most) {
    room = std::min(most, room * growth);
    result = inflateInto(decompressor.get(), stream, hostSize(room), std::move(result.bytes));
  }
  if (result.state == Inflating::fine && room != stated_size) {
    result.state = Inflating::too_short;
  }
  return result;
}

void transposeBack(std::string_view bytes, std::uint64_t columns, std::string& rows) {
  if (columns < 2 || columns > bytes.size()) {
    rows = bytes;
    return;
  }
  const auto width = static_cast<std::size_t>(columns);
  const std::size_t height = bytes.size() / width;
  rows.resize(bytes.size());
  // Some rows at a time, which stay in the processor's cache while each column adds its bytes.
  constexpr std::size_t room = std::size_t{1} << 14U;
  const std::size_t at_once = std::max<std::size_t>(1, room / width);
  for (std::size_t begin = 0; begin < height; begin += at_once) {
    const std::size_t end = std::min(height, begin + at_once);
    for (std::size_t column = 0; column < width; ++column) {
      const char* const from = bytes.data() + column * height;
      char* const to = rows.data() + column;
      for (std::size_t row = begin; row < end; ++row) {
        to[row * width] = from[row];
      }
    }
  }
  std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(width * height), bytes.end(),
            rows.begin() + static_cast<std::ptrdiff_t>(width * height));
}

}  // namespace mdf_reader
