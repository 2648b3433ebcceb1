#include "storage.h"

#include <array>

#include "../../mdf/framework/wire.h"

namespace mdf_writer {

std::uint64_t Storage::allocate(std::uint64_t bytes) {
  const std::uint64_t at = place();
  end_ = at + bytes;
  last_ = at;
  return at;
}

void Storage::giveBack(std::uint64_t at) {
  if (at == last_) {
    end_ = at;
    cut();
  }
}

std::size_t Storage::write(std::uint64_t at, const char* bytes, std::size_t count) {
  const std::size_t written = output_.write(at, bytes, count);
  succeeded(written == count);
  return written;
}

bool Storage::put(std::uint64_t at, std::uint64_t number) {
  std::array<char, sizeof number> bytes;
  mdf_v4_10::detail::storeLe(bytes.data(), number);
  return write(at, bytes.data(), bytes.size()) == bytes.size();
}

bool Storage::succeeded(bool success) {
  if (!success && cause_.empty()) {
    cause_ = output_.cause();
  }
  return success;
}

}  // namespace mdf_writer
