#include "dgblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

DGBLOCK::DGBLOCK(LINK _nextdgblock, LINK _cgblock, LINK _data, MDF_DG_REC_ID_SIZE_t _id)
    : GENERALBLOCK(MDF_DG_ID, DGBLOCK_SIZE, DG_BLOCK_LINKS_NUM) {
  setNextDgblock(_nextdgblock);
  setFirstCgblock(_cgblock);
  setDatablock(_data);
  setRecordIdSize(_id);
}

// The nil links stay before the links read.
DGBLOCK::DGBLOCK(std::istream& is)
    : GENERALBLOCK(MDF_DG_ID, DGBLOCK_SIZE, DG_BLOCK_LINKS_NUM, LinksFollow()) {
  detail::readFixedBlock<DGBLOCK_SIZE>(is, *this, detail::dgblock_fields,
                                       detail::ShortRead::makes_bad);
}

void DGBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "DGBLOCK");
  dump.line("block size = ", DGBLOCK_SIZE);
  dump.line("next data group block = ", getNextDgblock());
  dump.line("first channel group block = ", getFirstCgblock());
  dump.line("data block = ", getDatablock());
  dump.line("comment block = ", getComment());
  dump.line("record ID size = ", dg_rec_id_size);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const DGBLOCK& dgb) {
  return detail::writeStoredBlock(os, dgb, detail::dgblock_fields);
}

}  // namespace mdf_v4_10
