#include "header_section.h"

#include <array>
#include <ostream>

#include "block_writer.h"
#include "dump.h"
#include "wire.h"

namespace mdf_v4_10 {

void HeaderSection::readFromByteArray(const std::uint8_t* pdata) {
  detail::Decoder in(reinterpret_cast<const char*>(pdata), HEADER_SIZE);
  in.skip(sizeof mdfID.idInternal + sizeof reserved);
  in.take(length);
  in.take(link_count);
}

void HeaderSection::print(std::ostream& os) const {
  std::array<char, sizeof mdfID.idInternal> id_bytes;
  detail::storeLe(id_bytes.data(), mdfID.idInternal);

  detail::Dump dump(os, "HeaderSection");
  dump.line("mdfID = ", id_bytes.data(), id_bytes.size());
  dump.line("length = ", length);
  dump.line("link_count = ", link_count);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const HeaderSection& header) {
  std::array<char, HeaderSection::HEADER_SIZE> bytes;
  detail::putHeader(bytes.data(), header, header.length, header.link_count);
  return os.write(bytes.data(), bytes.size());
}

}  // namespace mdf_v4_10
