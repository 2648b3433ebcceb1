#include "text.h"

#include <array>
#include <istream>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"

namespace mdf_v4_10::detail {

namespace {

UINT64 textBlockSize(const std::vector<UINT8>& data) {
  return HeaderSection::HEADER_SIZE + data.size();
}

}  // namespace

void setUpText(const char* text, std::size_t count, HeaderSection& header,
               std::vector<UINT8>& data) {
  std::vector<UINT8> bytes;
  bytes.reserve(count + 1);
  bytes.assign(text, text + count);
  bytes.push_back(0);
  data.swap(bytes);
  header.setLength(textBlockSize(data));
}

void readText(std::istream& is, HeaderSection& header, std::vector<UINT8>& data) {
  std::array<char, 8> identifier_and_reserved;
  readOrBad(is, identifier_and_reserved.data(), identifier_and_reserved.size());
  if (!is.good()) {
    return;
  }
  std::array<char, 8> length_bytes;
  readOrBad(is, length_bytes.data(), length_bytes.size());
  if (!is.good()) {
    return;
  }
  // The low 32 bits count, as a signed number.
  const auto length = static_cast<std::int32_t>(loadLe<UINT32>(length_bytes.data()));
  constexpr auto header_size = static_cast<std::int32_t>(HeaderSection::HEADER_SIZE);
  if (length <= header_size) {
    return;
  }
  // The link count field is not consumed: its 8 bytes become the first of the text.
  data.resize(static_cast<std::size_t>(length - header_size));
  readOrBad(is, reinterpret_cast<char*>(data.data()), data.size());
  header.setLength(textBlockSize(data));
}

std::ostream& writeText(std::ostream& os, const HeaderSection& header,
                        const std::vector<UINT8>& data) {
  Frame frame;
  BlockWriter out(os, frame);
  out.header(header, textBlockSize(data));
  out.bytes(data);
  return out.finish();
}

char printText(Dump& dump, const std::vector<UINT8>& data) {
  dump.line("block size = ", textBlockSize(data));
  dump.part("text data = ");
  dump.endLine();
  const std::size_t count = data.empty() ? 0 : data.size() - 1;
  dump.raw(data.data(), count);
  return count == 0 ? '\0' : static_cast<char>(data[count - 1]);
}

}  // namespace mdf_v4_10::detail
