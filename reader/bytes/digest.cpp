#include "digest.h"

#include <array>
#include <cstdint>

namespace mdf_reader {

Md5::Md5() { MD5Init(&context_); }

void Md5::add(std::string_view bytes) {
  MD5Update(&context_, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

std::string Md5::digest() {
  std::array<std::uint8_t, MD5_DIGEST_LENGTH> bytes{};
  MD5Final(bytes.data(), &context_);
  return {bytes.begin(), bytes.end()};
}

std::string hexDigest(std::string_view digest) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (const char character : digest) {
    const auto byte = static_cast<unsigned char>(character);
    text += {digits[byte >> 4U], digits[byte & 0xFU]};
  }
  return text;
}

}  // namespace mdf_reader
