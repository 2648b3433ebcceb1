#include "attachment_blocks.h"

namespace mdf_tests {

std::uint64_t addAttachment(FileBuilder& file, const AttachmentSpec& spec) {
  const std::uint64_t name = spec.name.empty() ? 0 : file.text(spec.name);
  const std::uint64_t mime_type = spec.mime_type.empty() ? 0 : file.text(spec.mime_type);
  return file.add("AT", {0, name, mime_type, 0},
                  u16(spec.flags) + zeros(6) + spec.digest +
                      u64(spec.original_size, spec.data.size()) + spec.data);
}

std::string zippedAbc() {
  // One stored block: header, length and its complement, the bytes, their Adler-32 sum.
  return Bytes().u8s({0x78, 0x01, 0x01, 3, 0, 0xFC, 0xFF}).text("abc").u8s({0x02, 0x4D, 1, 0x27});
}

std::string digestOfAbc() {
  return Bytes().u8s({0x90, 0x01, 0x50, 0x98, 0x3C, 0xD2, 0x4F, 0xB0, 0xD6, 0x96, 0x3F, 0x7D, 0x28,
                      0xE1, 0x7F, 0x72});
}

}  // namespace mdf_tests
