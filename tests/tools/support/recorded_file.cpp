#include "recorded_file.h"

#include <gtest/gtest.h>

#include "checked.h"
#include "float_bits.h"
#include "reader/measurement/measurement.h"
#include "scratch_folder.h"

namespace mdf_tests {

namespace {

std::uint64_t numberIn(std::string_view bytes, std::size_t offset, std::size_t width) {
  std::uint64_t value = 0;
  for (std::size_t i = width; i-- > 0;) {
    value = value << 8U | static_cast<unsigned char>(bytes.at(offset + i));
  }
  return value;
}

double valueIn(std::string_view record, const mdf_reader::Channel& channel) {
  const std::uint64_t bits = numberIn(record, channel.byte_offset, channel.bit_count / 8);
  if (channel.data_type == mdf_reader::Channel::unsigned_le) {
    return static_cast<double>(bits);
  }
  return channel.bit_count == 32 ? static_cast<double>(floatOf(bits)) : doubleOf(bits);
}

}  // namespace

RecordedFile::RecordedFile(const std::filesystem::path& path) : bytes_(bytesOf(path)) {
  const mdf_reader::Measurement measurement(path.string());
  const mdf_reader::ChannelGroup& group = measurement.groups()[0];
  cycles_ = group.cycles;
  for (const mdf_reader::Channel& channel : group.channels) {
    channels_.push_back({std::string(channel.name),
                         std::string(channel.unit),
                         channel.type,
                         channel.sync_type,
                         channel.data_type,
                         channel.bit_count,
                         {}});
  }
  measurement.forEachRecord(group, [&](std::string_view record) {
    for (std::size_t i = 0; i < channels_.size(); ++i) {
      channels_[i].values.push_back(valueIn(record, group.channels[i]));
    }
    return true;
  });
  records_ = channels_.front().values.size();
}

std::uint64_t RecordedFile::numberAt(std::uint64_t offset, unsigned width) const {
  return numberIn(bytes_, static_cast<std::size_t>(offset), width);
}

void RecordedFile::expectComplete() const {
  EXPECT_EQ(checkedBytes(bytes_), "");
  EXPECT_EQ(bytes_.substr(0, 24), "MDF     4.10    mdf     ");
  EXPECT_EQ(cycles_, records_);
}

}  // namespace mdf_tests
