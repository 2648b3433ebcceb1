// Files that want a check to hang, to take all memory or to crash.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "checking/file_check.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using Problem = mdf_reader::Finding;

namespace {

struct Outcome {
  std::size_t problems = 0;
  std::size_t longest = 0;  ///< characters of a line
  std::string last;         ///< the last line
};

/// What a check finds that must do with little memory. Offsets must be in the file.
Outcome outcomeOf(const std::string& bytes) {
  const TempFile file(bytes);
  mdf_reader::InputFile input(file.path());
  Outcome outcome;
  const AllocationLimit limit((std::size_t{1} << 21U) + 32 * bytes.size());
  mdf_tools::checkFile(input, [&](const Problem& problem) {
    ++outcome.problems;
    outcome.last = problemLine(problem);
    outcome.longest = std::max(outcome.longest, outcome.last.size());
    EXPECT_LE(problem.offset, bytes.size());
  });
  return outcome;
}

TEST(HostileFiles, BlockThatLeadsToItself) {
  for (const std::size_t link : {0U, 1U}) {
    SmallFile file;
    file.link(SmallFile::speed, link, SmallFile::speed);
    EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\n") << link;
  }
}

TEST(HostileFiles, TwoChainsThatLeadIntoEachOther) {
  SmallFile file;
  const auto group = file.addChannelGroup({0, 1});
  const auto data_group = file.add("DG", {0, group, 0, 0}, dataGroupFields(0));
  file.link(SmallFile::data_group, 0, data_group);
  file.link(SmallFile::group, 0, group);
  file.link(group, 0, SmallFile::group);
  file.replaceData(0);
  file.setGroup({0, 9});
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\nchain-shared 1\n");
}

TEST(HostileFiles, ListThatLeadsToItself) {
  SmallFile file;
  const auto data = file.add("DT", {}, Bytes().zeros(9));
  const auto list = file.add("DL", {0, data, 0}, Bytes().zeros(4).u32(2).u64(0).u64(9));
  file.link(list, 0, list);
  file.link(list, 2, list);
  file.replaceData(list);
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-endless 1\ndata-shared 1\nlink-wrong-type 1\n");
}

TEST(HostileFiles, VeryLongChain) {
  constexpr std::uint64_t count = 50000;
  constexpr std::uint64_t size = 40;
  FileBuilder file;
  Bytes lists;
  for (std::uint64_t i = 1; i <= count; ++i) {
    lists.header("DL", size, 1).u64(i < count ? 168 + i * size : 1).zeros(8);
  }
  file.link(FileBuilder::header, 0, 168);
  file.append(lists);
  const Outcome outcome = outcomeOf(file.bytes());
  EXPECT_EQ(outcome.problems, 2U);
  EXPECT_NE(outcome.last.find("link-misaligned"), std::string::npos) << outcome.last;
  EXPECT_NE(outcome.last.find(" [HD.hd_dg_first/DL[49999]]"), std::string::npos) << outcome.last;
}

TEST(HostileFiles, VeryDeepNestingWithAProblemInEachBlock) {
  constexpr std::uint64_t count = 5000;
  constexpr std::uint64_t size = 160;
  SmallFile file;
  Bytes channels;
  for (std::uint64_t i = 1; i <= count; ++i) {
    const std::uint64_t next = i < count ? 768 + i * size : 0;
    channels.header("CN", size, 8).u64(0).u64(next).zeros(48);
    channels.text(ChannelSpec{0, 0, 0, 0, 99, 8}.fields());
  }
  file.append(Bytes().zeros(6).text(channels));
  file.link(SmallFile::speed, 1, 768);
  const Outcome outcome = outcomeOf(file.bytes());
  EXPECT_EQ(outcome.problems, count);
  EXPECT_LT(outcome.longest, 600U);
  EXPECT_NE(outcome.last.find(" [.../CN[0].cn_composition/CN[0]."), std::string::npos)
      << outcome.last;
}

TEST(HostileFiles, BlocksThatAllCoverTheSameLinks) {
  constexpr std::uint64_t count = 4000;
  FileBuilder file;
  Bytes blocks;
  for (std::uint64_t i = 0; i < count; ++i) {
    // The link count of each is a link to the next.
    const std::uint64_t next = 168 + 24 * (i + 1);
    blocks.header("XX", 24 * (count - i), i + 1 < count ? next : 0);
  }
  file.link(FileBuilder::header, 5, 168);
  file.append(blocks);
  EXPECT_GE(outcomeOf(file.bytes()).problems, 1U);
}

TEST(HostileFiles, TextsThatAllCoverTheSameBytes) {
  constexpr std::uint64_t count = 4000;
  const std::uint64_t begin = 168 + 24 + 8 * count;
  FileBuilder file;
  Bytes links;
  Bytes texts;
  for (std::uint64_t i = 0; i < count; ++i) {
    links.u64(begin + 24 * i);
    texts.text("##MD\1\1\1\1").u64(24 * (count - i)).u64(0x0101);
  }
  file.append(Bytes().header("XX", 24 + 8 * count, count).text(links).text(texts));
  file.link(FileBuilder::header, 0, 168);
  EXPECT_GE(outcomeOf(file.bytes()).problems, count - 1);
}

TEST(HostileFiles, DataGroupsThatAllShareAList) {
  constexpr std::uint64_t count = 1000;
  FileBuilder file;
  std::vector<std::uint64_t> links = {0};
  links.resize(1 + count, file.add("DT", {}, Bytes().zeros(8)));
  Bytes offsets = Bytes().zeros(4).u32(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    offsets.u64(8 * i);
  }
  const auto list = file.add("DL", links, offsets);
  std::uint64_t next = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    next = file.add("DG", {next, 0, list, 0}, dataGroupFields(0));
  }
  file.link(FileBuilder::header, 0, next);
  EXPECT_EQ(outcomeOf(file.bytes()).problems, count);
}

