#include "siblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

SIBLOCK::SIBLOCK() : GENERALBLOCK(MDF_SI_ID, SIBLOCK_SIZE, SI_BLOCK_LINKS_NUM) {}

SIBLOCK::SIBLOCK(MDF_SI_SOURCETYPE_t _sourceType, MDF_SI_BUSTYPE_t _busType, bool _simulatedSource,
                 LINK _txName, LINK _txPath)
    : SIBLOCK() {
  setSourceType(_sourceType);
  setBusType(_busType);
  setSimulatedSource(_simulatedSource);
  setNameTxblock(_txName);
  setPathTxblock(_txPath);
}

// The nil links stay before the links read.
SIBLOCK::SIBLOCK(std::istream& is)
    : GENERALBLOCK(MDF_SI_ID, SIBLOCK_SIZE, SI_BLOCK_LINKS_NUM, LinksFollow()) {
  detail::readFixedBlock<SIBLOCK_SIZE>(is, *this, detail::siblock_fields,
                                       detail::ShortRead::makes_bad);
}

void SIBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "SIBLOCK");
  dump.line("block size = ", SIBLOCK_SIZE);
  dump.line("tx name block = ", getNameTxblock());
  dump.line("tx path block = ", getPathTxblock());
  dump.line("comment block = ", getComment());
  dump.line("source type = ", si_type);
  dump.line("bus type = ", si_bus_type);
  dump.line("simulated = ", isSimulatedSource());
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const SIBLOCK& sib) {
  return detail::writeStoredBlock(os, sib, detail::siblock_fields);
}

}  // namespace mdf_v4_10
