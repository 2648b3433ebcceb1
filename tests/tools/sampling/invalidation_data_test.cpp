#include "reader/data/invalidation_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exported.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

constexpr std::uint32_t has_invalidation = 0x80000000U;

/// A list of values without numbers for its blocks.
std::uint64_t valueList(FileBuilder& file, std::uint32_t flags, std::uint32_t count,
                        std::vector<std::uint64_t> blocks, std::uint64_t next = 0) {
  blocks.insert(blocks.begin(), next);
  return file.add("LD", blocks, Bytes().u32(flags | 1).u32(count).u64(2));
}

ChannelSpec invalidable(const std::string& name) {
  ChannelSpec fields = firstByte(name);
  fields.flags = 2;
  return fields;
}

/// A file of a group "a" of so many records of a byte, with the data that a list leads to.
FileBuilder fileWith(FileBuilder file, std::uint64_t cycles, std::uint64_t list) {
  file.addDataGroup({file.addChannelGroup({cycles, 1, 1}, {file.addChannel(invalidable("a"))})},
                    list);
  return file;
}

FileBuilder newFile() { return FileBuilder("MDF     ", 420); }

TEST(InvalidationData, ChannelsWithoutABitAreAlwaysValid) {
  FileBuilder file = newFile();
  const std::uint64_t list =
      valueList(file, has_invalidation, 1, {file.add("DV", {}, "AB"), file.add("DI", {}, "\3\3")});
  file.addDataGroup({file.addChannelGroup({2, 1, 1}, {file.addChannel(firstByte("a"))})}, list);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a\n65\n66\n");
}

TEST(InvalidationData, BlocksWithoutAByte) {
  FileBuilder file = newFile();
  const std::uint64_t list =
      valueList(file, has_invalidation, 3,
                {file.add("DV", {}, ""), file.add("DV", {}, "A"), file.add("DV", {}, ""),
                 file.add("DI", {}, ""), file.add("DI", {}, "\1"), 0});
  EXPECT_EQ(healthyCsvOf(fileWith(file, 1, list).bytes()), "a\n\"\"\n");
}

TEST(InvalidationData, OfAnUnfinishedFileGoesOnToItsEnd) {
  FileBuilder file("UnFinMF ", 420);
  file.write(60, Bytes().u16(1 + 4));
  const std::uint64_t values = file.add("DV", {}, "AB");
  const std::uint64_t list = valueList(file, has_invalidation, 1, {values, 0});
  file.addDataGroup({file.addChannelGroup({0, 1, 1}, {file.addChannel(invalidable("a"))})}, list);
  const std::uint64_t bits = file.add("DI", {}, "");
  file.append(Bytes().u8s({0, 1}));
  file.link(list, 2, bits);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a\n65\n\"\"\n");
}

TEST(InvalidationData, TooShortOrTooLong) {
  for (const std::string& bits : {std::string("\1"), Bytes().u8s({1, 0, 1}).str()}) {
    FileBuilder file = newFile();
    const std::uint64_t list =
        valueList(file, has_invalidation, 1, {file.add("DV", {}, "AB"), file.add("DI", {}, bits)});
    expectFinding(csvOf(fileWith(file, 2, list).bytes()), "a\n\"\"\n66\n",
                  "expected 2 bytes of invalidation data for the 2 records in the data at ");
  }
}

TEST(InvalidationData, LinksThatAreMissing) {
  FileBuilder file = newFile();
  const std::uint64_t list =
      valueList(file, has_invalidation, 2,
                {file.add("DV", {}, "A"), file.add("DV", {}, "B"), file.add("DI", {}, "\1")});
  expectFinding(csvOf(fileWith(file, 2, list).bytes()), "a\n\"\"\n66\n",
                "expected as many links to invalidation data as to data in the list, found fewer");
}

TEST(InvalidationData, ManyBytesThatAreNotThereTakeNoMemory) {
  FileBuilder file = newFile();
  const std::uint64_t list = valueList(file, has_invalidation, 1, {file.add("DV", {}, "AB"), 0});
  file.addDataGroup(
      {file.addChannelGroup({2, 1, 0xF0000000U}, {file.addChannel(invalidable("a"))})}, list);
  EXPECT_EQ(csvOf(file.bytes()).text, "a\n65\n66\n");
  const TempFile path(file.bytes());
  EXPECT_LT(readThrough(path.path()).peak_bytes, 1000000U);
}

TEST(InvalidationData, LinksThatLeadElsewhere) {
  FileBuilder file = newFile();
  const std::uint64_t text = file.text("no data");
  const std::uint64_t other = file.add("DV", {}, "\1");
  const std::uint64_t zipped = addZipped(file, "DV", "\1");
  for (const std::uint64_t link : {text, other, zipped, std::uint64_t{1} << 40U, UINT64_MAX}) {
    FileBuilder each = file;
    const std::uint64_t list =
        valueList(each, has_invalidation, 1, {each.add("DV", {}, "A"), link});
    expectFinding(csvOf(fileWith(each, 1, list).bytes()), "a\n65\n",
                  "expected invalidation data at ");
  }
}

TEST(InvalidationData, ZippedDataThatIsBroken) {
  FileBuilder file = newFile();
  const std::uint64_t zipped = addZipped(file, "DI", "\1\1\1");
  file.write(zipped + 48, "xxxx");
  const std::uint64_t list =
      valueList(file, has_invalidation, 1, {file.add("DV", {}, "ABC"), zipped});
  expectFinding(csvOf(fileWith(file, 3, list).bytes()), "a\n65\n66\n67\n",
                "expected a zlib stream");
}

/// A block that is unzipped for each of many parts.
TEST(InvalidationData, OneBlockForAllPartsHasALimit) {
  FileBuilder file = newFile();
  std::vector<std::uint64_t> blocks;
  std::string expected = "a\n";
  for (int i = 0; i < 100; ++i) {
    blocks.push_back(file.add("DV", {}, "A"));
    expected += i == 0 ? "\"\"\n" : "65\n";
  }
  const std::uint64_t bits = file.add("DI", {}, '\1' + std::string(5000, '\0'));
  blocks.insert(blocks.end(), 100, bits);
  const std::uint64_t list = valueList(file, has_invalidation, 100, blocks);
  const Exported exported = csvOf(fileWith(file, 100, list).bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_EQ(exported.text.substr(0, 5), expected.substr(0, 5));
  EXPECT_EQ(exported.text.substr(exported.text.size() - 150),
            expected.substr(expected.size() - 150));
}

TEST(InvalidationData, RecordsOfInvalidationBytesAlone) {
  FileBuilder file = newFile();
  ChannelSpec index = firstByte("index");
  index.bit_count = 0;
  index.type = 6;
  const std::uint64_t list =
      valueList(file, has_invalidation, 1, {file.add("DV", {}, ""), file.add("DI", {}, "\1\1")});
  file.addDataGroup({file.addChannelGroup({2, 0, 1}, {file.addChannel(index)})}, list);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "index\n0\n1\n");
}

}  // namespace
