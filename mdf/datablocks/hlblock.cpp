#include "hlblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

HLBLOCK::HLBLOCK(LINK _dl_first, bool _equalLength, DZBLOCK::DZ_ZIPTYPE_t _zipType)
    : GENERALBLOCK(MDF_HL_ID, HLBLOCK_SIZE, 0) {
  setFirstDlblock(_dl_first);
  setEqualLengthFlag(_equalLength);
  setZipType(_zipType);
}

HLBLOCK::HLBLOCK(std::istream& is) : GENERALBLOCK(MDF_HL_ID, HLBLOCK_SIZE, 0) {
  detail::readFixedBlock<HLBLOCK_SIZE>(is, *this, detail::hlblock_fields,
                                       detail::ShortRead::left_as_read);
}

void HLBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "HLBLOCK");
  dump.line("block size = ", HLBLOCK_SIZE);
  dump.line("first dl block = ", getFirstDlblock());
  dump.line("equal length = ", isEqualLengthFlag());
  dump.line("zip type = ", getZipType());
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const HLBLOCK& hlb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  // The link is written but not announced; deliberate.
  out.header(hlb.header, HLBLOCK::HLBLOCK_SIZE, 0);
  out.numbers(hlb.links);
  out.fields(detail::hlblock_fields, hlb);
  return out.finish();
}

}  // namespace mdf_v4_10
