// Counts of records whose invalidation bytes stand apart from their values.

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

/// The small file as one of version 4.2, with a byte of invalidation bits for each of its two
/// records of 9 bytes, and the bytes of values that a test gives it.
class FileOfValues : public SmallFile {
 public:
  FileOfValues() : SmallFile("MDF     ", 420) { setGroup({2, 9, 1}); }

  std::uint64_t values(std::size_t bytes) { return add("DV", {}, Bytes().zeros(bytes)); }
  std::uint64_t zippedValues(std::uint16_t bytes) {
    return add("DZ", {}, zippedFields(bytes, zippedZeros(bytes), "DV"));
  }
  std::uint64_t bits(std::size_t bytes) { return add("DI", {}, Bytes().zeros(bytes)); }

  /// A list of two blocks of values with their invalidation bits, one record each.
  std::uint64_t list(std::uint64_t first, std::uint64_t second, std::uint64_t next = 0) {
    return add("LD", {next, first, second, bits(1), bits(1)},
               Bytes().u32(0x80000000).u32(2).u64(0).u64(1));
  }
};

TEST(SeparateValues, AreCountedWithoutInvalidationBytes) {
  FileOfValues file;
  file.replaceData(file.values(18));
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(SeparateValues, InAListAreCountedWithoutWhatFollowsThem) {
  FileOfValues file;
  file.replaceData(file.list(file.values(9), file.zippedValues(9)));
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(SeparateValues, TooFew) {
  FileOfValues file;
  file.replaceData(file.values(17));
  EXPECT_EQ(problemsIn(file.bytes()), "232 cycle-count-wrong 2 9 17 8\n");
}

TEST(SeparateValues, TooManyInAChainOfLists) {
  FileOfValues file;
  const auto last = file.list(file.values(9), file.values(9));
  file.replaceData(file.list(file.values(9), file.zippedValues(9), last));
  EXPECT_EQ(problemsIn(file.bytes()), "232 cycle-count-wrong 2 9 36 18\n");
}

TEST(SeparateValues, RecordsInAListHaveTheirInvalidationBytes) {
  FileOfValues file;
  const auto records = file.add("DT", {}, Bytes().zeros(20));
  file.replaceData(file.add("LD", {0, records}, Bytes().u32(0).u32(1).u64(0)));
  EXPECT_EQ(problemsIn(file.bytes()), "");
}

TEST(SeparateValues, OfAListThatLeadsToItself) {
  FileOfValues file;
  const auto list = file.list(file.values(9), file.values(9));
  file.link(list, 0, list);
  file.replaceData(list);
  EXPECT_NE(checkedCodes(file.bytes()).find("chain-endless 1\n"), std::string::npos);
}

TEST(SeparateValues, ListWithACountThatLies) {
  FileOfValues file;
  const auto values = file.values(18);
  file.replaceData(file.add("LD", {0, values}, Bytes().u32(0).u32(0xFFFFFFFF).u64(0)));
  EXPECT_NE(checkedCodes(file.bytes()).find("links-missing 1\n"), std::string::npos);
}

}  // namespace
