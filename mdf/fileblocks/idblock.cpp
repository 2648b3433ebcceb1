#include "idblock.h"

#include <algorithm>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"

namespace mdf_v4_10 {

IDBLOCK::IDBLOCK() : GENERALBLOCK(MDF_ID_ID, IDBLOCK_SIZE, 0) {}

IDBLOCK::IDBLOCK(const char* _prog) : IDBLOCK() {
  std::copy_n(MDF_ID_FILE_STRING, MDF_ID_FILE, id_file.begin());
  std::copy_n(MDF_ID_VERS_STRING, MDF_ID_VERS, id_vers.begin());
  id_prog.fill(' ');
  for (std::size_t i = 0; i < MDF_ID_PROG && _prog[i] != '\0'; ++i) {
    id_prog[i] = _prog[i];
  }
  id_ver = MDF_ID_VERS_NO;
}

IDBLOCK::IDBLOCK(std::istream& is) : IDBLOCK() {
  std::array<char, IDBLOCK_SIZE> bytes;
  detail::readOrBad(is, bytes.data(), bytes.size());
  if (is.good()) {
    idblock_fields.take(bytes.data(), *this);
  }
}

void IDBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "IDBLOCK");
  dump.line("file identifier = ", id_file);
  dump.line("format identifier = ", id_vers);
  dump.line("programm identfier = ", id_prog);
  dump.line("version number = ", id_ver);
  dump.end();
}

std::string IDBLOCK::getKenn() const { return {id_file.data(), id_file.size()}; }

std::string IDBLOCK::getVers() const { return {id_vers.data(), id_vers.size()}; }

std::string IDBLOCK::getProg() const { return {id_prog.data(), id_prog.size()}; }

std::ostream& operator<<(std::ostream& os, const IDBLOCK& idb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.fields(idblock_fields, idb);
  return out.finish();
}

}  // namespace mdf_v4_10
