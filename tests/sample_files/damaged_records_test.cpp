// Reading goes on after a damaged record of unsorted data, at the first place that is one.

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "repaired.h"
#include "tools/samples/sample_file.h"
#include "tools/sampling/exported.h"
#include "tools/support/data_blocks.h"

using namespace mdf_tests;

namespace {

/// Records of two groups: of 10 bytes with the id 17, and texts with the id 18.
std::string numberRecord(unsigned number) { return u8(17) + f64(0.5 * number) + u16(7 * number); }
std::string textRecord(const std::string& text) { return u8(18) + u32(text.size()) + text; }

/// Pairs of them, numbered.
std::vector<std::string> pairs(unsigned count) {
  std::vector<std::string> records;
  for (unsigned i = 0; i < count; ++i) {
    records.push_back(numberRecord(i));
    records.push_back(textRecord(std::string(i % 5, 'x')));
  }
  return records;
}

std::string joined(const std::vector<std::string>& records) {
  std::string data;
  for (const std::string& record : records) {
    data += record;
  }
  return data;
}

/// A file with such data, and where that is in it.
struct Unsorted {
  std::string bytes;
  std::uint64_t data;

  explicit Unsorted(const std::string& records, bool is_zipped = false) {
    SampleFile file;
    data = is_zipped ? addZipped(file, "DT", records) : file.addData(records);
    GroupSpec texts{1, 1};
    texts.record_id = 18;
    texts.flags = 1;
    GroupSpec numbers = countingGroup(1);
    numbers.record_id = 17;
    const auto first = file.addGroupOf(numbers, countingChannels());
    file.addDataGroup({first, file.addGroupOf(texts, {})}, data, 1);
    bytes = file.bytes();
  }
};

/// A gap in the data: "offset in it + bytes".
std::string gapsOf(const RepairedBytes& repaired, std::uint64_t data) {
  std::string text;
  for (const auto& gap : repaired.rescue.skipped) {
    text += std::to_string(gap.offset - data - 24) + '+' + std::to_string(gap.bytes) + ' ';
  }
  return text;
}

/// The numbers that a file with these records shows.
std::string shown(const std::string& records) {
  return csvOf(repairedBytes(Unsorted(records).bytes).bytes).text;
}

TEST(DamagedRecords, WithAnUnknownIdAreLeftOut) {
  std::vector<std::string> records = pairs(20);
  const std::string before = joined({records.begin(), records.begin() + 16});
  const std::string after = joined({records.begin() + 17, records.end()});
  const Unsorted file(before + u8(99) + records[16].substr(1) + after);
  const RepairedBytes repaired = repairedBytes(file.bytes);
  EXPECT_EQ(gapsOf(repaired, file.data), std::to_string(before.size()) + "+11 ");
  EXPECT_EQ(csvOf(repaired.bytes).text, shown(before + after));
  EXPECT_EQ(problemsOf(repaired.bytes).size(), 0U);
}

TEST(DamagedRecords, WithALengthThatLeadsOutsideAreLeftOut) {
  std::vector<std::string> records = pairs(20);
  const std::string before = joined({records.begin(), records.begin() + 7});
  const std::string after = joined({records.begin() + 8, records.end()});
  const Unsorted file(before + u8(18) + u32(0x7fffffff) + "xxx" + after);
  const RepairedBytes repaired = repairedBytes(file.bytes);
  EXPECT_EQ(gapsOf(repaired, file.data), std::to_string(before.size()) + "+8 ");
  EXPECT_EQ(csvOf(repaired.bytes).text, shown(before + after));
}

TEST(DamagedRecords, MayBeSeveral) {
  const std::string good = joined(pairs(40));
  const std::string noise = "no record at all";
  const Unsorted file(good + noise + good + noise + good + numberRecord(1).substr(0, 5));
  const RepairedBytes repaired = repairedBytes(file.bytes);
  EXPECT_EQ(gapsOf(repaired, file.data),
            std::to_string(good.size()) + "+16 " + std::to_string(2 * good.size() + 16) + "+16 ");
  ASSERT_EQ(repaired.rescue.finishing.cuts.size(), 1U);
  EXPECT_EQ(repaired.rescue.finishing.cuts[0].offset, file.data + 24 + 3 * good.size() + 32);
  EXPECT_EQ(repaired.rescue.finishing.cuts[0].bytes, 5U);
  EXPECT_EQ(csvOf(repaired.bytes).text, shown(good + good + good));
}

TEST(DamagedRecords, OfZippedDataAreLeftOutToo) {
  const std::string good = joined(pairs(10));
  const Unsorted file(good + u8(99) + "???" + good, true);
  const RepairedBytes repaired = repairedBytes(file.bytes);
  ASSERT_EQ(repaired.rescue.skipped.size(), 1U);
  EXPECT_EQ(repaired.rescue.skipped[0].offset, file.data);
  EXPECT_EQ(repaired.rescue.skipped[0].bytes, 4U);
  EXPECT_EQ(csvOf(repaired.bytes).text, shown(good + good));
}

/// Nothing of three million random bytes is taken for a record.
TEST(DamagedRecords, DoNotComeOfNoise) {
  std::mt19937 random(1);
  std::string noise = u8(99);
  while (noise.size() < 3'000'000) {
    noise += static_cast<char>(random());
  }
  const std::string good = joined(pairs(10));
  const Unsorted file(good + noise + good);
  const RepairedBytes repaired = repairedBytes(file.bytes);
  EXPECT_EQ(gapsOf(repaired, file.data), std::to_string(good.size()) + "+3000000 ");
  EXPECT_EQ(csvOf(repaired.bytes).text, shown(good + good));
  const Unsorted without_end(good + noise);
  const RepairedBytes cut = repairedBytes(without_end.bytes);
  EXPECT_EQ(gapsOf(cut, without_end.data), std::to_string(good.size()) + "+3000000 ");
  EXPECT_EQ(problemsOf(cut.bytes).size(), 0U);
}

}  // namespace
