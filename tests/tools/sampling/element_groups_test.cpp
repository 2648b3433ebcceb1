#include "reader/model/element_groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "exported.h"

using namespace mdf_tests;
using mdf_reader::Query;

namespace {

enum Storage : std::uint8_t { channel_group = 1, data_group = 2 };

/// What an array block says.
struct ArrayFields {
  std::uint8_t storage = channel_group;
  std::vector<std::uint64_t> dimensions;
  std::vector<std::uint64_t> counts;
  std::vector<std::uint64_t> data;
  std::uint32_t flags = 0;
};

std::uint64_t addArray(FileBuilder& file, const ArrayFields& array) {
  std::vector<std::uint64_t> links = {0};
  links.insert(links.end(), array.data.begin(), array.data.end());
  return file.add("CA", links,
                  u8(0, array.storage) + u16(array.dimensions.size()) + u32(array.flags, 0, 0) +
                      listed(array.dimensions) + listed(array.counts));
}

/// A channel of one byte, which is an array.
std::uint64_t arrayChannel(FileBuilder& file, const std::string& name, const ArrayFields& array) {
  ChannelSpec fields = firstByte(name);
  fields.composition = addArray(file, array);
  return file.addChannel(fields);
}

/// A group with the record id 1 of such an array and of a channel "last" in the byte after it.
std::uint64_t arrayGroup(FileBuilder& file, const ArrayFields& array, std::uint64_t cycles) {
  ChannelSpec last = firstByte("last");
  last.byte_offset = 1;
  return file.addChannelGroup({cycles, 2, 0, 1},
                              {arrayChannel(file, "v", array), file.addChannel(last)});
}

/// Such a group with the record ids of two elements.
std::string idsFile(const ArrayFields& array, const std::string& records = "\1Aa\2Bb\1Cc") {
  FileBuilder file;
  file.addDataGroup({arrayGroup(file, array, 2)}, file.addData(records), 1);
  return file.bytes();
}

const std::string by_ids = "v[0],last\n65,97\n67,99\n\nv[1],last\n66,98\n";

TEST(SplitElements, JsonLinesTellTheElement) {
  EXPECT_EQ(jsonOf(idsFile({channel_group, {2}, {1, 1}, {}}, "\1Aa\2Bb")).text,
            R"({"schema":2,"file":"FILE","group":0,"element":0,"name":"","columns":[)"
            R"({"name":"v[0]","unit":""},{"name":"last","unit":""}]})"
            "\n"
            R"({"schema":2,"file":"FILE","group":0,"element":0,"values":{"v[0]":65,"last":97}})"
            "\n\n"
            R"({"schema":2,"file":"FILE","group":0,"element":1,"name":"","columns":[)"
            R"({"name":"v[1]","unit":""},{"name":"last","unit":""}]})"
            "\n"
            R"({"schema":2,"file":"FILE","group":0,"element":1,"values":{"v[1]":66,"last":98}})"
            "\n");
}

TEST(SplitElements, QueriesChooseOneOfThem) {
  FileBuilder file;
  file.addDataGroup({arrayGroup(file, {channel_group, {2}, {2, 1}, {}}, 2)},
                    file.addData("\1Aa\2Bb\1Cc"), 1);
  file.addDataGroup({file.addChannelGroup({1, 1}, {file.addChannel(firstByte("plain"))})},
                    file.addData("Z"));
  Query query;
  query.element = 1;
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "v[1],last\n66,98\n");
  query.element = 2;
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "");
}

TEST(SplitElements, PatternsSelectAllOfThem) {
  Query query;
  query.channels = {"v"};
  EXPECT_EQ(healthyCsvOf(idsFile({channel_group, {2}, {2, 1}, {}}), query),
            "v[0]\n65\n67\n\nv[1]\n66\n");
}

TEST(SplitElements, ASingleElement) {
  EXPECT_EQ(healthyCsvOf(idsFile({channel_group, {1, 1}, {2}, {}}, "\1Aa\1Cc")),
            "v[0][0],last\n65,97\n67,99\n");
}

TEST(SplitElements, CountsThatTheDataDoesNotBearOut) {
  expectFinding(csvOf(idsFile({channel_group, {2}, {2, 3}, {}})), by_ids,
                "expected 3 records with id 2, found 1");
}

const std::string without_array = "last\n97\n99\n";

