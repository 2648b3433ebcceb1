#include "idblock.h"

#include <array>
#include <cstring>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

IDBLOCK::IDBLOCK() : GENERALBLOCK(MDF_ID_ID, IDBLOCK_SIZE, 0) {}

IDBLOCK::IDBLOCK(const char* _prog) : IDBLOCK() {
  std::memcpy(id_file, MDF_ID_FILE_STRING, sizeof id_file);
  std::memcpy(id_vers, MDF_ID_VERS_STRING, sizeof id_vers);
  std::memset(id_prog, ' ', sizeof id_prog);
  for (std::size_t i = 0; i < MDF_ID_PROG && _prog[i] != '\0'; ++i) {
    id_prog[i] = _prog[i];
  }
  id_ver = MDF_ID_VERS_NO;
}

IDBLOCK::IDBLOCK(std::istream& is) : IDBLOCK() {
  std::array<char, IDBLOCK_SIZE> bytes;
  detail::readOrBad(is, bytes.data(), bytes.size());
  if (is.good()) {
    detail::idblock_fields.take(bytes.data(), *this);
  }
}

void IDBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "IDBLOCK");
  dump.line("file identifier = ", id_file, sizeof id_file);
  dump.line("format identifier = ", id_vers, sizeof id_vers);
  dump.line("programm identfier = ", id_prog, sizeof id_prog);
  dump.line("version number = ", id_ver);
  dump.end();
}

std::string IDBLOCK::getKenn() const { return {id_file, sizeof id_file}; }

std::string IDBLOCK::getVers() const { return {id_vers, sizeof id_vers}; }

std::string IDBLOCK::getProg() const { return {id_prog, sizeof id_prog}; }

std::ostream& operator<<(std::ostream& os, const IDBLOCK& idb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.fields(detail::idblock_fields, idb);
  return out.finish();
}

}  // namespace mdf_v4_10
