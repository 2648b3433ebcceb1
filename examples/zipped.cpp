// Zipped data: each block of records is transposed and compressed, here with libdeflate, and listed
// under a header list. The library itself compresses nothing.

#include <libdeflate.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

#include "append.h"

using namespace mdf_v4_10;

constexpr UINT32 record_bytes = 4 + 4, block_records = 5000;

/// All first bytes of the records, then all second ones, and so on: bytes that hardly change from
/// record to record come together and compress well.
static std::string transposed(const std::string& records) {
  std::string columns;
  for (std::size_t column = 0; column < record_bytes; ++column) {
    for (std::size_t at = column; at < records.size(); at += record_bytes) {
      columns += records[at];
    }
  }
  return columns;
}

static DZBLOCK zipped(const std::string& records) {
  const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> compressor(
      libdeflate_alloc_compressor(6), libdeflate_free_compressor);
  const std::string columns = transposed(records);
  std::vector<std::uint8_t> zip(libdeflate_zlib_compress_bound(compressor.get(), columns.size()));
  zip.resize(libdeflate_zlib_compress(compressor.get(), columns.data(), columns.size(), zip.data(),
                                      zip.size()));
  DZBLOCK dz(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, zip.data(), zip.size());
  dz.setOriginalLength(records.size());
  dz.setZipParameter(record_bytes);
  return dz;
}

static LINK appendChannel(std::ostream& file, const char* name, UINT32 byte_offset, LINK next) {
  const bool is_index = byte_offset == 0;
  CNBLOCK cn(is_index ? CNBLOCK::CN_CHANNELTYPE_MASTER : CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH,
             is_index ? CNBLOCK::CN_SYNCTYPE_INDEX : CNBLOCK::CN_SYNCTYPE_NONE,
             CNBLOCK::CN_DATATYPE_UINT_LE, next, appendText(file, name), 0);
  cn.setByteOffset(byte_offset);
  cn.setBitCount(32);
  return append(file, cn);
}

int main() {
  std::ofstream file("zipped.mf4", std::ios::binary);
  HDBLOCK hd(0, 0, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << hd;

  DLBLOCK list(false, 0);
  UINT32 records = 0;
  while (records < 3 * block_records) {
    std::ostringstream block;
    const UINT64 offset = UINT64{records} * record_bytes;  // in the data before it was zipped
    for (UINT32 i = 0; i < block_records; ++i, ++records) {
      block << VALUEDATABLOCK(records, 4) << VALUEDATABLOCK(90000 + records % 100, 4);
    }
    list.addData(append(file, zipped(block.str())), offset);
  }
  HLBLOCK hl(append(file, list), false, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  const LINK hl_at = append(file, hl);
  // The writer of this block counts no links although it writes one; other programs look for it.
  hl.header.setLinkCount(HLBLOCK::HL_BLOCK_LINKS_NUM);
  rewrite(file, hl_at, hl.header);

  const LINK pressure = appendChannel(file, "pressure", 4, 0);
  const CGBLOCK cg(0, CGBLOCK::no_flag, 0, appendChannel(file, "index", 0, pressure), 0, 0, 0,
                   records, CGBLOCK::CG_PATHSEPARATOR_NONE, record_bytes, 0);
  hd.setDGFirstblock(append(file, DGBLOCK(0, append(file, cg), hl_at, DGBLOCK::DG_WITHOUT)));
  rewrite(file, IDBLOCK::IDBLOCK_SIZE, hd);
  return file.flush() ? 0 : 1;
}
