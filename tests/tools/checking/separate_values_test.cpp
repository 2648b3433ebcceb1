// Counts of records whose invalidation bytes stand apart from their values.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

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
  struct Case {
    std::string shows;
    std::string problems;
    std::function<std::uint64_t(FileOfValues&)> data;
  };
  const std::vector<Case> cases = {
      {"a block", "", [](FileOfValues& f) { return f.values(18); }},
      {"too few", "232 cycle-count-wrong 2 9 17 8\n", [](FileOfValues& f) { return f.values(17); }},
      {"a list, without what comes after it", "",
       [](FileOfValues& f) { return f.list(f.values(9), f.zippedValues(9)); }},
      {"too many in a chain of lists", "232 cycle-count-wrong 2 9 36 18\n",
       [](FileOfValues& f) {
         const auto last = f.list(f.values(9), f.values(9));
         return f.list(f.values(9), f.zippedValues(9), last);
       }},
      {"records in a list, with their invalidation bytes", "",
       [](FileOfValues& f) {
         return f.add("LD", {0, f.addData(zeros(20))}, u32(0, 1) + u64(0));
       }},
  };
  for (const Case& each : cases) {
    FileOfValues file;
    file.replaceData(each.data(file));
    EXPECT_EQ(problemsIn(file.bytes()), each.problems) << each.shows;
  }
}

TEST(SeparateValues, ListsThatLie) {
  FileOfValues circle;
  const auto list = circle.list(circle.values(9), circle.values(9));
  circle.link(list, 0, list);
  circle.replaceData(list);
  EXPECT_NE(checkedCodes(circle.bytes()).find("chain-endless 1\n"), std::string::npos);
  FileOfValues count;
  const auto values = count.values(18);
  count.replaceData(count.add("LD", {0, values}, u32(0, UINT32_MAX) + u64(0)));
  EXPECT_NE(checkedCodes(count.bytes()).find("links-missing 1\n"), std::string::npos);
}

}  // namespace
