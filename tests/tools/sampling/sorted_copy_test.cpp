// Records of several groups put side by side, in memory and in a file.

#include "reader/data/sorted_copy.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "reader/data/gathered_records.h"
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

constexpr int many = 50000;

/// Adds records of the groups 0 and 1, and some of group 3; returns those of group 1.
template <class Copy>
std::string fill(Copy& copy) {
  std::string expected;
  for (int i = 0; i < many; ++i) {
    copy.add(0, recordOf(0, i));
    copy.add(1, recordOf(1, i));
    expected += std::to_string(i) + recordOf(1, i) + ' ';
  }
  copy.add(3, recordOf(3, 0));
  return expected;
}

template <class Copy>
void expectRecords(Copy& copy, const std::string& expected) {
  EXPECT_TRUE(readAll(*copy.read(1, many), 1000) == expected);
  EXPECT_TRUE(readAll(*copy.read(1, many), SIZE_MAX) == expected);
  EXPECT_EQ(readAll(*copy.read(0, 2), 1000), "0aaaaaa0 1aaaaaa1 ");
  EXPECT_EQ(readAll(*copy.read(2, 3), 1000), "0 1 2 ");
  EXPECT_EQ(readAll(*copy.read(3, 1), 1000), "0dddddd0 ");
  const auto cursor = copy.read(1, many);
  cursor->skip(many - 1);
  EXPECT_EQ(cursor->rest(), 1U);
  EXPECT_EQ(readAll(*cursor, 1), "49999bb49999 ");
}

TEST(SortedCopy, GivesTheRecordsOfEachGroup) {
  const ScratchFolder folder;
  const auto copy = std::make_shared<SortedCopy>(
      std::vector<SortedCopy::Part>{{7, many}, {7, many}, {0, 3}, {7, 1}}, nothing_lost,
      folder.path());
  const std::string expected = fill(*copy);
  copy->add(3, recordOf(3, 1));
  ASSERT_TRUE(copy->finish());
  expectRecords(*copy, expected);
  EXPECT_EQ(readAll(*copy->read(3, 2), 1000), "0dddddd0 ");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(SortedCopy, SaysWhenThereIsNoRoomForAFile) {
  SortedCopy copy({{7, 2}, {7, 2}}, nothing_lost, "/nowhere");
  copy.add(0, recordOf(0, 0));
  EXPECT_FALSE(copy.finish());
}

TEST(GatheredRecords, AreThoseOfTheGroupsThatAreWanted) {
  GatheredRecords copy(5, 1U << 20U);
  for (const std::size_t group : {0U, 1U, 2U, 3U}) {
    copy.want(group, group == 2 ? 0 : 7);
  }
  const std::string expected = fill(copy);
  EXPECT_TRUE(copy.add(4, "not wanted"));
  EXPECT_FALSE(copy.has(4));
  expectRecords(copy, expected);
}

TEST(GatheredRecords, TakeNoMoreMemoryThanTheyMay) {
  GatheredRecords copy(2, 16 * 40 + 99);
  copy.want(0, 40);
  copy.want(1, 100);
  for (int i = 0; i < 16; ++i) {
    EXPECT_TRUE(copy.add(0, std::string(40, 'x')));
  }
  EXPECT_FALSE(copy.add(0, std::string(40, 'x')));
  EXPECT_FALSE(copy.add(1, std::string(100, 'x')));
}

}  // namespace
