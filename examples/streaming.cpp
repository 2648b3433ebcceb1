// Streams a long recording: records go out in blocks as they come, listed by a chain of data lists,
// so that memory holds one block however long the recording gets.

#include <fstream>
#include <sstream>

#include "append.h"

using namespace mdf_v4_10;

constexpr UINT32 record_bytes = 4 + 2, block_records = 1000, list_blocks = 4;

int main() {
  std::ofstream file("streaming.mf4", std::ios::binary);
  HDBLOCK hd(0, 0, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << hd;

  CNBLOCK speed(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
                CNBLOCK::CN_DATATYPE_UINT_LE, 0, appendText(file, "speed"), 0);
  speed.setUnitblock(appendText(file, "1/min"));
  speed.setByteOffset(4);
  speed.setBitCount(16);
  const LINK speed_at = append(file, speed);
  CNBLOCK time(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
               CNBLOCK::CN_DATATYPE_UINT_LE, speed_at, appendText(file, "time"), 0);
  CCBLOCK seconds(CCBLOCK::CC_CONVTYPE_LINEAR);
  seconds.setupLinearConversion(0, 0.01);
  time.setConversionCcblock(append(file, seconds));
  time.setUnitblock(appendText(file, "s"));
  time.setBitCount(32);
  CGBLOCK cg(0, CGBLOCK::no_flag, 0, append(file, time), 0, 0, 0, 0, CGBLOCK::CG_PATHSEPARATOR_NONE,
             record_bytes, 0);
  const LINK cg_at = append(file, cg);
  DGBLOCK dg(0, cg_at, 0, DGBLOCK::DG_WITHOUT);
  const LINK dg_at = append(file, dg);
  hd.setDGFirstblock(dg_at);
  rewrite(file, IDBLOCK::IDBLOCK_SIZE, hd);

  std::ostringstream records;
  DLBLOCK list(true, 0), last_list(true, 0);
  LINK last_list_at = 0;
  list.setEqualLength(UINT64{record_bytes} * block_records);  // of all blocks but the last

  const auto finishBlock = [&] {
    const std::string bytes = records.str();
    const DTBLOCK dt(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    list.addData(append(file, dt), 0);  // with an equal length the file holds no offsets
    records.str("");
  };
  // Links the list to the one before it, the first one to the data group. From then on the file is
  // whole up to here, even if the recording should be cut off.
  const auto finishList = [&] {
    const LINK at = append(file, list);
    if (last_list_at == 0) {
      dg.setDatablock(at);
      rewrite(file, dg_at, dg);
    } else {
      last_list.setNextDlblock(at);
      rewrite(file, last_list_at, last_list);
    }
    rewrite(file, cg_at, cg);
    last_list = list;
    last_list_at = at;
    list.dl_data.clear();
  };

  for (UINT32 i = 0; i < 10500; ++i) {
    records << VALUEDATABLOCK(i, 4) << VALUEDATABLOCK(800 + i % 3000, 2);
    cg.incCycleCount();
    if (cg.getCycleCount() % block_records == 0) {
      finishBlock();
      if (list.getDataLength() == list_blocks) finishList();
    }
  }
  if (records.tellp() > 0) finishBlock();  // the last block may be shorter
  if (list.getDataLength() > 0) finishList();
  return file.flush() ? 0 : 1;
}
