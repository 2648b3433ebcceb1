#include "hdblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"
#include "timestamp.h"

namespace mdf_v4_10 {

HDBLOCK::HDBLOCK(LINK _fhFirstBlock, LINK _dgFirstBlock, std::uint64_t _ts, std::int16_t _utcOffset,
                 MDF_HD_TIME_QUALITY_t _tq, REAL /*start_angle_rad*/, REAL /*start_distance_m*/)
    : GENERALBLOCK(MDF_HD_ID, HDBLOCK_SIZE, HD_BLOCK_LINKS_NUM),
      hd_start_time_ns(_ts),
      hd_tz_offset_min(_utcOffset),
      hd_time_flags(detail::time_offsets_valid),
      hd_time_class(static_cast<UINT8>(_tq)) {
  setFHFirstblock(_fhFirstBlock);
  setDGFirstblock(_dgFirstBlock);
}

HDBLOCK::HDBLOCK(std::istream& is) : GENERALBLOCK(MDF_HD_ID) {
  detail::readFixedBlock<HDBLOCK_SIZE>(is, *this, detail::hdblock_fields,
                                       detail::ShortRead::left_as_read);
}

void HDBLOCK::setDST(bool isDST) { hd_dst_offset_min = detail::dstOffset(isDST); }

void HDBLOCK::setDateAndTime(std::tm _t) {
  detail::storeCalendarTime(_t, hd_start_time_ns, hd_dst_offset_min);
}

void HDBLOCK::getDateAndTime(std::tm& _t) const {
  detail::loadCalendarTime(hd_start_time_ns, hd_dst_offset_min, _t);
}

void HDBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "HDBLOCK");
  dump.line("block size = ", HDBLOCK_SIZE);
  dump.line("first data group block (pointer) = ", getDGFirstblock());
  dump.line("first file history block (pointer) = ", getFHFirstblock());
  dump.line("first channel hierarchy block (pointer) = ", getCHFirstblock());
  dump.line("first attachement block (pointer) = ", getATFirstblock());
  dump.line("first event block (pointer) = ", getEVFirstblock());
  dump.line("file comment (pointer) = ", getMDCommentblock());
  dump.line("start time = ", hd_start_time_ns);
  dump.line("UTC time offset = ", hd_tz_offset_min);
  dump.line("DST time offset = ", hd_dst_offset_min);
  dump.line("time flags = ", hd_time_flags);
  dump.line("time quality class = ", hd_time_class);
  dump.line("flags = ", hd_flags);
  dump.line("start angle = ", hd_start_angle_rad);
  dump.line("start distance = ", hd_start_distance_m);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const HDBLOCK& hdb) {
  return detail::writeStoredBlock(os, hdb, detail::hdblock_fields);
}

}  // namespace mdf_v4_10
