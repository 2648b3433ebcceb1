#include "fhblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"
#include "timestamp.h"

namespace mdf_v4_10 {

FHBLOCK::FHBLOCK(LINK _mdBlock, std::uint64_t _ts, std::int16_t _utcOffset, LINK _nextFHBlock)
    : GENERALBLOCK(MDF_FH_ID, FHBLOCK_SIZE, FH_BLOCK_LINKS_NUM),
      fh_time_ns(_ts),
      fh_tz_offset_min(_utcOffset),
      fh_time_flags(detail::time_offsets_valid) {
  setMDBlock(_mdBlock);
  setNextFHBlock(_nextFHBlock);
}

FHBLOCK::FHBLOCK(std::istream& is) : GENERALBLOCK(MDF_FH_ID) {
  detail::readFixedBlock<FHBLOCK_SIZE>(is, *this, detail::fhblock_fields,
                                       detail::ShortRead::left_as_read);
}

void FHBLOCK::setDST(bool isDST) { fh_dst_offset_min = detail::dstOffset(isDST); }

void FHBLOCK::setDateAndTime(std::tm _t) {
  detail::storeCalendarTime(_t, fh_time_ns, fh_dst_offset_min);
}

void FHBLOCK::getDateAndTime(std::tm& _t) const {
  detail::loadCalendarTime(fh_time_ns, fh_dst_offset_min, _t);
}

void FHBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "FHBLOCK");
  dump.line("block size = ", FHBLOCK_SIZE);
  dump.line("next file history block (pointer) = ", getNextFHBlock());
  dump.line("file comment (pointer) = ", getMDBlock());
  dump.line("time = ", fh_time_ns);
  dump.line("UTC time offset = ", fh_tz_offset_min);
  dump.line("DST time offset = ", fh_dst_offset_min);
  dump.line("time flags = ", fh_time_flags);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const FHBLOCK& fhb) {
  return detail::writeStoredBlock(os, fhb, detail::fhblock_fields);
}

}  // namespace mdf_v4_10
