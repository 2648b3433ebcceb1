// Writes a measurement file of 1.2 GB with 10^8 records: a time in steps of 1/1024 s, and a level
// that rises from 0 to 999, a step with each record, again and again, but for one sample of 5000.

#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>

#include "framework/wire.h"
#include "mdf_v4_10.h"

using namespace mdf_v4_10;

namespace {

constexpr std::uint64_t record_count = 100'000'000;
constexpr std::uint64_t spike = 61'803'398;
constexpr std::uint32_t time_bytes = 8;
constexpr std::uint32_t record_bytes = time_bytes + 4;
constexpr std::uint64_t piece = 100'000;  // records that are written at once

/// Writes a block after the others, on an 8-byte boundary, and returns where it is.
template <class Block>
LINK append(std::ofstream& file, const Block& block) {
  file.seekp((static_cast<std::streamoff>(file.tellp()) + 7) / 8 * 8);
  const std::streamoff at = file.tellp();
  file << block;
  return static_cast<LINK>(at);
}

LINK appendChannels(std::ofstream& file) {
  CNBLOCK level(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
                CNBLOCK::CN_DATATYPE_FLOAT_LE, 0, append(file, TXBLOCK("level", 5)), 0);
  level.setByteOffset(time_bytes);
  level.setBitCount(32);
  CNBLOCK time(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
               CNBLOCK::CN_DATATYPE_FLOAT_LE, append(file, level), append(file, TXBLOCK("time", 4)),
               0);
  time.setUnitblock(append(file, TXBLOCK("s", 1)));
  time.setBitCount(64);
  return append(file, time);
}

void writeRecords(std::ofstream& file) {
  std::string bytes(piece * record_bytes, '\0');
  for (std::uint64_t record = 0; record < record_count;) {
    for (char* at = bytes.data(); at != bytes.data() + bytes.size(); at += record_bytes) {
      const auto level = static_cast<float>(record == spike ? 5000 : record % 1000);
      detail::storeLe(at, static_cast<double>(record) / 1024);
      detail::storeLe(at + time_bytes, level);
      ++record;
    }
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
}

/// The data block's header, which says how long its records are together.
std::string dataHeader() {
  constexpr std::uint64_t header_bytes = 24;
  std::string header("##DT", 4);
  header.resize(header_bytes);
  detail::storeLe(&header[8], header_bytes + record_count * record_bytes);
  return header;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: make_many_samples OUT.mf4\n";
    return 2;
  }
  std::ofstream file(argv[1], std::ios::binary);
  HDBLOCK header(0, 0, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << header;
  CGBLOCK group(0, CGBLOCK::no_flag, 0, appendChannels(file), 0, 0, 0, 0,
                CGBLOCK::CG_PATHSEPARATOR_NONE, record_bytes, 0);
  group.setCycleCount(record_count);
  DGBLOCK data_group(0, append(file, group), 0, DGBLOCK::DG_WITHOUT);
  const LINK data_group_at = append(file, data_group);
  const LINK data_at = append(file, dataHeader());
  data_group.setDatablock(data_at);
  header.setDGFirstblock(data_group_at);
  writeRecords(file);
  file.seekp(IDBLOCK::IDBLOCK_SIZE) << header;
  file.seekp(data_group_at) << data_group;
  return file.flush() ? 0 : 1;
}
