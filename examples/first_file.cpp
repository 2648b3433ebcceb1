#include <fstream>

#include "mdf_v4_10.h"

using namespace mdf_v4_10;

int main() {
  // Each block after the header gets a place on an 8-byte boundary.
  LINK end = IDBLOCK::IDBLOCK_SIZE + HDBLOCK::HDBLOCK_SIZE;
  const auto place = [&end](std::uint64_t size) {
    const LINK at = end;
    end += static_cast<LINK>((size + 7) / 8 * 8);
    return at;
  };
  const TXBLOCK name("speed", 5);
  const LINK dg_at = place(DGBLOCK::DGBLOCK_SIZE), cg_at = place(CGBLOCK::CGBLOCK_SIZE),
             cn_at = place(CNBLOCK::CNBLOCK_CONSTANT_SIZE), name_at = place(name.getSize()),
             dt_at = end;

  HDBLOCK hd(0, dg_at, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  DGBLOCK dg(0, cg_at, dt_at, DGBLOCK::DG_WITHOUT);
  CGBLOCK cg(0, CGBLOCK::no_flag, 0, cn_at, 0, 0, 0, 0, CGBLOCK::CG_PATHSEPARATOR_NONE, 1, 0);
  CNBLOCK cn(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
             CNBLOCK::CN_DATATYPE_UINT_LE, 0, name_at, 0);
  cn.setBitCount(8);
  DTBLOCK dt;
  for (std::uint8_t speed = 50; speed < 60; ++speed) {
    dt.addData(speed);
    cg.incCycleCount();
  }

  std::ofstream file("first.mf4", std::ios::binary);
  file << IDBLOCK("example ") << hd << dg << cg << cn << name;
  file.seekp(dt_at) << dt;  // the text's size is no multiple of 8
  return file.flush() ? 0 : 1;
}
