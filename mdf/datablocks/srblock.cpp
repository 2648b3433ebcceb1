#include "srblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

SRBLOCK::SRBLOCK(UINT64 _cycleCount, REAL _interval, MDF_SR_SYNCTYPE_t _syncType, LINK _datablock,
                 LINK _nextSrblock)
    : GENERALBLOCK(MDF_SR_ID, SRBLOCK_SIZE, SR_BLOCK_LINKS_NUM) {
  setCycleCount(_cycleCount);
  setInterval(_interval);
  setSyncType(_syncType);
  setDatablock(_datablock);
  setNextSrblock(_nextSrblock);
}

// The nil links stay before the links read.
SRBLOCK::SRBLOCK(std::istream& is)
    : GENERALBLOCK(MDF_SR_ID, SRBLOCK_SIZE, SR_BLOCK_LINKS_NUM, LinksFollow()) {
  detail::readFixedBlock<SRBLOCK_SIZE>(is, *this, detail::srblock_fields,
                                       detail::ShortRead::left_as_read);
}

void SRBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "SRBLOCK");
  dump.line("block size = ", SRBLOCK_SIZE);
  dump.line("next sr block = ", getNextSrblock());
  dump.line("data block = ", getDatablock());
  dump.line("cycle count = ", sr_cycle_count);
  dump.line("interval = ", sr_interval);
  dump.line("sync type = ", getSyncType());
  dump.line("invalidationByteFlag = ", isValidationBytesFlag());
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const SRBLOCK& srb) {
  return detail::writeStoredBlock(os, srb, detail::srblock_fields);
}

}  // namespace mdf_v4_10