TEST(HostileFiles, ZippedDataThatSaysItHoldsAlmostEverything) {
  for (const std::uint64_t stated : {std::uint64_t{1} << 60U, UINT64_MAX}) {
    SmallFile file;
    file.replaceData(file.add("DZ", {}, zippedFields(stated, std::string(1000000, 'x'))));
    const Outcome outcome = outcomeOf(file.bytes());
    EXPECT_EQ(outcome.problems, 1U);
    EXPECT_NE(outcome.last.find("zip-broken"), std::string::npos) << outcome.last;
  }
}

TEST(HostileFiles, VeryManyChannelsOfVariableLengthInTheSameBytes) {
  constexpr std::uint64_t count = 5000;
  SmallFile file;
  std::uint64_t channel = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    channel = file.add("CN", {channel, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                       ChannelSpec{1, 0, 7, 0, 8, 8}.fields());
  }
  file.link(SmallFile::time, 0, channel);
  file.link(channel, 1, SmallFile::speed);
  file.setGroup({100000, 9});
  file.replaceData(file.add("DT", {}, Bytes().zeros(900000)));
  const Outcome outcome = outcomeOf(file.bytes());
  // A record has room for nine of them; and that there are too many is told.
  EXPECT_EQ(outcome.problems, 10U);
  EXPECT_NE(outcome.last.find("value-outside-signal-data"), std::string::npos) << outcome.last;
}

TEST(HostileFiles, RecordsInDataBlocksThatAllCoverTheSameBytes) {
  constexpr std::uint32_t count = 100;
  constexpr std::uint32_t shared = 1000000;
  // In each block the headers of the others are a record with the id "#", and there are a million
  // empty ones with the id 0 after them.
  FileBuilder file;
  Bytes blocks;
  std::uint64_t next = 0;
  const std::uint64_t first_data = 168 + count * (64 + 2 * 104);
  for (std::uint32_t i = count; i-- > 0;) {
    const std::uint32_t headers = 24 * (count - 1 - i);
    const auto empty = file.addChannelGroup({7, 0});
    const auto others =
        file.add("CG", {empty, 0, 0, 0, 0, 0}, GroupSpec{1, headers - 1, 0, '#'}.fields());
    next = file.add("DG", {next, others, first_data + 24 * i, 0}, dataGroupFields(1));
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    blocks.header("DT", 24 * (count - i) + shared, 0);
  }
  file.link(FileBuilder::header, 0, next);
  file.append(blocks.zeros(shared));
  EXPECT_EQ(checkedCodes(file.bytes()), "blocks-overlap 99\ncycle-count-wrong 5\n");
}

