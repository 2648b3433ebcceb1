// Bytes that belong to no block.

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

/// The small file with its data moved to the end, from which its writer had not come back.
SmallFile unfinishedFile(std::uint64_t length) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(1 + 4));
  const auto data = file.add("DT", {});
  file.replaceData(data);
  file.write(data + 8, Bytes().u64(length));
  return file;
}

TEST(BytesOutside, AreCountedInEachGapAndAfterTheLastBlock) {
  SmallFile file;
  file.append(Bytes().text("pad").text("###").zeros(3).text("a gap"));
  file.setComment(file.text("in between"));
  file.append(Bytes().zeros(20).text(std::string(60000, 'x')).zeros(100).text("y"));
  const std::string bytes = file.bytes();
  const auto first = std::to_string(bytes.find("a gap"));
  const auto second = std::to_string(bytes.find("xxxx"));
  EXPECT_EQ(problemsIn(bytes),
            first + " bytes-outside-blocks 5\n" + second + " bytes-outside-blocks 60101\n");
}

TEST(BytesOutside, PaddingMayHoldAnything) {
  SmallFile file;
  file.append("??????");
  file.setComment(file.text("seven"));
  EXPECT_EQ(problemsIn(file.bytes()), "");
  file.append(std::string((8 - file.bytes().size() % 8) % 8, '?') + '?');
  EXPECT_EQ(checkedCodes(file.bytes()), "bytes-outside-blocks 1\n");
}

TEST(BytesOutside, BlocksThatNobodyLinksAreNotCountedAsBytes) {
  SmallFile file;
  file.append(Bytes().zeros(6).text("in front"));
  file.text("lost");
  file.append(Bytes().zeros(3).text("after it"));
  EXPECT_EQ(
      problemsIn(file.bytes()),
      "768 bytes-outside-blocks 8\n776 block-unreachable 776 29\n808 bytes-outside-blocks 8\n");
}

TEST(BytesOutside, AnEmptyBlockAtTheEndThatNobodyLinksIsABlock) {
  SmallFile file;
  file.append(Bytes().zeros(6).text("##DT").zeros(4).u64(24).u64(0));
  EXPECT_EQ(problemsIn(file.bytes()), "768 block-unreachable 768 24\n");
}

TEST(BytesOutside, AfterTheLastDataOfAnUnfinishedFileAreItsData) {
  for (const std::uint64_t length : {0U, 24U, 40U}) {
    SmallFile file = unfinishedFile(length);
    file.append(std::string(144, 'd'));
    EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n") << length;
    file.write(0, "MDF     ");
    EXPECT_NE(checkedCodes(file.bytes()).find("bytes-outside-blocks 1\n"), std::string::npos)
        << checkedCodes(file.bytes());
  }
}

TEST(BytesOutside, DataOfAnUnfinishedFileGoesOnToTheNextBlock) {
  SmallFile file = unfinishedFile(24);
  file.append(std::string(144, 'd'));
  file.setComment(file.text("written at the end"));
  EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n");
  file.append(Bytes().zeros(8).text("more"));
  EXPECT_EQ(checkedCodes(file.bytes()), "bytes-outside-blocks 1\nfile-unfinished 1\n");
}

TEST(BytesOutside, AfterDataThatNoListNamesYetMayBeItsData) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(4 + 16));
  const auto data = file.add("DT", {});
  file.append(std::string(144, 'd'));
  EXPECT_EQ(checkedCodes(file.bytes()), "block-unreachable 1\nfile-unfinished 1\n");
  file.write(data + 8, Bytes().u64(0));
  EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n");
}

}  // namespace
