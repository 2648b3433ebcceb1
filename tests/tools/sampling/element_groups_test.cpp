#include "reader/model/element_groups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "sample_file.h"

using namespace mdf_tests;
using mdf_reader::Selection;

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

std::uint64_t addArray(SampleFile& file, const ArrayFields& array) {
  std::vector<std::uint64_t> links = {0};
  links.insert(links.end(), array.data.begin(), array.data.end());
  Bytes fields;
  fields.u8(0).u8(array.storage).u16(static_cast<std::uint16_t>(array.dimensions.size()));
  fields.u32(array.flags).u32(0).u32(0);
  for (const auto* numbers : {&array.dimensions, &array.counts}) {
    for (const std::uint64_t number : *numbers) {
      fields.u64(number);
    }
  }
  return file.add("CA", links, fields);
}

/// A channel of one byte, which is an array.
std::uint64_t arrayChannel(SampleFile& file, const std::string& name, const ArrayFields& array) {
  ChannelFields fields = firstByte(name);
  fields.composition = addArray(file, array);
  return file.channel(fields);
}

/// A group with the record id 1 of such an array and of a channel "last" in the byte behind it.
std::uint64_t arrayGroup(SampleFile& file, const ArrayFields& array, std::uint64_t cycles) {
  ChannelFields last = firstByte("last");
  last.byte_offset = 1;
  return file.group({cycles, 2, 0, 1}, {arrayChannel(file, "v", array), file.channel(last)});
}

/// Such a group with the record ids of two elements.
std::string idsFile(const ArrayFields& array, const std::string& records = "\1Aa\2Bb\1Cc") {
  SampleFile file;
  file.dataGroup({arrayGroup(file, array, 2)}, file.data(records), 1);
  return file.bytes();
}

const std::string by_ids = "v[0],last\n65,97\n67,99\n\nv[1],last\n66,98\n";

TEST(SplitElements, EachHasItsRecordId) {
  EXPECT_EQ(healthyCsvOf(idsFile({channel_group, {2}, {2, 1}, {}})), by_ids);
}

TEST(SplitElements, EachHasItsData) {
  SampleFile file;
  const std::uint64_t first = file.data("Aa");
  const std::uint64_t second = file.data("BbCc");
  file.dataGroup({arrayGroup(file, {data_group, {2}, {1, 2}, {first, second}}, 1)}, first);
  file.dataGroup({file.group({1, 1}, {file.channel(firstByte("behind"))})}, file.data("Z"));
  EXPECT_EQ(healthyCsvOf(file.bytes()),
            "v[0],last\n65,97\n\nv[1],last\n66,98\n67,99\n\nbehind\n90\n");
}

TEST(SplitElements, JsonLinesTellTheElement) {
  EXPECT_EQ(jsonOf(idsFile({channel_group, {2}, {1, 1}, {}}, "\1Aa\2Bb")).text,
            "{\"schema\":1,\"group\":0,\"element\":0,\"name\":\"\",\"columns\":[{\"name\":"
            "\"v[0]\",\"unit\":\"\"},{\"name\":\"last\",\"unit\":\"\"}]}\n"
            "{\"schema\":1,\"group\":0,\"element\":0,\"values\":{\"v[0]\":65,\"last\":97}}\n\n"
            "{\"schema\":1,\"group\":0,\"element\":1,\"name\":\"\",\"columns\":[{\"name\":"
            "\"v[1]\",\"unit\":\"\"},{\"name\":\"last\",\"unit\":\"\"}]}\n"
            "{\"schema\":1,\"group\":0,\"element\":1,\"values\":{\"v[1]\":66,\"last\":98}}\n");
}

TEST(SplitElements, PatternsSelectAllOfThem) {
  Selection selection;
  selection.channels = {"v"};
  EXPECT_EQ(healthyCsvOf(idsFile({channel_group, {2}, {2, 1}, {}}), selection),
            "v[0]\n65\n67\n\nv[1]\n66\n");
}

TEST(SplitElements, ASingleElement) {
  EXPECT_EQ(healthyCsvOf(idsFile({channel_group, {1, 1}, {2}, {}}, "\1Aa\1Cc")),
            "v[0][0],last\n65,97\n67,99\n");
}

TEST(SplitElements, CountsThatTheDataDoesNotBearOut) {
  expectFinding(csvOf(idsFile({channel_group, {2}, {2, 3}, {}})), by_ids,
                "expected as many records as the cycle count 3 says, found 1");
}

const std::string without_array = "last\n97\n99\n";

TEST(SplitElements, WithoutACountForEach) {
  expectFinding(csvOf(idsFile({channel_group, {2}, {2}, {}}, "\1Aa\1Cc")), without_array,
                "expected a cycle count for each of the array's 2 elements, found fewer");
}

