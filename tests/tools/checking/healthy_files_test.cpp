// What is normal in files raises nothing.

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/healthy_file.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

void expectHealthy(const FileBuilder& file) { EXPECT_EQ(checkedBytes(file.bytes()), ""); }

/// The sentence for an unfinished file with these flags, alone.
void expectOnlyUnfinished(const FileBuilder& file) {
  EXPECT_EQ(checkedCodes(file.bytes()), "file-unfinished 1\n");
}

// The file that the tests of the walker use: a block of each type, not all where they belong.
TEST(HealthyFiles, BlockOfEachType) {
  EXPECT_EQ(checkedCodes(healthyFile()),
            "link-count-wrong 2\nlink-unknown-type 1\nsignal-data-unused 1\n");
}

TEST(HealthyFiles, EmptyTextsAndMetadata) {
  SmallFile file;
  file.setComment(file.metadata(""));
  file.link(SmallFile::speed, 6, file.text(""));
  expectHealthy(file);
}

TEST(HealthyFiles, MetadataWithDeclarationAndLineEnds) {
  SmallFile file;
  file.setComment(
      file.metadata("<?xml version=\"1.0\"?>\n<HDcomment>\n  <TX>a &amp; b</TX>\n"
                    "</HDcomment>\n"));
  expectHealthy(file);
}

TEST(HealthyFiles, TypesAndLinksOfNewerVersions) {
  SmallFile file("MDF     ", 420);
  const auto data = file.add("DV", {}, Bytes().zeros(18));
  file.link(SmallFile::data_group, 2, file.add("LD", {0, data}, Bytes().u32(0).u32(1).u64(0)));
  file.write(SmallFile::data, Bytes().zeros(42));
  const auto unknown = file.add("QX", {SmallFile::group, 64, 0}, "...");
  file.setComment(file.add("TX", {unknown}, std::string("with a link\0", 12)));
  const auto event = file.add("EV", {0, 0, 0, 0, 0, SmallFile::speed, unknown},
                              Bytes().u8s({6, 1, 0, 0, 0, 0, 0, 0}).u32(2).zeros(4).u64(0).f64(1));
  file.link(FileBuilder::header, 4, event);
  expectHealthy(file);
}

/// How many records there are does not follow from a block that has their values alone.
TEST(HealthyFiles, ZippedValuesWithoutTheirInvalidation) {
  SmallFile file("MDF     ", 420);
  file.setGroup({2, 9, 1});
  file.replaceData(file.add("DZ", {}, zippedFields(18, zippedZeros(18), "DV")));
  expectHealthy(file);
}

TEST(HealthyFiles, EventsThatReferToEachOther) {
  SmallFile file;
  const std::string fields = Bytes().zeros(8).u32(1).u16(0).zeros(10).f64(1);
  const auto end = file.add("EV", {0, 0, 0, 0, 0, SmallFile::speed}, fields);
  const auto begin = file.add("EV", {end, 0, end, 0, 0, SmallFile::group}, fields);
  file.link(end, 2, begin);
  file.link(end, 1, begin);
  file.link(FileBuilder::header, 4, begin);
  expectHealthy(file);
}

TEST(HealthyFiles, UnfinishedOneWithRecordsAfterTheLastDataBlock) {
  for (const std::uint64_t length : {24U, 0U}) {
    SmallFile file("UnFinMF ");
    file.write(60, Bytes().u16(5));
    file.setGroup({0, 9});
    file.write(SmallFile::data + 8, Bytes().u64(length));
    file.append("##TX is no block in records, nor what follows");
    expectOnlyUnfinished(file);
  }
}

TEST(HealthyFiles, UnfinishedOneWithAListThatIsNotFinal) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(16));
  file.replaceData(file.add("DL", {0, 0, 0}, Bytes().zeros(4).u32(1).u64(0).u64(0)));
  EXPECT_EQ(checkedCodes(file.bytes()), "cycle-count-wrong 1\nfile-unfinished 1\n");
}

}  // namespace
