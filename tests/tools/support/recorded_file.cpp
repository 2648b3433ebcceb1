#include "recorded_file.h"

#include <gtest/gtest.h>

#include "checked.h"
#include "float_bits.h"
#include "reader/bytes/input_file.h"
#include "reader/model/description.h"
#include "scratch_folder.h"

namespace mdf_tests {

RecordedFile::RecordedFile(const std::filesystem::path& path) : bytes_(bytesOf(path)) {
  mdf_reader::InputFile file(path.string());
  const mdf_reader::Description description = readDescription(
      file, [](const mdf_reader::Finding& finding) { ADD_FAILURE() << finding.sentence; });
  const mdf_reader::DataGroup& data_group = description.data_groups.at(0);
  const mdf_reader::ChannelGroup& group = data_group.groups.at(0);
  cycles_ = group.cycles;
  record_bytes_ = group.recordBytes();
  data_ = data_group.data;
  for (const mdf_reader::Channel& channel : group.channels) {
    channels_.push_back({std::string(channel.name),
                         std::string(channel.unit),
                         channel.type,
                         channel.sync_type,
                         channel.data_type,
                         channel.bit_count,
                         {}});
    for (std::uint64_t record = 0; record < cycles_; ++record) {
      const std::uint64_t bits = numberAt(data_ + 24 + record * record_bytes_ + channel.byte_offset,
                                          channel.bit_count / 8);
      channels_.back().values.push_back(
          channel.data_type == mdf_reader::Channel::unsigned_le ? static_cast<double>(bits)
          : channel.bit_count == 32                             ? static_cast<double>(floatOf(bits))
                                                                : doubleOf(bits));
    }
  }
}

std::uint64_t RecordedFile::numberAt(std::uint64_t offset, unsigned width) const {
  std::uint64_t value = 0;
  for (unsigned i = width; i-- > 0;) {
    value =
        value << 8U | static_cast<unsigned char>(bytes_.at(static_cast<std::size_t>(offset + i)));
  }
  return value;
}

void RecordedFile::expectComplete() const {
  EXPECT_EQ(checkedBytes(bytes_), "");
  EXPECT_EQ(bytes_.substr(0, 24), "MDF     4.10    mdf     ");
  EXPECT_EQ(bytes_.size(), data_ + 24 + cycles_ * record_bytes_);
}

}  // namespace mdf_tests
