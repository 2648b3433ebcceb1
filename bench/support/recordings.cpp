#include "support/recordings.h"

#include <libdeflate.h>

#include <memory>

namespace mdf_bench {

using namespace mdf_v4_10;

namespace {

const std::uint8_t* bytesOf(const std::string& data) {
  return reinterpret_cast<const std::uint8_t*>(data.data());
}

std::string transposed(const std::string& rows, std::size_t width) {
  std::string columns(rows);
  const std::size_t height = rows.size() / width;
  for (std::size_t i = 0; i < height * width; ++i) {
    columns[i % width * height + i / width] = rows[i];
  }
  return columns;
}

std::string zipped(const std::string& data) {
  const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
      libdeflate_alloc_compressor(1), libdeflate_free_compressor);
  std::string stream(libdeflate_zlib_compress_bound(compressor.get(), data.size()), '\0');
  stream.resize(libdeflate_zlib_compress(compressor.get(), data.data(), data.size(), stream.data(),
                                         stream.size()));
  return stream;
}

}  // namespace

FileMaker::FileMaker(const std::string& path) : file_(path, std::ios_base::binary) {
  file_ << IDBLOCK("bench   ") << HDBLOCK(0, 0, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
}

LINK FileMaker::appendText(const std::string& text) {
  return append(TXBLOCK(text.data(), text.size()));
}

LINK FileMaker::appendData(const std::string& data) {
  return append(DTBLOCK(bytesOf(data), data.size()));
}

ZippedBlock FileMaker::appendZipped(const std::string& data, std::uint32_t columns) {
  const std::string stream = zipped(columns == 0 ? data : transposed(data, columns));
  DZBLOCK block(
      DTBLOCK::MDF_DT_ID,
      columns == 0 ? DZBLOCK::DZ_ZIPTYPE_DEFLATE : DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE,
      bytesOf(stream), stream.size());
  block.setZipParameter(columns);
  block.setOriginalLength(data.size());
  const LINK at = append(block);
  return {at, static_cast<std::size_t>(at) + DZBLOCK::DZBLOCK_CONSTANT_SIZE, stream.size(),
          data.size()};
}

LINK FileMaker::appendList(const std::vector<LINK>& blocks, std::uint64_t bytes) {
  DLBLOCK list(true, 0);
  for (const LINK block : blocks) {
    list.addData(block, 0);
  }
  list.setEqualLength(bytes);
  return append(list);
}

LINK FileMaker::appendGroup(const Group& group) {
  LINK next = 0;
  for (std::size_t i = group.channels.size(); i-- > 0;) {
    const Wanted& wanted = group.channels[i];
    CNBLOCK cn(
        wanted.is_master ? CNBLOCK::CN_CHANNELTYPE_MASTER : CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH,
        wanted.is_master ? CNBLOCK::CN_SYNCTYPE_TIME : CNBLOCK::CN_SYNCTYPE_NONE, wanted.type, next,
        appendText("c" + std::to_string(i)), 0);
    cn.setByteOffset(wanted.byte_offset);
    cn.setBitCount(wanted.bit_count);
    cn.setBitOffset(wanted.bit_offset);
    cn.setConversionCcblock(group.conversion);
    next = append(cn);
  }
  CGBLOCK cg(group.next, CGBLOCK::no_flag, group.record_id, next, 0, 0, 0, 0,
             CGBLOCK::CG_PATHSEPARATOR_NONE, group.record_bytes, 0);
  cg.setCycleCount(group.records);
  return append(cg);
}

void FileMaker::finish(LINK group, LINK data, bool has_ids) {
  const LINK dg =
      append(DGBLOCK(0, group, data, has_ids ? DGBLOCK::DG_UINT8 : DGBLOCK::DG_WITHOUT));
  file_.seekp(IDBLOCK::IDBLOCK_SIZE);
  file_ << HDBLOCK(0, dg, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  require(file_.flush().good(), "writing a file");
}

std::string mixedRecords(std::size_t first, std::size_t count) {
  std::string data(count * record_bytes, '\0');
  char* at = data.data();
  for (std::size_t i = first; i < first + count; ++i, at += record_bytes) {
    const double time = 0.001 * static_cast<double>(i);
    const double level = static_cast<double>(i % 9973) / 7;
    const auto speed = static_cast<float>(i % 251) * 0.5F;
    const auto gear = static_cast<std::uint16_t>(i % 6);
    const auto number = static_cast<std::uint32_t>(i);
    std::memcpy(at, &time, 8);
    std::memcpy(at + 8, &level, 8);
    std::memcpy(at + 16, &speed, 4);
    std::memcpy(at + 20, &gear, 2);
    std::memcpy(at + 22, &number, 4);
  }
  return data;
}

MixedFile writeMixedFile(const std::string& path, std::size_t records, std::size_t groups) {
  const std::string all = mixedRecords(0, records);
  MixedFile mixed{std::vector<std::uint64_t>(groups), 0};
  std::string data;
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < records; ++i) {
    random = random * 1664525 + 1013904223;
    const std::size_t group = (random >> 16U) % groups;
    ++mixed.counts[group];
    data += static_cast<char>(group);
    data.append(all, i * record_bytes, record_bytes);
  }
  FileMaker maker(path);
  const LINK at = maker.appendData(data);
  LINK next = 0;
  for (std::size_t group = groups; group-- > 0;) {
    next = maker.appendGroup({mixedChannels(), record_bytes, mixed.counts[group], 0, group, next});
  }
  maker.finish(next, at, true);
  mixed.data_at = static_cast<std::size_t>(at) + DTBLOCK::DTBLOCK_CONSTANT_SIZE;
  return mixed;
}

std::vector<Wanted> mixedChannels() {
  return {{CNBLOCK::CN_DATATYPE_FLOAT_LE, 0, 64},
          {CNBLOCK::CN_DATATYPE_FLOAT_LE, 8, 64},
          {CNBLOCK::CN_DATATYPE_FLOAT_LE, 16, 32},
          {CNBLOCK::CN_DATATYPE_UINT_LE, 20, 16},
          {CNBLOCK::CN_DATATYPE_UINT_LE, 22, 32}};
}

}  // namespace mdf_bench
