#include "data_blocks.h"

namespace mdf_tests {

namespace {

/// The check sum of a zlib stream.
std::uint32_t adler32(const std::string& bytes) {
  constexpr std::uint32_t base = 65521;
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const char byte : bytes) {
    a = (a + static_cast<unsigned char>(byte)) % base;
    b = (b + a) % base;
  }
  return (b << 16U) | a;
}

std::vector<std::string> piecesOf(const std::string& bytes, std::size_t size) {
  std::vector<std::string> pieces;
  for (std::size_t at = 0; at < bytes.size(); at += size) {
    pieces.push_back(bytes.substr(at, size));
  }
  return pieces;
}

std::uint64_t addNumberedList(FileBuilder& file, std::vector<std::uint64_t> links,
                              std::uint8_t flags, const std::vector<std::uint64_t>& numbers) {
  const std::string contents = u8(flags, 0, 0, 0) + u32(links.size()) +
                               listed(std::vector<std::int64_t>(numbers.begin(), numbers.end()));
  links.insert(links.begin(), 0);
  return file.add("DL", links, contents);
}

}  // namespace

std::string storedStream(const std::string& bytes, std::size_t piece) {
  Bytes stream;
  stream.u8s({0x78, 0x01});
  std::vector<std::string> pieces = piecesOf(bytes, piece);
  if (pieces.empty()) {
    pieces.emplace_back();
  }
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const auto size = static_cast<std::uint16_t>(pieces[i].size());
    stream.u8(i + 1 == pieces.size() ? 1 : 0).u16(size);
    stream.u16(static_cast<std::uint16_t>(0xFFFF - size)).text(pieces[i]);
  }
  const std::uint32_t sum = adler32(bytes);
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    stream.u8(static_cast<std::uint8_t>((sum >> shift) & 0xFFU));
  }
  return stream;
}

std::string transposed(const std::string& bytes, std::size_t columns) {
  const std::size_t rows = bytes.size() / columns;
  std::string result;
  for (std::size_t column = 0; column < columns; ++column) {
    for (std::size_t row = 0; row < rows; ++row) {
      result += bytes[row * columns + column];
    }
  }
  return result + bytes.substr(rows * columns);
}

std::string zippedZeros(std::size_t count) { return storedStream(std::string(count, '\0')); }

std::string zippedFields(std::uint64_t original_size, const std::string& stream,
                         const std::string& type, unsigned zip_type, std::uint32_t columns) {
  return type + u8(zip_type, 0) + u32(columns) + u64(original_size, stream.size()) + stream;
}

std::uint64_t addZipped(FileBuilder& file, const std::string& type, const std::string& bytes,
                        std::uint32_t columns) {
  const bool is_transposed = columns != 0;
  const std::string stream = storedStream(is_transposed ? transposed(bytes, columns) : bytes);
  return file.add("DZ", {},
                  zippedFields(bytes.size(), stream, type, is_transposed ? 1 : 0, columns));
}

std::uint64_t addList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                      std::uint64_t next) {
  const std::vector<std::uint64_t> offsets(blocks.size(), 0);
  const std::uint64_t list = addNumberedList(file, blocks, 0, offsets);
  file.link(list, 0, next);
  return list;
}

std::uint64_t addEqualList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                           std::uint64_t length) {
  return addNumberedList(file, blocks, 1, {length});
}

std::uint64_t addOffsetList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                            const std::vector<std::uint64_t>& offsets) {
  return addNumberedList(file, blocks, 0, offsets);
}

std::uint64_t addValueList(FileBuilder& file, const ValueListSpec& spec) {
  const std::uint32_t invalidation_flag = spec.invalidation.empty() ? 0 : 0x80000000U;
  std::vector<std::uint64_t> links = {0};
  links.insert(links.end(), spec.data.begin(), spec.data.end());
  links.insert(links.end(), spec.invalidation.begin(), spec.invalidation.end());
  const bool is_equal = spec.equal_count != 0;
  return file.add("LD", links,
                  u32(invalidation_flag | (is_equal ? 1U : 0U), spec.data.size()) +
                      listed(std::vector<std::int64_t>(spec.offsets.begin(), spec.offsets.end())) +
                      (is_equal ? u64(spec.equal_count) : ""));
}

std::uint64_t addHeaderList(FileBuilder& file, std::uint64_t list, std::uint16_t flags,
                            std::uint8_t zip_type) {
  return file.add("HL", {list}, u16(flags) + u8(zip_type) + zeros(5));
}

std::vector<std::uint64_t> addPieces(FileBuilder& file, const std::string& type,
                                     const std::string& bytes, std::size_t size) {
  std::vector<std::uint64_t> blocks;
  for (const std::string& piece : piecesOf(bytes, size)) {
    blocks.push_back(file.add(type, {}, piece));
  }
  return blocks;
}

std::vector<std::uint64_t> addZippedPieces(FileBuilder& file, const std::string& type,
                                           const std::string& bytes, std::size_t size,
                                           std::uint32_t columns) {
  std::vector<std::uint64_t> blocks;
  for (const std::string& piece : piecesOf(bytes, size)) {
    blocks.push_back(addZipped(file, type, piece, columns));
  }
  return blocks;
}

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
