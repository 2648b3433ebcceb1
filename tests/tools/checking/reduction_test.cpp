// Counts of sample reductions against their data.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

constexpr std::uint64_t record_bytes = 9;  // of the small file

std::uint64_t addReduction(SmallFile& file, std::uint64_t data, std::uint64_t records,
                           int flags = 0) {
  const auto reduction =
      file.add("SR", {0, data}, Bytes().u64(records).f64(1).u8s({1, flags}).zeros(6));
  file.link(SmallFile::group, 4, reduction);
  return reduction;
}

std::uint64_t addReductionData(SmallFile& file, std::size_t bytes) {
  return file.add("RD", {}, Bytes().zeros(bytes));
}

TEST(Reduction, RecordHasInvalidationBytesOnceIfItsFlagSaysSo) {
  for (const int flags : {0, 1}) {
    SmallFile file;
    file.setGroup({2, 7, 2});
    file.setChannel(SmallFile::time, {2, 1, 0, 0, 0, 48});
    file.setChannel(SmallFile::speed, {0, 0, 0, 0, 6, 8});
    const std::size_t bytes = flags == 0 ? 21 : 23;
    addReduction(file, addReductionData(file, 4 * bytes), 4, flags);
    EXPECT_EQ(problemsIn(file.bytes()), "") << flags;
  }
}

TEST(Reduction, DataIsInListsZippedOrNot) {
  SmallFile file;
  const auto zipped = file.add("DZ", {}, zippedFields(54, zippedZeros(54), "RD"));
  const auto plain = addReductionData(file, 27);
  const auto list = file.add("DL", {0, zipped, plain}, zeros(4) + u32(2) + u64(0, 54));
  addReduction(file, file.add("HL", {list}, zeros(8)), 3);
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(Reduction, HasDataForEachRecord) {
  struct Case {
    std::size_t bytes;  ///< of data; none without
    std::uint64_t records;
    std::string problems;
  };
  constexpr std::uint64_t half = std::uint64_t{1} << 63U;
  const std::vector<Case> cases = {
      {2 * 3 * record_bytes, 2, ""},
      {0, 0, ""},
      {54, 3, "848 cycle-count-wrong 3 27 54\n"},
      {0, 1, "768 cycle-count-wrong 1 27 0\n"},
      // Times the bytes of a record they are no number.
      {27, half, "824 cycle-count-wrong 9223372036854775808 27 27\n"},
      {27, UINT64_MAX, "824 cycle-count-wrong 18446744073709551615 27 27\n"},
      {27, UINT64_MAX / 27 + 1, "824 cycle-count-wrong 683212743470724134 27 27\n"},
  };
  for (const Case& each : cases) {
    SmallFile file;
    addReduction(file, each.bytes == 0 ? 0 : addReductionData(file, each.bytes), each.records);
    EXPECT_EQ(problemsIn(file.bytes()), each.problems) << each.records;
  }
}

TEST(Reduction, ChainsAndSharedData) {
  SmallFile file;
  const auto data = addReductionData(file, 27);
  const auto second = addReduction(file, data, 1);
  const auto first = addReduction(file, data, 1);
  file.link(first, 0, second);
  EXPECT_EQ(problemsIn(file.bytes()), "824 data-shared\n");
  file.link(second, 1, addReductionData(file, 27));
  EXPECT_EQ(problemsIn(file.bytes()), "");
  file.write(second + 40, u64(2));
  EXPECT_EQ(problemsIn(file.bytes()), "824 cycle-count-wrong 2 27 27\n");
  file.write(second + 40, u64(1));
  file.link(second, 0, first);
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\n");
}

TEST(Reduction, CountOfAnUnfinishedFileIsNotFinal) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(2));
  addReduction(file, addReductionData(file, 54), 0);
  EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n");
}

TEST(Reduction, DataOfOtherTypes) {
  SmallFile unknown("MDF     ", 420);
  addReduction(unknown, unknown.add("RV", {}, zeros(8)), 5);
  EXPECT_EQ(problemsIn(unknown.bytes()), "");
  SmallFile wrong;
  addReduction(wrong, SmallFile::speed_name, 1);
  EXPECT_EQ(checkedCodes(wrong.bytes()), "link-wrong-type 1\n");
}

TEST(Reduction, RecordsWithoutBytes) {
  SmallFile file;
  file.setGroup({0, 0});
  addReduction(file, 0, UINT64_MAX);
  EXPECT_EQ(checkedCodes(file.bytes()), "channel-outside-record 2\ncycle-count-wrong 1\n");
}

}  // namespace
