// Bytes that belong to no block.

#include <gtest/gtest.h>

#include <cstddef>
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
  EXPECT_EQ(checkedBytes(bytes),
            first +
                " warning bytes-outside-blocks: expected each byte in a block, found 5 bytes "
                "outside\n" +
                second +
                " warning bytes-outside-blocks: expected each byte in a block, found 60101 "
                "bytes outside\n");
}

TEST(BytesOutside, PaddingMayHoldAnything) {
  SmallFile file;
  file.append("??????");
  file.setComment(file.text("seven"));
  EXPECT_EQ(checkedBytes(file.bytes()), "");
  file.append(std::string((8 - file.bytes().size() % 8) % 8, '?') + '?');
  EXPECT_EQ(checkedCodes(file.bytes()), "bytes-outside-blocks 1\n");
}

TEST(BytesOutside, BlocksThatNobodyLinksAreNotCountedAsBytes) {
  SmallFile file;
  file.append(Bytes().zeros(6).text("in front"));
  file.text("lost");
  file.append(Bytes().zeros(3).text("after it"));
  EXPECT_EQ(checkedBytes(file.bytes()),
            "768 warning bytes-outside-blocks: expected each byte in a block, found 8 bytes "
            "outside\n"
            "776 warning block-unreachable: expected a link to each block, found none to ##TX at "
            "776 (0x308) of 29 bytes\n"
            "808 warning bytes-outside-blocks: expected each byte in a block, found 8 bytes "
            "outside\n");
}

TEST(BytesOutside, AfterTheLastDataOfAnUnfinishedFileAreItsData) {
  for (const std::uint64_t length : {0U, 24U, 40U}) {
    SmallFile file = unfinishedFile(length);
    file.append(std::string(144, 'd'));
    EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n") << length;
    file.write(0, "MDF     ");
    EXPECT_NE(checkedCodes(file.bytes()).find("bytes-outside-blocks 1\n"), std::string::npos)
        << length;
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
