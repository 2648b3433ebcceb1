// What is normal in files raises nothing.

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/attachment_blocks.h"
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

TEST(HealthyFiles, HeaderAlone) { expectHealthy(FileBuilder()); }

TEST(HealthyFiles, EveryVersionOfMdf4) {
  for (const unsigned version : {400U, 410U, 411U, 420U}) {
    expectHealthy(SmallFile("MDF     ", version));
  }
}

TEST(HealthyFiles, GapsAndBytesAfterTheLastBlock) {
  SmallFile file;
  file.append(Bytes().zeros(50));
  file.setComment(file.text("behind a gap"));
  file.append("???");
  expectHealthy(file);
}

TEST(HealthyFiles, TextsWithSeveralZerosOrCharactersOfAllLengths) {
  SmallFile file;
  file.setComment(
      file.add("TX", {}, Bytes().text("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x9A\x97").zeros(7)));
  file.write(19, std::string("\0", 1));  // in the program identifier
  expectHealthy(file);
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

TEST(HealthyFiles, LinksBackwardsAndSharedBlocks) {
  FileBuilder file;
  const auto name = file.text("name");
  const auto unit = file.metadata("<CNunit><TX>km</TX></CNunit>");
  const auto source = file.add("SI", {name, name, 0}, Bytes().zeros(8));
  const auto reference = file.text("on");
  const auto scale = file.add("CC", {0, unit, 0, 0}, Bytes().u8s({1, 0}).zeros(4).u16(2).zeros(32));
  const auto conversion = file.add("CC", {name, unit, 0, 0, reference, scale},
                                   Bytes().u8s({7, 0}).zeros(2).u16(2).u16(1).zeros(24));
  std::uint64_t channel = 0;
  for (std::uint32_t byte = 24; byte-- > 0;) {
    const bool is_master = byte == 0;
    channel =
        file.add("CN", {channel, 0, name, source, conversion, 0, unit, name},
                 ChannelSpec{is_master ? 2U : 0U, is_master ? 1U : 0U, 0, 0, byte, 8}.fields());
  }
  const auto group = file.add("CG", {0, channel, name, source, 0, name}, GroupSpec{1, 24}.fields());
  const auto data = file.add("DT", {}, Bytes().zeros(24));
  const auto data_group = file.add("DG", {0, group, data, name}, dataGroupFields(0));
  file.link(FileBuilder::header, 0, data_group);
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

TEST(HealthyFiles, InvalidationDataApartAndZipped) {
  SmallFile file("MDF     ", 420);
  file.setGroup({2, 9, 1});
  const auto values = file.add("DZ", {}, zippedFields(18, zippedZeros(18), "DV"));
  const auto bits = file.add("DZ", {}, zippedFields(2, zippedZeros(2), "DI"));
  const auto last = file.add("LD", {0, values, bits}, Bytes().u32(0x80000000U).u32(1).u64(0));
  const auto first = file.add("LD", {last, 0, 0}, Bytes().u32(0x80000001U).u32(1).u64(2));
  file.replaceData(file.add("HL", {first}, Bytes().zeros(8)));
  expectHealthy(file);
}

/// How many records there are does not follow from a block that has their values alone.
TEST(HealthyFiles, ZippedValuesWithoutTheirInvalidation) {
  SmallFile file("MDF     ", 420);
  file.setGroup({2, 9, 1});
  file.replaceData(file.add("DZ", {}, zippedFields(18, zippedZeros(18), "DV")));
  expectHealthy(file);
}

TEST(HealthyFiles, GroupThatHasItsMasterElsewhere) {
  SmallFile file;
  const auto channel = file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                                ChannelSpec{0, 0, 0, 0, 0, 8}.fields());
  const auto group =
      file.add("CG", {0, channel, 0, 0, 0, 0, SmallFile::group}, GroupSpec{2, 1, 0, 0, 8}.fields());
  const auto data = file.add("DT", {}, Bytes().zeros(2));
  file.link(SmallFile::data_group, 0, file.add("DG", {0, group, data, 0}, dataGroupFields(0)));
  expectHealthy(file);
}

TEST(HealthyFiles, LinkCountsThatSayLessThanThereIsMisleadOnlyOthers) {
  SmallFile file;
  const auto data = file.add("DZ", {}, zippedFields(18, zippedZeros(18)));
  const auto list = file.add("DL", {0, data}, Bytes().zeros(4).u32(1).u64(0));
  const auto header_list = file.add("HL", {list}, Bytes().zeros(8));
  file.write(header_list + 16, Bytes().u64(0));
  file.replaceData(header_list);
  const auto hierarchy =
      file.add("CH",
               {0, 0, 0, 0, SmallFile::data_group, SmallFile::group, SmallFile::speed,
                SmallFile::data_group, SmallFile::group, SmallFile::time},
               Bytes().u32(2).zeros(4));
  file.write(hierarchy + 16, Bytes().u64(6));
  file.link(FileBuilder::header, 2, hierarchy);
  EXPECT_EQ(checkedCodes(file.bytes()), "link-count-wrong 2\n");
}

TEST(HealthyFiles, CompositionsBitOffsetsAndChannelsWithoutBits) {
  SmallFile file;
  const auto member = [&](std::uint64_t next, unsigned type, unsigned bit_offset,
                          std::uint32_t byte_offset, std::uint32_t bits) {
    return file.add("CN", {next, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                    ChannelSpec{type, 0, 0, bit_offset, byte_offset, bits}.fields());
  };
  const auto virtual_data = member(0, 6, 0, 0, 0);
  const auto last_bits = member(virtual_data, 0, 5, 8, 3);
  const auto integer_of_48_bits = member(last_bits, 0, 0, 2, 48);
  file.link(SmallFile::speed, 1, integer_of_48_bits);
  const auto array =
      file.add("CA", {0}, Bytes().zeros(2).u16(1).zeros(4).u32(0xFFFFFFFF).u32(0).u64(4));
  file.link(last_bits, 1, array);
  expectHealthy(file);
}

TEST(HealthyFiles, EmptyDataBlocksEvenAtTheEnd) {
  SmallFile file;
  const auto group = file.addChannelGroup({0, 4});
  const auto data_group = file.add("DG", {0, group, 0, 0}, dataGroupFields(0));
  file.link(SmallFile::data_group, 0, data_group);
  file.link(data_group, 2, file.add("DT", {}));
  expectHealthy(file);
}

TEST(HealthyFiles, SeveralMastersOfDifferentKinds) {
  SmallFile file;
  file.setChannel(SmallFile::speed, {2, 3, 0, 0, 8, 8});
  file.link(SmallFile::speed, 0,
            file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                     ChannelSpec{3, 4, 0, 0, 0, 0}.fields()));
  expectHealthy(file);
}

/// A data group of several channel groups: records of `n` bytes for group number `n`, one of each
/// and group 0 twice, told apart by ids of `id_bytes` bytes, for which the file says `code`.
FileBuilder unsortedFile(unsigned code, std::size_t id_bytes, std::uint32_t groups) {
  FileBuilder file;
  std::string data;
  std::uint64_t group = 0;
  const auto record = [&](std::uint32_t number) {
    return Bytes().u8(static_cast<std::uint8_t>(number)).zeros(id_bytes - 1 + number).str();
  };
  for (std::uint32_t number = groups; number-- > 0;) {
    data += record(number);
    group = file.add("CG", {group, 0, 0, 0, 0, 0},
                     GroupSpec{number == 0 ? 2U : 1U, number, 0, number}.fields());
  }
  const auto data_block = file.add("DT", {}, data + record(0));
  file.link(FileBuilder::header, 0,
            file.add("DG", {0, group, data_block, 0}, dataGroupFields(code)));
  return file;
}

TEST(HealthyFiles, RecordIdsOfAllSizes) {
  expectHealthy(unsortedFile(1, 1, 40));
  expectHealthy(unsortedFile(2, 2, 40));
  expectHealthy(unsortedFile(4, 4, 40));
  expectHealthy(unsortedFile(8, 8, 40));
}

TEST(HealthyFiles, RecordIdSizesAsCodes) {
  expectHealthy(unsortedFile(3, 4, 40));
  expectHealthy(unsortedFile(4, 8, 40));
}

TEST(HealthyFiles, RecordIdsInFrontOfTheRecordsOfAnOnlyGroup) {
  for (const int id_bytes : {0, 1, 2, 4, 8}) {
    SmallFile file;
    file.write(SmallFile::data_group + 56, Bytes().u8s({id_bytes}));
    file.replaceData(
        file.add("DT", {}, Bytes().zeros(static_cast<std::size_t>(2 * (id_bytes + 9)))));
    expectHealthy(file);
  }
}

TEST(HealthyFiles, GroupOfVariableLengthLinkedAsNextGroupAndAsData) {
  for (const bool comes_first : {false, true}) {
    SmallFile file;
    file.write(SmallFile::data_group + 56, Bytes().u8(1));
    file.setGroup({2, 9, 0, 1});
    const auto values = file.addChannelGroup({2, 11, 0, 2, 1});
    file.link(comes_first ? values : SmallFile::group, 0, comes_first ? SmallFile::group : values);
    file.link(SmallFile::data_group, 1, comes_first ? values : SmallFile::group);
    file.setChannel(SmallFile::speed, {1, 0, 10, 0, 8, 8});
    file.link(SmallFile::speed, 5, values);
    const std::string records =
        Bytes().u8(2).u32(0).u8(1).zeros(9).u8(2).u32(3).text("abc").u8(1).zeros(9);
    file.replaceData(file.add("DT", {}, records));
    expectHealthy(file);
  }
}

TEST(HealthyFiles, ListsOfDataBlocks) {
  SmallFile file;
  file.setGroup({6, 9});
  std::vector<std::uint64_t> data;
  for (const std::size_t size : {18U, 0U, 9U, 18U, 9U}) {
    data.push_back(file.add("DT", {}, Bytes().zeros(size)));
  }
  const auto last = file.add("DL", {0, data[3], data[4]}, Bytes().u8s({1, 0, 0, 0}).u32(2).u64(18));
  const auto first = file.add("DL", {last, data[0], data[1], data[2]},
                              Bytes().zeros(4).u32(3).u64(0).u64(18).u64(18));
  file.replaceData(file.add("HL", {first}, Bytes().zeros(8)));
  expectHealthy(file);
}

TEST(HealthyFiles, LastBlockOfEqualOnesIsShorter) {
  SmallFile file;
  const auto data = file.add("DT", {}, Bytes().zeros(16));
  const auto rest = file.add("DZ", {}, zippedFields(2, zippedZeros(2)));
  file.replaceData(file.add("DL", {0, data, rest}, Bytes().u8s({1, 0, 0, 0}).u32(2).u64(16)));
  expectHealthy(file);
}

TEST(HealthyFiles, ZippedRecordsOfSeveralGroupsThatGoOverBlocks) {
  // Columns of two records of 3 bytes: both ids, and then the data of each.
  const std::string stream = Bytes()
                                 .u8s({0x78, 0x01, 0x01, 8, 0, 247, 255})
                                 .u8s({1, 1, 0, 0, 0, 0, 0, 0})
                                 .u8s({0, 23, 0, 3});
  FileBuilder file;
  const auto zipped = file.add("DZ", {}, zippedFields(8, stream, "DT", 1, 4));
  const auto plain = file.add("DT", {}, Bytes().u8s({0, 1}));
  const auto end = file.add("DT", {}, Bytes().u8s({0, 0}));
  const auto list =
      file.add("DL", {0, zipped, plain, end}, Bytes().zeros(4).u32(3).u64(0).u64(8).u64(10));
  const auto group = file.addChannelGroup({1, 3});
  const auto first = file.add("CG", {group, 0, 0, 0, 0, 0}, GroupSpec{2, 3, 0, 1}.fields());
  file.link(FileBuilder::header, 0, file.add("DG", {0, first, list, 0}, dataGroupFields(1)));
  expectHealthy(file);
}

TEST(HealthyFiles, Attachments) {
  SmallFile file;
  const std::string any(16, 'x');
  const auto embedded = addAttachment(file, {"", "", 5, digestOfAbc(), 3, "abc"});
  const auto external = addAttachment(file, {"elsewhere", "", 0, std::string(16, '\0'), 3, ""});
  const auto without_digest = addAttachment(file, {"", "", 1, any, 3, "abc"});
  const auto compressed = addAttachment(file, {"", "", 7, digestOfAbc(), 3, zippedAbc()});
  file.chain({embedded, external, without_digest, compressed});
  file.link(FileBuilder::header, 3, embedded);
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

TEST(HealthyFiles, UnfinishedOneWithEmptyDataInFrontOfOtherBlocks) {
  SmallFile file("UnFinMF ");
  const auto group = file.addChannelGroup({0, 4});
  const auto data_group = file.add("DG", {0, group, 0, 0}, dataGroupFields(0));
  file.link(SmallFile::data_group, 0, data_group);
  file.link(data_group, 2, file.add("DT", {}));
  file.setComment(file.text("behind the data"));
  expectOnlyUnfinished(file);
}

TEST(HealthyFiles, UnfinishedOneWithAListThatIsNotFinal) {
  SmallFile file("UnFinMF ");
  file.write(60, Bytes().u16(16));
  file.replaceData(file.add("DL", {0, 0, 0}, Bytes().zeros(4).u32(1).u64(0).u64(0)));
  EXPECT_EQ(checkedCodes(file.bytes()), "cycle-count-wrong 1\nfile-unfinished 1\n");
}

}  // namespace
