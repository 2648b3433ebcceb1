// Counts of sample reductions against their data.

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

constexpr std::uint64_t record_bytes = 9;  // of the small file

std::uint64_t addReduction(SmallFile& file, std::uint64_t data, std::uint64_t records, int flags) {
  const auto reduction =
      file.add("SR", {0, data}, Bytes().u64(records).f64(1).u8s({1, flags}).zeros(6));
  file.link(SmallFile::group, 4, reduction);
  return reduction;
}

std::uint64_t addReductionData(SmallFile& file, std::size_t bytes) {
  return file.add("RD", {}, Bytes().zeros(bytes));
}

TEST(Reduction, RecordHasDataBytesThreeTimes) {
  SmallFile file;
  addReduction(file, addReductionData(file, 2 * 3 * record_bytes), 2, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "");
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
  const auto list = file.add("DL", {0, zipped, plain}, Bytes().zeros(4).u32(2).u64(0).u64(54));
  addReduction(file, file.add("HL", {list}, Bytes().zeros(8)), 3, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(Reduction, WithoutRecordsNeedsNoData) {
  SmallFile file;
  addReduction(file, 0, 0, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(Reduction, CountThatIsTooLarge) {
  SmallFile file;
  addReduction(file, addReductionData(file, 54), 3, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "848 cycle-count-wrong 3 27 54\n");
}

TEST(Reduction, CountWithoutData) {
  SmallFile file;
  addReduction(file, 0, 1, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "768 cycle-count-wrong 1 27 0\n");
}

TEST(Reduction, SecondOfAChain) {
  SmallFile file;
  const auto second = addReduction(file, addReductionData(file, 27), 2, 0);
  const auto first = addReduction(file, addReductionData(file, 27), 1, 0);
  file.link(first, 0, second);
  EXPECT_EQ(problemsIn(file.bytes()), "824 cycle-count-wrong 2 27 27\n");
}

TEST(Reduction, SharedDataIsCountedOnce) {
  SmallFile file;
  const auto data = addReductionData(file, 27);
  const auto second = addReduction(file, data, 1, 0);
  const auto first = addReduction(file, data, 1, 0);
  file.link(first, 0, second);
  EXPECT_EQ(problemsIn(file.bytes()), "824 data-shared\n");
}

TEST(Reduction, CountOfAnUnfinishedFileIsNotFinal) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(2));
  addReduction(file, addReductionData(file, 54), 0, 0);
  EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n");
}

TEST(Reduction, DataOfTypesThatNobodyKnowsIsNotCounted) {
  SmallFile file("MDF     ", 420);
  addReduction(file, file.add("RV", {}, Bytes().zeros(8)), 5, 0);
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(Reduction, CountsWhoseProductWithARecordIsNoNumber) {
  for (const std::uint64_t records : {std::uint64_t{1} << 63U, UINT64_MAX, UINT64_MAX / 27 + 1}) {
    SmallFile file;
    addReduction(file, addReductionData(file, 27), records, 0);
    EXPECT_EQ(problemsIn(file.bytes()),
              "824 cycle-count-wrong " + std::to_string(records) + " 27 27\n");
  }
}

TEST(Reduction, RecordsWithoutBytes) {
  SmallFile file;
  file.setGroup({0, 0});
  addReduction(file, 0, UINT64_MAX, 0);
  EXPECT_EQ(checkedCodes(file.bytes()), "channel-outside-record 2\ncycle-count-wrong 1\n");
}

TEST(Reduction, DataOfTheWrongType) {
  SmallFile file;
  addReduction(file, SmallFile::speed_name, 1, 0);
  EXPECT_EQ(checkedCodes(file.bytes()), "link-wrong-type 1\n");
}

TEST(Reduction, ChainWithoutAnEnd) {
  SmallFile file;
  const auto reduction = addReduction(file, addReductionData(file, 27), 1, 0);
  file.link(reduction, 0, reduction);
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\n");
}

}  // namespace
