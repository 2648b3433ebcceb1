// Records get the offsets of their values where their writer had not come to set them.

#include "changing/value_offsets.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fuzz/memory_file.h"
#include "reader/bytes/descriptor.h"
#include "reader/bytes/input_file.h"
#include "repaired.h"
#include "tools/samples/sample_file.h"
#include "tools/sampling/exported.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_reads.h"
#include "writer/files/file_output.h"

using namespace mdf_tests;

namespace {

constexpr unsigned offsets_open = 64;

std::string value(const std::string& text) { return u32(text.size()) + text; }

ChannelSpec texts() {
  ChannelSpec text = stored(7, 64);
  text.byte_offset = 8;
  text.type = 1;
  return text;
}

/// Records with these offsets, and values in blocks of their own, split anywhere.
std::string separate(const std::vector<std::uint64_t>& offsets, const std::string& values,
                     bool is_finished) {
  SampleFile file = is_finished ? SampleFile() : SampleFile::unfinished(offsets_open);
  std::string records;
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    records += f64(timeOf(i)) + u64(offsets[i]);
  }
  const auto first = file.addData(records.substr(0, 27));
  const auto list = addOffsetList(file, {first, file.addData(records.substr(27))}, {0, 27});
  const auto group = file.addGroupOf({offsets.size(), 16}, {timeMaster(), texts()});
  file.addDataGroup({group}, list);
  file.link(file.channels()[1], 5, file.add("SD", {}, values));
  return file.bytes();
}

/// The same among records with ids.
std::string among(bool is_finished) {
  SampleFile file = is_finished ? SampleFile() : SampleFile::unfinished(offsets_open);
  GroupSpec values{3, is_finished ? 19U : 19U};
  values.record_id = 2;
  values.flags = 1;
  const auto value_group = file.addGroupOf(values, {});
  ChannelSpec text = texts();
  text.data = value_group;
  GroupSpec spec{3, 16};
  spec.record_id = 1;
  const auto group = file.addGroupOf(spec, {timeMaster(), text});
  const std::vector<std::uint64_t> offsets = {0, 7, 12};
  std::string records = u8(2) + value("abc");
  for (std::size_t i = 0; i < offsets.size(); ++i) {
    records += u8(1) + f64(timeOf(i)) + u64(is_finished ? offsets[i] : 0);
    records += i == 0 ? u8(2) + value("d") + u8(2) + value("efg") : "";
  }
  file.addDataGroup({group, value_group}, file.addData(records), 1);
  return file.bytes();
}

TEST(ValueOffsets, AreSetFromTheValuesInTheirOrder) {
  const std::string values = value("abc") + value("d") + value("efg");
  const RepairedBytes repaired = repairedBytes(separate({0, 0, 0}, values, false));
  EXPECT_BYTES(repaired.bytes, separate({0, 7, 12}, values, true));
  EXPECT_EQ(repaired.lost(), "");
  ASSERT_EQ(repaired.rescue.offsets.size(), 1U);
  EXPECT_EQ(repaired.rescue.offsets[0].records, 2U);
  EXPECT_BYTES(repairedBytes(separate({0, 7, 0}, values, false)).bytes,
               separate({0, 7, 12}, values, true));
  EXPECT_BYTES(repairedBytes(among(false)).bytes, among(true));
}

TEST(ValueOffsets, AreSetAsFarAsTheNumbersAgree) {
  const std::string values = value("abc") + value("d");
  const RepairedBytes few = repairedBytes(separate({0, 0, 0}, values, false));
  EXPECT_BYTES(few.bytes, separate({0, 7, 0}, values, true));
  EXPECT_NE(few.lost().find("expected a value for each of 3 records, found 2\n"),
            std::string::npos);
  const RepairedBytes many =
      repairedBytes(separate({0, 0, 0}, values + value("efg") + value("hi"), false));
  EXPECT_BYTES(many.bytes, separate({0, 7, 12}, values + value("efg") + value("hi"), true));
  EXPECT_NE(many.lost().find("expected a value for each of 3 records, found 4\n"),
            std::string::npos);
  const RepairedBytes other = repairedBytes(separate({0, 12, 0}, values + value("efg"), false));
  EXPECT_BYTES(other.bytes, separate({0, 12, 0}, values + value("efg"), true));
  EXPECT_NE(other.lost().find("expected the offset 7 of the next value, found 12; it is not set, "
                              "nor are those after record 1\n"),
            std::string::npos);
}

/// Unsorted records in place: their bytes are read to count them, and not again to check them.
TEST(FinishInPlace, ReadsUnsortedDataOnce) {
  constexpr std::size_t count = 200'000;
  SampleFile file = SampleFile::unfinished(1 + 4);
  std::vector<std::uint64_t> groups;
  for (std::uint64_t id = 1; id <= 2; ++id) {
    GroupSpec group{0, 10};
    group.record_id = id;
    groups.push_back(file.addGroupOf(group, countingChannels()));
  }
  const auto data_group = file.addDataGroup(groups, 0, 1);
  file.link(data_group, 2, file.add("DT", {}));
  std::string records;
  for (std::size_t i = 0; i < count; ++i) {
    records += u8(static_cast<unsigned>(1 + i % 2)) + f64(timeOf(i)) + u16(1);
  }
  file.append(records);
  const mdf_fuzz::MemoryFile memory;
  memory.hold(file.bytes());
  const mdf_reader::Descriptor descriptor(open(memory.path().c_str(), O_RDWR | O_CLOEXEC));
  mdf_writer::FileOutput output(descriptor.number());
  mdf_reader::InputFile input(memory.path());
  std::vector<mdf_reader::Finding> losses;
  const FileReads reads;
  const auto rescue = mdf_tools::finishInPlace(input, {output, memory.path()},
                                               [&](const auto& loss) { losses.push_back(loss); });
  EXPECT_LT(reads.bytes(), records.size() * 5 / 4);
  EXPECT_EQ(losses.size(), 0U);
  ASSERT_EQ(rescue.finishing.counts.size(), 2U);
  EXPECT_EQ(rescue.finishing.counts[1].records, count / 2);
}

}  // namespace
