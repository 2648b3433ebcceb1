#include "small_file.h"

namespace mdf_tests {

namespace {

constexpr std::uint64_t behind_links(std::uint64_t block, std::uint64_t links) {
  return block + 24 + 8 * links;
}

}  // namespace

std::string ChannelFields::bytes() const {
  return Bytes()
      .u8s({type, sync_type, data_type, bit_offset})
      .u32(byte_offset)
      .u32(bit_count)
      .u32(flags)
      .u32(invalidation_bit)
      .zeros(2)
      .u16(attachments)
      .zeros(48);
}

std::string GroupFields::bytes() const {
  return Bytes()
      .u64(record_id)
      .u64(cycles)
      .u16(flags)
      .zeros(6)
      .u32(data_bytes)
      .u32(invalidation_bytes);
}

std::string dataGroupFields(int record_id_size) { return Bytes().u8s({record_id_size}).zeros(7); }

std::string zippedZeros(std::uint16_t count) {
  const auto complement = static_cast<std::uint16_t>(0xFFFF - count);
  // The checksum's upper half sums up as many ones as there are zeros.
  return Bytes()
      .u8s({0x78, 0x01, 0x01})
      .u16(count)
      .u16(complement)
      .zeros(count)
      .u8s({count / 256, count % 256, 0, 1});
}

std::string zippedFields(std::uint64_t original_size, const std::string& stream,
                         const std::string& type, int zip_type, std::uint32_t columns) {
  return Bytes()
      .text(type)
      .u8s({zip_type, 0})
      .u32(columns)
      .u64(original_size)
      .u64(stream.size())
      .text(stream);
}

std::string attachmentFields(std::uint16_t flags, const std::string& digest,
                             std::uint64_t original_size, std::uint64_t embedded_size,
                             const std::string& embedded) {
  return Bytes()
      .u16(flags)
      .zeros(6)
      .text(digest)
      .u64(original_size)
      .u64(embedded_size)
      .text(embedded);
}

SmallFile::SmallFile(const std::string& file_word, unsigned version)
    : FileBuilder(file_word, version) {
  link(header, 0, data_group);
  add("DG", {0, group, data, 0}, dataGroupFields(0));
  add("CG", {0, time, 0, 0, 0, 0}, GroupFields{0, 2, 0, 9, 0}.bytes());
  add("CN", {speed, 0, time_name, 0, 0, 0, 0, 0}, ChannelFields{2, 1, 4, 0, 0, 64}.bytes());
  add("CN", {0, 0, speed_name, 0, 0, 0, 0, 0}, ChannelFields{0, 0, 0, 0, 8, 8}.bytes());
  text("time");
  text("speed");
  add("DT", {}, Bytes().zeros(18));
}

void SmallFile::setChannel(std::uint64_t channel, const ChannelFields& fields) {
  write(behind_links(channel, 8), fields.bytes());
}

void SmallFile::setGroup(const GroupFields& fields) {
  write(behind_links(group, 6), fields.bytes());
}

void SmallFile::replaceData(std::uint64_t block) {
  link(data_group, 2, block);
  write(data, Bytes().zeros(static_cast<std::size_t>(end - data)));
}

std::string faultyFile() {
  SmallFile file;
  file.setComment(739);
  file.write(SmallFile::time_name + 24, "\xFF");
  file.setChannel(SmallFile::time, {0, 0, 4, 0, 0, 64});
  return file.bytes();
}

}  // namespace mdf_tests
