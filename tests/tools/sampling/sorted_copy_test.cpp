#include "reader/data/sorted_copy.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tools/support/scratch_folder.h"

using namespace mdf_reader;
using namespace mdf_tests;

namespace {

const SortedCopy::Lost nothing_lost = [](std::uint64_t bytes) { ADD_FAILURE() << bytes; };

std::string recordOf(int group, int number) {
  std::string record = std::to_string(number);
  return record.insert(0, 7 - record.size(), static_cast<char>('a' + group));
}

/// All that a cursor gives, each record after its number.
std::string readAll(RecordCursor& cursor, std::size_t at_once) {
  std::string all;
  for (RecordSpan span = cursor.next(at_once); span.count > 0; span = cursor.next(at_once)) {
    for (std::size_t i = 0; i < span.count; ++i) {
      all += std::to_string(span.number(i)) + std::string(span.at(i)) + ' ';
    }
  }
  return all;
}

TEST(SortedCopy, GivesTheRecordsOfEachGroupInMemoryAndFromAFile) {
  constexpr int count = 50000;
  const ScratchFolder folder;
  for (const std::uint64_t most : {0U, 700006U, 700007U}) {
    SortedCopy copy({{7, count}, {7, count}, {0, 3}, {7, 1}}, nothing_lost, folder.path(), most);
    std::string expected;
    for (int i = 0; i < count; ++i) {
      copy.add(0, recordOf(0, i));
      copy.add(1, recordOf(1, i));
      expected += std::to_string(i) + recordOf(1, i) + ' ';
    }
    copy.add(3, recordOf(3, 0));
    copy.add(3, recordOf(3, 1));
    ASSERT_TRUE(copy.finish());
    EXPECT_TRUE(readAll(*copy.read(1, count), 1000) == expected) << most;
    EXPECT_TRUE(readAll(*copy.read(1, count), SIZE_MAX) == expected) << most;
    EXPECT_EQ(readAll(*copy.read(0, 2), 1000), "0aaaaaa0 1aaaaaa1 ");
    EXPECT_EQ(readAll(*copy.read(2, 3), 1000), "0 1 2 ");
    EXPECT_EQ(readAll(*copy.read(3, 2), 1000), "0dddddd0 ");
    const auto cursor = copy.read(1, count);
    cursor->skip(count - 1);
    EXPECT_EQ(cursor->rest(), 1U);
    EXPECT_EQ(readAll(*cursor, 1), "49999bb49999 ");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  }
}

TEST(SortedCopy, SaysWhenThereIsNoRoomForAFile) {
  SortedCopy copy({{7, 2}, {7, 2}}, nothing_lost, "/nowhere", 10);
  copy.add(0, recordOf(0, 0));
  EXPECT_FALSE(copy.finish());
}

}  // namespace
