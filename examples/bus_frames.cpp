// Frames of two CAN buses, among them one of CAN FD and an error frame, as bus loggers record them.

#include <fstream>
#include <vector>

#include "append.h"

using namespace mdf_v4_10;

/// A member of a frame: its place in the record, in bits.
struct Member {
  const char* name;
  UINT32 bit;
  UINT32 bits;
};

constexpr UINT32 time_bits = 32;

static CNBLOCK channel(std::ostream& file, const std::string& name, const Member& place,
                       CNBLOCK::MDF_CN_DATATYPES_t type, LINK next) {
  CNBLOCK cn(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE, type, next,
             appendText(file, name), 0);
  cn.setByteOffset(place.bit / 8);
  cn.setBitOffset(static_cast<UINT8>(place.bit % 8));
  cn.setBitCount(place.bits);
  return cn;
}

/// A time in milliseconds, and a frame: a structure that its members make up.
static LINK appendChannels(std::ostream& file, const std::string& frame,
                           const std::vector<Member>& members) {
  LINK next = 0;  // a channel links to the next one, which therefore comes first
  for (auto member = members.rbegin(); member != members.rend(); ++member) {
    const auto type =
        member->bits > 64 ? CNBLOCK::CN_DATATYPE_BYTEARRAY : CNBLOCK::CN_DATATYPE_UINT_LE;
    next = append(file, channel(file, frame + '.' + member->name, *member, type, next));
  }
  const UINT32 end = members.back().bit + members.back().bits;
  CNBLOCK structure =
      channel(file, frame, {"", time_bits, end - time_bits}, CNBLOCK::CN_DATATYPE_BYTEARRAY, 0);
  structure.setCompositionblock(next);
  CCBLOCK seconds(CCBLOCK::CC_CONVTYPE_LINEAR);
  seconds.setupLinearConversion(0, 0.001);
  CNBLOCK time(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
               CNBLOCK::CN_DATATYPE_UINT_LE, append(file, structure), appendText(file, "time"), 0);
  time.setConversionCcblock(append(file, seconds));
  time.setUnitblock(appendText(file, "s"));
  time.setBitCount(time_bits);
  return append(file, time);
}

/// A data group with frames of one kind.
static LINK appendFrames(std::ostream& file, LINK next, const std::string& frame, LINK channels,
                         const std::vector<UINT8>& records, UINT32 record_bytes) {
  const SIBLOCK bus(SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN, false,
                    appendText(file, "CAN"), 0);
  CGBLOCK cg(0, CGBLOCK::no_flag, 0, channels, appendText(file, frame), append(file, bus), 0,
             records.size() / record_bytes, CGBLOCK::CG_PATHSEPARATOR_POINT, record_bytes, 0);
  cg.setBusEventGroup(true);
  const LINK cg_at = append(file, cg);
  const LINK data_at = append(file, DTBLOCK(records.data(), records.size()));
  return append(file, DGBLOCK(next, cg_at, data_at, DGBLOCK::DG_WITHOUT));
}

int main() {
  std::ofstream file("frames.mf4", std::ios::binary);
  HDBLOCK hd(0, 0, 1700000000000000000, 60, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << hd;

  // The highest bit of an identifier's four bytes says that it has 29 bits.
  const LINK frame_cn = appendChannels(file, "CAN_DataFrame",
                                       {{"BusChannel", 32, 8},
                                        {"ID", 40, 29},
                                        {"IDE", 71, 1},
                                        {"Dir", 72, 1},
                                        {"EDL", 73, 1},
                                        {"BRS", 74, 1},
                                        {"DataLength", 80, 8},
                                        {"DataBytes", 88, 96}});
  const std::vector<UINT8> frames = {
      10, 0, 0, 0, 1, 0x23, 0x01, 0,    0,    0, 2,  0x12, 0x34, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0,
      20, 0, 0, 0, 1, 0x00, 0xF1, 0xFE, 0x98, 7, 12, 0,    1,    2, 3, 4, 5, 6, 7, 8, 9, 10, 11,
      25, 0, 0, 0, 2, 0xFF, 0x07, 0,    0,    0, 1,  0xAB, 0,    0, 0, 0, 0, 0, 0, 0, 0, 0,  0};
  const LINK error_cn =
      appendChannels(file, "CAN_ErrorFrame", {{"BusChannel", 32, 8}, {"ErrorType", 40, 8}});
  const LINK errors_at =
      appendFrames(file, 0, "CAN_ErrorFrame", error_cn, {12, 0, 0, 0, 1, 1}, 4 + 2);
  hd.setDGFirstblock(appendFrames(file, errors_at, "CAN_DataFrame", frame_cn, frames, 4 + 19));
  rewrite(file, IDBLOCK::IDBLOCK_SIZE, hd);
  return file.flush() ? 0 : 1;
}