TEST(SplitElements, ArraysThatCannotBeSplitAreLeftOut) {
  struct Case {
    ArrayFields array;
    std::string finding;
  };
  const std::string sizes =
      " elements in up to 16 dimensions, found another number of elements or dimensions";
  const std::vector<Case> cases = {
      {{channel_group, {2}, {2}, {}},
       "expected a cycle count for each of the array's 2 elements, found fewer"},
      {{data_group, {2}, {2, 0}, {168}},
       "expected a link to data for each of the array's 2 elements, found fewer"},
      {{channel_group, {2, 2}, {2, 0, 0, 0}, {}, 64},
       "expected elements with records of their own to be counted by rows"},
      {{channel_group, {0}, {2}, {}}, sizes},
      {{channel_group, {65537}, {2}, {}}, sizes},
      {{channel_group, {UINT64_MAX, UINT64_MAX}, {2}, {}}, sizes},
      {{channel_group, std::vector<std::uint64_t>(17, 1), {2}, {}}, sizes},
      {{3, {2}, {2, 1}, {}}, "expected a known array storage, found 3"},
  };
  for (const Case& each : cases) {
    expectFinding(csvOf(idsFile(each.array, "\1Aa\1Cc")), "last\n97\n99\n", each.finding);
  }
}

TEST(SplitElements, OfTwoArrays) {
  FileBuilder file;
  const ArrayFields array{channel_group, {2}, {1, 1}, {}};
  file.addDataGroup({file.addChannelGroup({1, 1, 0, 1}, {arrayChannel(file, "v", array),
                                                         arrayChannel(file, "w", array),
                                                         file.addChannel(firstByte("last"))})},
                    file.addData("\1A"), 1);
  expectFinding(
      csvOf(file.bytes()), "last\n65\n",
      "expected at most one array in a channel group whose elements have records of their own");
}

TEST(SplitElements, WithDataOfTheirOwnInADataGroupOfSeveral) {
  FileBuilder file;
  const std::uint64_t data = file.addData("\1Aa\2B\1Cc");
  const std::uint64_t other = file.addChannelGroup({1, 1, 0, 2}, {file.addChannel(firstByte("o"))});
  file.addDataGroup({arrayGroup(file, {data_group, {1}, {2}, {data}}, 2), other}, data, 1);
  expectFinding(csvOf(file.bytes()), "last\n97\n99\n\no\n66\n", "found several");
}

TEST(SplitElements, WithoutRecordIds) {
  FileBuilder file;
  file.addDataGroup({arrayGroup(file, {channel_group, {2}, {1, 1}, {}}, 1)}, file.addData("AaBb"));
  const Exported exported = csvOf(file.bytes());
  expectFinding(exported, "v[0],last\n\nv[1],last\n",
                "expected record ids for 2 channel groups, found dg_rec_id_size 0; 4 bytes were "
                "not read");
}

TEST(SplitElements, LinksToDataThatLeadElsewhere) {
  FileBuilder file;
  const std::uint64_t first = file.addData("Aa");
  const std::uint64_t text = file.text("no data");
  const ArrayFields array{data_group, {3}, {1, 1, 1}, {first, text, UINT64_MAX}};
  file.addDataGroup({arrayGroup(file, array, 1)}, first);
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "v[0],last\n65,97\n\nv[1],last\n\nv[2],last\n");
  EXPECT_GE(exported.findings.size(), 2U);
}

/// Data that many elements have together is not gone through for each of them.
TEST(SplitElements, DataThatTheyShareHasALimit) {
  FileBuilder file;
  const std::uint64_t data = file.addData(std::string(100000, 'A'));
  const std::vector<std::uint64_t> counts(50, 50000);
  const std::vector<std::uint64_t> links(50, data);
  file.addDataGroup({arrayGroup(file, {data_group, {50}, counts, links}, 50000)}, data);
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_LT(exported.text.size(), std::size_t{6} * 50000 * 6 + 200);
}

/// Array blocks that overlap: each could have all the bytes after it for counts.
TEST(SplitElements, BlocksThatOverlapHaveALimit) {
  FileBuilder file;
  std::vector<std::uint64_t> groups;
  std::vector<std::uint64_t> arrays;
  for (int i = 0; i < 40; ++i) {
    ChannelSpec fields = firstByte("v");
    arrays.push_back(addArray(file, {channel_group, {20000}, {}, {}}));
    fields.composition = arrays.back();
    groups.push_back(file.addChannelGroup({0, 1, 0, 1}, {file.addChannel(fields)}));
    file.addDataGroup({groups.back()}, 0, 4);
  }
  file.addData(std::string(20000 * 8, '\0'));
  for (const std::uint64_t array : arrays) {
    file.write(array + 8, Bytes().u64(file.bytes().size() - array));
  }
  const Exported exported = csvOf(file.bytes());
  const auto refused = std::count_if(
      exported.findings.begin(), exported.findings.end(), [](const std::string& finding) {
        return finding.find("elements in up to 16 dimensions, found") != std::string::npos;
      });
  EXPECT_EQ(refused, 36);  // each but those of the first four
  EXPECT_EQ(exported.text.substr(0, 11), "v[0]\n\nv[1]\n");
}

}  // namespace
