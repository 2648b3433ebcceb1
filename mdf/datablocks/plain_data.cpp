#include "plain_data.h"

#include <array>
#include <cstdint>
#include <istream>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"

namespace mdf_v4_10::detail {

namespace {

UINT64 plainDataSize(const std::vector<UINT8>& data) {
  return HeaderSection::HEADER_SIZE + UINT64{data.size()};
}

}  // namespace

void readSizedData(std::istream& is, UINT64 size, std::vector<UINT8>& data) {
  data.resize(hostSize(size));
  readOrBad(is, reinterpret_cast<char*>(data.data()), data.size());
}

void readPlainData(std::istream& is, HeaderSection& header, std::vector<UINT8>& data) {
  std::array<char, HeaderSection::HEADER_SIZE> header_bytes;
  is.read(header_bytes.data(), header_bytes.size());
  if (!is.good()) {
    return;
  }
  header.readFromByteArray(reinterpret_cast<const std::uint8_t*>(header_bytes.data()));
  // A length below the header's size wraps around, and sizing the data fails.
  readSizedData(is, header.length - HeaderSection::HEADER_SIZE, data);
}

std::ostream& writePlainData(std::ostream& os, const HeaderSection& header,
                             const std::vector<UINT8>& data) {
  Frame frame;
  BlockWriter out(os, frame);
  out.header(header, plainDataSize(data));
  out.bytes(data);
  return out.finish();
}

void printPlainData(std::ostream& os, const char* name, const std::vector<UINT8>& data) {
  Dump dump(os, name);
  dump.line("block size = ", plainDataSize(data));
  dump.line("data size = ", data.size());
  dump.hexDump(data);
  dump.end();
}

}  // namespace mdf_v4_10::detail