TEST(SplitElements, WithoutALinkForEach) {
  SampleFile file;
  const std::uint64_t data = file.data("AaCc");
  file.dataGroup({arrayGroup(file, {data_group, {2}, {2, 0}, {data}}, 2)}, data);
  expectFinding(csvOf(file.bytes()), without_array,
                "expected a link to data for each of the array's 2 elements, found fewer");
}

TEST(SplitElements, InColumns) {
  const std::vector<std::uint64_t> counts = {2, 0, 0, 0};
  expectFinding(csvOf(idsFile({channel_group, {2, 2}, counts, {}, 64}, "\1Aa\1Cc")), without_array,
                "expected elements with records of their own to be counted by rows");
}

TEST(SplitElements, SizesThatLie) {
  for (const auto& dimensions : std::vector<std::vector<std::uint64_t>>{
           {0}, {65537}, {UINT64_MAX, UINT64_MAX}, std::vector<std::uint64_t>(17, 1)}) {
    expectFinding(
        csvOf(idsFile({channel_group, dimensions, {2}, {}}, "\1Aa\1Cc")), without_array,
        " elements in up to 16 dimensions, found another number of elements or dimensions");
  }
}

TEST(SplitElements, StoredInAnUnknownWay) {
  expectFinding(csvOf(idsFile({3, {2}, {2, 1}, {}}, "\1Aa\1Cc")), without_array,
                "expected a known array storage, found 3");
}

TEST(SplitElements, OfTwoArrays) {
  SampleFile file;
  const ArrayFields array{channel_group, {2}, {1, 1}, {}};
  file.dataGroup(
      {file.group({1, 1, 0, 1}, {arrayChannel(file, "v", array), arrayChannel(file, "w", array),
                                 file.channel(firstByte("last"))})},
      file.data("\1A"), 1);
  expectFinding(
      csvOf(file.bytes()), "last\n65\n",
      "expected at most one array in a channel group whose elements have records of their own");
}

TEST(SplitElements, WithDataOfTheirOwnInADataGroupOfSeveral) {
  SampleFile file;
  const std::uint64_t data = file.data("\1Aa\2B\1Cc");
  const std::uint64_t other = file.group({1, 1, 0, 2}, {file.channel(firstByte("o"))});
  file.dataGroup({arrayGroup(file, {data_group, {1}, {2}, {data}}, 2), other}, data, 1);
  expectFinding(csvOf(file.bytes()), without_array + "\no\n66\n", "found several");
}

TEST(SplitElements, WithoutRecordIds) {
  SampleFile file;
  file.dataGroup({arrayGroup(file, {channel_group, {2}, {1, 1}, {}}, 1)}, file.data("AaBb"));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "v[0],last\n\nv[1],last\n");
  EXPECT_EQ(exported.findings.size(), 2U);
}

TEST(SplitElements, LinksToDataThatLeadElsewhere) {
  SampleFile file;
  const std::uint64_t first = file.data("Aa");
  const std::uint64_t text = file.text("no data");
  const ArrayFields array{data_group, {3}, {1, 1, 1}, {first, text, UINT64_MAX}};
  file.dataGroup({arrayGroup(file, array, 1)}, first);
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "v[0],last\n65,97\n\nv[1],last\n\nv[2],last\n");
  EXPECT_GE(exported.findings.size(), 2U);
}

/// Data that many elements have together is not gone through for each of them.
TEST(SplitElements, DataThatTheyShareHasALimit) {
  SampleFile file;
  const std::uint64_t data = file.data(std::string(100000, 'A'));
  const std::vector<std::uint64_t> counts(50, 50000);
  const std::vector<std::uint64_t> links(50, data);
  file.dataGroup({arrayGroup(file, {data_group, {50}, counts, links}, 50000)}, data);
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_LT(exported.text.size(), std::size_t{6} * 50000 * 6 + 200);
}

/// Array blocks one over the other: each could have all the bytes behind it for counts.
TEST(SplitElements, BlocksThatOverlapHaveALimit) {
  SampleFile file;
  std::vector<std::uint64_t> groups;
  std::vector<std::uint64_t> arrays;
  for (int i = 0; i < 40; ++i) {
    ChannelFields fields = firstByte("v");
    arrays.push_back(addArray(file, {channel_group, {20000}, {}, {}}));
    fields.composition = arrays.back();
    groups.push_back(file.group({0, 1, 0, 1}, {file.channel(fields)}));
    file.dataGroup({groups.back()}, 0, 4);
  }
  file.data(std::string(20000 * 8, '\0'));
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
