#include "recorded_file.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "float_bits.h"
#include "scratch_folder.h"

namespace mdf_tests {

namespace {

/// At most `count` bytes from an offset, which may lie after the end.
std::string slice(const std::string& bytes, std::uint64_t offset, std::uint64_t count) {
  const std::uint64_t from = std::min<std::uint64_t>(offset, bytes.size());
  return bytes.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(count));
}

std::uint64_t number(const std::string& bytes, std::uint64_t offset, unsigned width) {
  const std::string digits = slice(bytes, offset, width);
  if (digits.size() != width) {
    ADD_FAILURE() << "no " << width << " bytes at offset " << offset << " of " << bytes.size();
    return 0;
  }
  std::uint64_t value = 0;
  for (unsigned i = 0; i < width; ++i) {
    value |= static_cast<std::uint64_t>(static_cast<unsigned char>(digits[i])) << (8 * i);
  }
  return value;
}

constexpr unsigned unsigned_integer = 0;
constexpr unsigned floating_point = 4;

}  // namespace

RecordedFile::RecordedFile(const std::filesystem::path& path) : bytes_(bytesOf(path)) {
  if (bytes_.size() >= 64) {
    collect(64);
  }
}

std::uint64_t RecordedFile::numberAt(std::uint64_t offset, unsigned width) const {
  return number(bytes_, offset, width);
}

void RecordedFile::collect(std::uint64_t position) {
  if (position == 0 || blocks_.count(position) != 0) {
    return;
  }
  SCOPED_TRACE("block at " + std::to_string(position));
  RecordedBlock block;
  block.position = position;
  block.type = slice(bytes_, position, 4);
  block.length = numberAt(position + 8, 8);
  const std::uint64_t link_count = numberAt(position + 16, 8);
  const std::uint64_t room = bytes_.size() - std::min<std::uint64_t>(position, bytes_.size());
  if (block.type.substr(0, 2) != "##" || block.length < 24 || block.length > room ||
      link_count > (block.length - 24) / 8) {
    ADD_FAILURE() << "no block: type " << block.type << ", length " << block.length << ", "
                  << link_count << " links, " << room << " bytes left";
    return;
  }
  for (std::uint64_t i = 0; i < link_count; ++i) {
    block.links.push_back(numberAt(position + 24 + 8 * i, 8));
  }
  const std::uint64_t head = 24 + 8 * link_count;
  block.data = slice(bytes_, position + head, block.length - head);
  EXPECT_EQ(numberAt(position + 4, 4), 0U) << "reserved bytes";
  const auto links = blocks_.emplace(position, block).first->second.links;
  for (const std::uint64_t link : links) {
    collect(link);
  }
}

const RecordedBlock& RecordedFile::block(std::uint64_t position, const std::string& type) const {
  static const RecordedBlock none{0, 0, "", std::vector<std::uint64_t>(8, 0), ""};
  const auto found = blocks_.find(position);
  if (found == blocks_.end() || found->second.type != type) {
    ADD_FAILURE() << "no " << type << " block at " << position;
    return none;
  }
  return found->second;
}

std::string RecordedFile::text(std::uint64_t position, const std::string& type) const {
  if (position == 0) {
    return "";
  }
  const std::string& data = block(position, type).data;
  EXPECT_TRUE(!data.empty() && data.back() == '\0') << "text without an end at " << position;
  EXPECT_EQ(data.find('\0') + 1, data.size()) << "zeros in the text at " << position;
  return data.substr(0, data.find('\0'));
}

std::uint64_t RecordedFile::cycleCount() const { return number(channelGroup().data, 8, 8); }

std::uint32_t RecordedFile::recordBytes() const {
  return static_cast<std::uint32_t>(number(channelGroup().data, 24, 4));
}

std::vector<RecordedChannel> RecordedFile::channels() const {
  std::vector<RecordedChannel> channels;
  std::uint64_t position = channelGroup().links.at(1);
  while (position != 0 && channels.size() < blocks_.size()) {
    const RecordedBlock& block = this->block(position, "##CN");
    RecordedChannel channel;
    channel.name = text(block.links.at(2), "##TX");
    channel.unit = text(block.links.at(6), "##TX");
    channel.type = static_cast<unsigned>(number(block.data, 0, 1));
    channel.sync_type = static_cast<unsigned>(number(block.data, 1, 1));
    channel.data_type = static_cast<unsigned>(number(block.data, 2, 1));
    EXPECT_EQ(number(block.data, 3, 1), 0U) << "bit offset of " << channel.name;
    channel.byte_offset = static_cast<std::uint32_t>(number(block.data, 4, 4));
    channel.bit_count = static_cast<std::uint32_t>(number(block.data, 8, 4));
    for (std::uint64_t record = 0; record < cycleCount(); ++record) {
      channel.values.push_back(valueOf(channel, record));
    }
    channels.push_back(channel);
    position = block.links.at(0);
  }
  return channels;
}

double RecordedFile::valueOf(const RecordedChannel& channel, std::uint64_t record) const {
  const std::uint64_t offset = record * recordBytes() + channel.byte_offset;
  const std::uint64_t bits = number(data().data, offset, channel.bit_count / 8);
  if (channel.data_type == unsigned_integer) {
    return static_cast<double>(bits);
  }
  EXPECT_EQ(channel.data_type, floating_point) << channel.name;
  return channel.bit_count == 32 ? static_cast<double>(floatOf(bits)) : doubleOf(bits);
}

void RecordedFile::expectComplete() const {
  ASSERT_GE(bytes_.size(), 64U);
  EXPECT_EQ(bytes_.substr(0, 24), "MDF     4.10    mdf     ");
  EXPECT_EQ(numberAt(28, 2), 410U);
  EXPECT_EQ(bytes_.substr(24, 4), std::string(4, '\0'));
  EXPECT_EQ(bytes_.substr(30, 34), std::string(34, '\0'));
  expectNoGaps();
  EXPECT_EQ(dataGroup().links.at(0), 0U) << "another data group";
  EXPECT_EQ(number(dataGroup().data, 0, 1), 0U) << "record ids";
  EXPECT_EQ(channelGroup().links.at(0), 0U) << "another channel group";
  EXPECT_EQ(number(channelGroup().data, 28, 4), 0U) << "invalidation bytes";
  EXPECT_EQ(data().data.size(), cycleCount() * recordBytes());
  EXPECT_EQ(data().links.size(), 0U);
  expectChannelsTileRecords();
}

void RecordedFile::expectNoGaps() const {
  std::uint64_t end = 64;
  for (const auto& [position, block] : blocks_) {
    SCOPED_TRACE(block.type + " at " + std::to_string(position));
    EXPECT_EQ(position % 8, 0U);
    ASSERT_GE(position, end) << "overlaps the block before";
    ASSERT_LT(position - end, 8U) << "a gap in front";
    EXPECT_EQ(slice(bytes_, end, position - end).find_first_not_of('\0'), std::string::npos);
    end = position + block.length;
  }
  EXPECT_EQ(end, bytes_.size()) << "bytes after the last block";
}

void RecordedFile::expectChannelsTileRecords() const {
  std::uint32_t offset = 0;
  for (const RecordedChannel& channel : channels()) {
    EXPECT_EQ(channel.byte_offset, offset) << channel.name;
    EXPECT_EQ(channel.bit_count % 8, 0U) << channel.name;
    offset += channel.bit_count / 8;
  }
  EXPECT_EQ(offset, recordBytes());
}

}  // namespace mdf_tests
