#include "cgblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

CGBLOCK::CGBLOCK() : GENERALBLOCK(MDF_CG_ID, CGBLOCK_SIZE, CG_BLOCK_LINKS_NUM) {}

CGBLOCK::CGBLOCK(LINK _nextCgblock, CG_FLAGS_t _groupType, UINT64 _recordId, LINK _firstCnblock,
                 LINK _acqNameTxblock, LINK _acqSourceSiblock, LINK _firstSrblock,
                 UINT64 _cycleCount, CG_PATHSEPARATOR_t _pathSeparator, UINT32 _dataBytes,
                 UINT32 _invalidBytes)
    : CGBLOCK() {
  setup(_nextCgblock, _groupType, _recordId, _firstCnblock, _acqNameTxblock, _acqSourceSiblock,
        _firstSrblock, _cycleCount, _pathSeparator, _dataBytes, _invalidBytes);
}

// The nil links stay before the links read.
CGBLOCK::CGBLOCK(std::istream& is)
    : GENERALBLOCK(MDF_CG_ID, CGBLOCK_SIZE, CG_BLOCK_LINKS_NUM, LinksFollow()) {
  detail::readFixedBlock<CGBLOCK_SIZE>(is, *this, detail::cgblock_fields,
                                       detail::ShortRead::makes_bad);
}

void CGBLOCK::setup(LINK _nextCgblock, CG_FLAGS_t _groupType, UINT64 _recordId, LINK _firstCnblock,
                    LINK _acqNameTxblock, LINK _acqSourceSiblock, LINK _firstSrblock,
                    UINT64 _cycleCount, CG_PATHSEPARATOR_t _pathSeparator, UINT32 _dataBytes,
                    UINT32 _invalidBytes) {
  setNextCgblock(_nextCgblock);
  cg_flags = static_cast<UINT16>(_groupType);
  setRecordId(_recordId);
  setFirstCnblock(_firstCnblock);
  setAcqTxNameblock(_acqNameTxblock);
  setAcqSourceSiblock(_acqSourceSiblock);
  setFirstSrblock(_firstSrblock);
  setCycleCount(_cycleCount);
  setPathSeparator(_pathSeparator);
  setDataBytes(_dataBytes);
  setInvalidBytes(_invalidBytes);
}

void CGBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "CGBLOCK");
  dump.line("block size = ", CGBLOCK_SIZE);
  dump.line("next channel group block = ", getNextCgblock());
  dump.line("first channel block = ", getFirstCnblock());
  dump.line("acq name tx block = ", getAcqTxNameblock());
  dump.line("acq source si block = ", getAcqSourceSiblock());
  dump.line("first sr block = ", getFirstSrblock());
  dump.line("comment block = ", getComment());
  dump.line("record id = ", cg_record_id);
  dump.line("cycle cnt = ", cg_cycle_count);
  dump.part("flags : vlsd(", isVLSDChannelGroup());
  dump.part("), busEvent(", isBusEventGroup());
  dump.part("), plainBusEventChannel(", isPlainBusEventChannelGroup());
  dump.part(")");
  dump.endLine();
  dump.line("path separator = ", cg_path_separator);
  dump.line("size of data records = ", cg_data_bytes);
  dump.line("size of invalid bytes = ", cg_inval_bytes);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const CGBLOCK& cgb) {
  return detail::writeStoredBlock(os, cgb, detail::cgblock_fields);
}

}  // namespace mdf_v4_10
