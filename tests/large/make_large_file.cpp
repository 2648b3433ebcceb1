// Writes a measurement file of more than 4 GiB with 10^8 records: a time that is made of the
// record's number, a hundredth of a second each, and a speed. All speeds are 0, for which the disk
// needs no room, but the first, the one in the middle and the last.

#include <cstdint>
#include <fstream>
#include <iostream>

#include "mdf_v4_10.h"

using namespace mdf_v4_10;

namespace {

constexpr std::uint64_t record_count = 100'000'000;
constexpr std::uint32_t record_bytes = 43;

/// Writes a block after the others, on an 8-byte boundary, and returns where it is.
template <class Block>
LINK append(std::ofstream& file, const Block& block) {
  file.seekp((static_cast<std::streamoff>(file.tellp()) + 7) / 8 * 8);
  const std::streamoff at = file.tellp();
  file << block;
  return static_cast<LINK>(at);
}

void writeNumber(std::ofstream& file, std::uint64_t offset, std::uint64_t number, int width) {
  file.seekp(static_cast<std::streamoff>(offset));
  for (int i = 0; i < width; ++i) {
    file.put(static_cast<char>(number >> (8 * i) & 0xFFU));
  }
}

LINK appendChannels(std::ofstream& file) {
  CNBLOCK speed(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
                CNBLOCK::CN_DATATYPE_UINT_LE, 0, append(file, TXBLOCK("speed", 5)), 0);
  speed.setBitCount(16);
  CCBLOCK seconds(CCBLOCK::CC_CONVTYPE_LINEAR);
  seconds.setupLinearConversion(0, 0.01);
  CNBLOCK time(CNBLOCK::CN_CHANNELTYPE_VIRTUALMASTER, CNBLOCK::CN_SYNCTYPE_TIME,
               CNBLOCK::CN_DATATYPE_UINT_LE, append(file, speed), append(file, TXBLOCK("time", 4)),
               0);
  time.setUnitblock(append(file, TXBLOCK("s", 1)));
  time.setConversionCcblock(append(file, seconds));
  return append(file, time);
}

/// Gives the data block, the last of the file, its length, and some of its records their speeds.
void writeRecords(std::ofstream& file, std::uint64_t data_at) {
  constexpr std::uint64_t header_bytes = 24;
  const std::uint64_t length = header_bytes + record_count * record_bytes;
  writeNumber(file, data_at + 8, length, 8);
  const auto setSpeed = [&](std::uint64_t record, std::uint64_t speed) {
    writeNumber(file, data_at + header_bytes + record * record_bytes, speed, 2);
  };
  setSpeed(0, 100);
  setSpeed(record_count / 2, 40000);
  setSpeed(record_count - 1, 300);
  writeNumber(file, data_at + length - 1, 0, 1);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: make_large_file OUT.mf4\n";
    return 2;
  }
  std::ofstream file(argv[1], std::ios::binary);
  HDBLOCK header(0, 0, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << header;
  CGBLOCK group(0, CGBLOCK::no_flag, 0, appendChannels(file), 0, 0, 0, 0,
                CGBLOCK::CG_PATHSEPARATOR_NONE, record_bytes, 0);
  group.setCycleCount(record_count);
  const LINK group_at = append(file, group);
  DGBLOCK data_group(0, group_at, 0, DGBLOCK::DG_WITHOUT);
  const LINK data_group_at = append(file, data_group);
  const LINK data_at = append(file, DTBLOCK());
  data_group.setDatablock(data_at);
  header.setDGFirstblock(data_group_at);
  file.seekp(IDBLOCK::IDBLOCK_SIZE) << header;
  file.seekp(data_group_at) << data_group;
  writeRecords(file, static_cast<std::uint64_t>(data_at));
  return file.flush() ? 0 : 1;
}