TEST(HostileFiles, SignalDataThatCoversTheSameBytes) {
  SmallFile file;
  file.setChannel(SmallFile::speed, {1, 0, 7, 0, 8, 8});
  file.setChannel(SmallFile::time, {1, 0, 7, 0, 0, 8});
  const auto outer =
      file.add("SD", {}, Bytes().u64(9999).header("SD", 4000, 0).u32(9999).zeros(4000));
  file.link(SmallFile::time, 5, outer);
  file.link(SmallFile::speed, 5, outer + 32);
  EXPECT_EQ(checkedCodes(file.bytes()),
            "blocks-overlap 1\nmaster-missing 1\nvalue-outside-signal-data 2\n");
}

TEST(HostileFiles, RecordsOfVariableLengthChannelsThatSayTheyAreHuge) {
  SmallFile file;
  file.setGroup({1, UINT32_MAX, UINT32_MAX});
  file.setChannel(SmallFile::speed, {1, 0, 7, 0, UINT32_MAX - 8, 64});
  file.replaceData(
      file.add("DZ", {}, zippedFields(2 * std::uint64_t{UINT32_MAX}, zippedZeros(1000))));
  const Outcome outcome = outcomeOf(file.bytes());
  EXPECT_EQ(outcome.problems, 1U);
  EXPECT_NE(outcome.last.find("zip-original-length-wrong"), std::string::npos) << outcome.last;
}

/// Checks a file with each number in turn at each place for one.
void checkWithLies(const FileBuilder& sample, std::uint64_t from) {
  const std::vector<std::uint64_t> numbers = {0,
                                              1,
                                              23,
                                              24,
                                              25,
                                              1U << 31U,
                                              UINT32_MAX,
                                              1ULL << 32,
                                              1ULL << 61,
                                              1ULL << 63,
                                              UINT64_MAX / 8,
                                              UINT64_MAX};
  const std::size_t size = sample.bytes().size();
  for (std::uint64_t offset = from; offset + 8 <= size; offset += 8) {
    for (const std::uint64_t number : numbers) {
      FileBuilder file = sample;
      file.write(offset, Bytes().u64(number));
      outcomeOf(file.bytes());
    }
  }
}

TEST(HostileFiles, NumbersThatLie) {
  SmallFile sample;
  sample.replaceData(sample.add("DZ", {}, zippedFields(18, zippedZeros(18))));
  checkWithLies(sample, FileBuilder::header);
}

TEST(HostileFiles, NumbersThatLieInReductionsValuesAndArrays) {
  SmallFile sample;
  sample.setChannel(SmallFile::speed, {1, 0, 7, 0, 8, 8});
  const auto data = sample.add("RD", {}, Bytes().zeros(27));
  sample.link(SmallFile::group, 4,
              sample.add("SR", {0, data}, Bytes().u64(1).f64(1).u8s({1, 0}).zeros(6)));
  const auto values = sample.add("DZ", {}, zippedFields(18, zippedZeros(18), "SD"));
  sample.link(SmallFile::speed, 5, sample.add("DL", {0, values}, Bytes().zeros(4).u32(1).u64(0)));
  const auto inner = sample.add("CA", {0}, Bytes().zeros(2).u16(1).zeros(12).u64(1));
  sample.link(SmallFile::speed, 1,
              sample.add("CA", {inner}, Bytes().zeros(2).u16(2).zeros(12).u64(1).u64(1)));
  ASSERT_EQ(checkedBytes(sample.bytes()), "");
  checkWithLies(sample, SmallFile::group);
}

TEST(HostileFiles, EveryPrefixOfAFile) {
  const std::string bytes = SmallFile().bytes();
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_GE(outcomeOf(bytes.substr(0, size)).problems, 1U) << size;
  }
}

TEST(HostileFiles, EveryByteOfAFileChanged) {
  const std::string bytes = SmallFile().bytes();
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    std::string changed = bytes;
    changed[at] = static_cast<char>(~static_cast<unsigned char>(changed[at]));
    outcomeOf(changed);
  }
}

TEST(HostileFiles, RecordsWithoutBytes) {
  SmallFile file;
  file.setGroup({UINT64_MAX, 0});
  EXPECT_NE(checkedCodes(file.bytes()).find("cycle-count-wrong 1\n"), std::string::npos);
}

TEST(HostileFiles, ChannelThatEndsFarBeyondAnyRecord) {
  SmallFile file;
  file.setChannel(SmallFile::speed, {0, 0, 0, 255, UINT32_MAX, UINT32_MAX, 2, UINT32_MAX});
  EXPECT_EQ(checkedCodes(file.bytes()),
            "channel-outside-record 1\ninvalidation-bit-outside-record 1\n");
}

}  // namespace
