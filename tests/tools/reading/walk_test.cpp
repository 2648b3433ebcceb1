#include "reader/blocks/walk.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "reader/blocks/block_type.h"
#include "reader/blocks/raw_block.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "support/bytes.h"
#include "tools/support/dumped.h"
#include "tools/support/file_reads.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/temp_file.h"
#include "tools/support/walker_findings.h"

using namespace mdf_tests;
using mdf_reader::Finding;
using mdf_reader::InputFile;
using mdf_reader::RawBlock;
using mdf_reader::readRawBlock;
using mdf_reader::walkBlocks;

namespace {

/// The blocks that a walk finds, in the order it returns them, and what it reports.
std::string walked(const std::string& bytes) {
  const TempFile file(bytes);
  InputFile input(file.path());
  std::string findings;
  const auto offsets = walkBlocks(input, [&](const Finding& finding) {
                         findings += findingLine(finding);
                       }).offsets();
  std::string text;
  for (const std::uint64_t offset : offsets) {
    const RawBlock block = *readRawBlock(input, offset);
    text += block.name() + " " + std::to_string(block.offset) + " " + std::to_string(block.length) +
            " " + std::to_string(block.link_count) + "\n";
  }
  return text + findings;
}

/// The same for a file whose header block links to offset 168, where these bytes begin.
std::string walkedFrom168(const std::string& bytes) {
  return walked(fileHead({168, 0, 0, 0, 0, 0}) + bytes);
}

const std::string hd = "##HD 64 104 6\n";

TEST(Walk, FindsTheBlocksThatLinksLeadTo) {
  std::string unfinished = fileHead({0, 0, 0, 0, 0, 0});
  unfinished.replace(0, 8, "UnFinMF ");
  const std::string leaf = unknownBlock({});
  struct Case {
    std::string shows;
    std::string bytes;
    std::string blocks;  ///< after the header block
  };
  const std::vector<Case> cases = {
      {"the header block alone", fileHead({0, 0, 0, 0, 0, 0}), ""},
      {"an unfinished file", unfinished, ""},
      {"every link of every block is followed",
       fileHead({168, 208, 240, 264, 288, 312}) + unknownBlock({336, 360}) + unknownBlock({384}) +
           leaf + leaf + leaf + leaf + leaf + leaf + leaf,
       "##XX 168 40 2\n##XX 208 32 1\n##XX 240 24 0\n##XX 264 24 0\n##XX 288 24 0\n"
       "##XX 312 24 0\n##XX 336 24 0\n##XX 360 24 0\n##XX 384 24 0\n"},
      {"blocks come in file order and once each",
       fileHead({232, 168, 168, 200, 232, 0}) + unknownBlock({200}) + unknownBlock({168}) +
           unknownBlock({200}),
       "##XX 168 32 1\n##XX 200 32 1\n##XX 232 32 1\n"},
      {"a block that nothing links to is not found",
       fileHead({168, 0, 0, 0, 0, 0}) + leaf + unknownBlock({168}), "##XX 168 24 0\n"},
      {"links to itself and in circles end",
       fileHead({64, 168, 0, 0, 0, 0}) + unknownBlock({168, 208}) + unknownBlock({64, 168}),
       "##XX 168 40 2\n##XX 208 40 2\n"},
      {"a block may stand at any byte",
       fileHead({171, 0, 0, 0, 0, 0}) + "abc" + unknownBlock({204}) + "d" + leaf,
       "##XX 171 32 1\n##XX 204 24 0\n"},
      {"a header list that counts no link",
       fileHead({168, 0, 0, 0, 0, 0}) + header("HL", 40, 0) + links(208, 0) + leaf,
       "##HL 168 40 0\n##XX 208 24 0\n"},
      {"a channel hierarchy that counts elements",
       fileHead({168, 0, 0, 0, 0, 0}) + header("CH", 88, 5) + links(0, 0, 0, 0, 64, 168, 256, 1) +
           leaf,
       "##CH 168 88 5\n##XX 256 24 0\n"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(walked(each.bytes), hd + each.blocks) << each.shows;
  }
}

TEST(Walk, NoBlockIsInsideTheIdentification) {
  std::string bytes = fileHead({32, 0, 0, 0, 0, 0});
  bytes.replace(32, 24, header("XX", 24, 0));
  EXPECT_EQ(walked(bytes),
            hd +
                "64: expected link 0 of ##HD to lead to a block \"##\", found 32 (0x20) inside the "
                "identification\n");
}

TEST(Walk, LinksThatLeadToNoBlock) {
  EXPECT_EQ(walkedFrom168(unknownBlock({208, 207, INT64_MAX})),
            hd + "##XX 168 48 3\n" + linkToCutHeader(168, "XX", 0, 8, 208) +
                linkToCutHeader(168, "XX", 1, 9, 207) + linkOutside(168, "XX", 2, 216, INT64_MAX));
  // The first byte after the file is outside.
  EXPECT_EQ(walked(fileHead({-1, 167, 168, 169, 0, INT64_MIN})),
            hd + linkOutside(64, "HD", 0, 168, -1) + linkToCutHeader(64, "HD", 1, 1, 167) +
                linkOutside(64, "HD", 2, 168, 168) + linkOutside(64, "HD", 3, 168, 169) +
                linkOutside(64, "HD", 5, 168, INT64_MIN));
  EXPECT_EQ(walked(fileHead({0, 65, 8, 0, 8, 0})), hd + linkToNoBlock(64, "HD", 1, "#HD\\x00", 65) +
                                                       linkToNoBlock(64, "HD", 2, "4.10", 8) +
                                                       linkToNoBlock(64, "HD", 4, "4.10", 8));
  // They hide no good ones.
  EXPECT_EQ(walkedFrom168(unknownBlock({-1, 1000, 8, 224}) + unknownBlock({})),
            hd + "##XX 168 56 4\n##XX 224 24 0\n" + linkOutside(168, "XX", 0, 248, -1) +
                linkOutside(168, "XX", 1, 248, 1000) + linkToNoBlock(168, "XX", 2, "4.10", 8));
}

TEST(Walk, FileTooShortForTheIdentification) {
  EXPECT_EQ(walked(""), identificationCut(0));
  EXPECT_EQ(walked(fileHead({}).substr(0, 63)), identificationCut(63));
}

TEST(Walk, FileTooShortForTheHeaderBlock) {
  const std::string bytes = fileHead({0, 0, 0, 0, 0, 0});
  EXPECT_EQ(walked(bytes.substr(0, 64)), headerBlockCut(0));
  EXPECT_EQ(walked(bytes.substr(0, 87)), headerBlockCut(23));
  EXPECT_EQ(walked(bytes.substr(0, 88)), hd + blockCut(64, "HD", 104, 24));
  EXPECT_EQ(walked(bytes.substr(0, 167)), hd + blockCut(64, "HD", 104, 103));
}

TEST(Walk, NoMeasurementFile) {
  EXPECT_EQ(walked(std::string(64, '\n') + "PNG." + std::string(100, 'x')),
            notMdf("\\x0a\\x0a\\x0a\\x0a\\x0a\\x0a\\x0a\\x0a") + noHeaderBlock("PNG."));
}

TEST(Walk, FilesOfEarlierVersionsAreNamed) {
  std::string bytes = fileHead({0, 0, 0, 0, 0, 0});
  bytes.replace(8, 4, "3.30");
  bytes.replace(28, 2, Bytes().u16(330));
  bytes.replace(64, 4, std::string("HD\xA4\0", 4));
  EXPECT_EQ(walked(bytes),
            "0: expected a file of MDF 4, found one of MDF 3.30\n" + noHeaderBlock("HD\\xa4\\x00"));
  bytes.replace(8, 4, "2.01");
  bytes.replace(28, 2, Bytes().u16(201));
  EXPECT_EQ(walked(bytes),
            "0: expected a file of MDF 4, found one of MDF 2.01\n" + noHeaderBlock("HD\\xa4\\x00"));
}

TEST(Walk, DamagedIdentificationHidesNoBlocks) {
  std::string bytes = fileHead({168, 0, 0, 0, 0, 0}) + unknownBlock({});
  bytes[0] = 'm';
  EXPECT_EQ(walked(bytes), hd + "##XX 168 24 0\n" + notMdf("mDF     "));
}

TEST(Walk, OtherBlockInTheHeaderBlocksPlace) {
  std::string bytes = fileHead({168, 0, 0, 0, 0, 0}) + unknownBlock({});
  bytes.replace(66, 2, "DG");
  EXPECT_EQ(walked(bytes),
            "##DG 64 104 6\n"
            "##XX 168 24 0\n" +
                noHeaderBlock("##DG"));
}

TEST(Walk, LengthTooSmallForHeaderAndLinks) {
  EXPECT_EQ(walkedFrom168(Bytes().header("XX", 39, 2).links({208, 232}).str() + unknownBlock({}) +
                          unknownBlock({})),
            "##HD 64 104 6\n"
            "##XX 168 39 2\n"
            "##XX 208 24 0\n" +
                lengthTooSmall(168, "XX", 2, 39));
  EXPECT_EQ(walkedFrom168(Bytes().header("XX", 0, 0)),
            "##HD 64 104 6\n"
            "##XX 168 0 0\n" +
                lengthTooSmall(168, "XX", 0, 0));
}

TEST(Walk, BlockRunsPastTheEndOfTheFile) {
  EXPECT_EQ(walkedFrom168(Bytes().header("XX", 58, 4).links({64, -1, 64})),
            "##HD 64 104 6\n"
            "##XX 168 58 4\n" +
                blockCut(168, "XX", 58, 48) + linkOutside(168, "XX", 1, 216, -1));
}

TEST(Walk, TypeOfTheFirstBlockMayBeAnyBytes) {
  std::string bytes = fileHead({-1, 0, 0, 0, 0, 0});
  bytes.replace(66, 2, std::string("\0\x9F", 2));
  EXPECT_NE(walked(bytes).find("64: expected link 0 of ##\\x00\\x9f to lead into the file of 168 "
                               "bytes, found -1\n"),
            std::string::npos)
      << walked(bytes);
}

TEST(Walk, BothLengthAndLinkCountLie) {
  EXPECT_EQ(walkedFrom168(Bytes().header("XX", std::uint64_t{1} << 63U, UINT64_MAX).i64(64)),
            "##HD 64 104 6\n"
            "##XX 168 9223372036854775808 18446744073709551615\n" +
                lengthTooSmall(168, "XX", UINT64_MAX, std::uint64_t{1} << 63U) +
                blockCut(168, "XX", std::uint64_t{1} << 63U, 32));
}

constexpr std::size_t million = 1000000;

/// A chain of so many blocks of 32 bytes each, from offset 168 to the file's end.
std::string chain(std::size_t count) {
  std::string bytes = fileHead({168, 0, 0, 0, 0, 0});
  for (std::size_t i = 1; i <= count; ++i) {
    bytes += unknownBlock({i == count ? 0 : static_cast<std::int64_t>(168 + 32 * i)});
  }
  return bytes;
}

TEST(Walk, ChainOfAMillionBlocksNeedsMemoryForTheBlocksAlone) {
  const TempFile file(chain(million));
  InputFile input(file.path());
  const AllocationLimit limit(64 * million);
  const auto offsets =
      walkBlocks(input, [](const Finding& finding) { FAIL() << finding.sentence; }).offsets();
  ASSERT_EQ(offsets.size(), million + 1);
  for (std::size_t i = 1; i <= million; ++i) {
    ASSERT_EQ(offsets[i], 168 + 32 * (i - 1));
  }
}

TEST(Walk, ChainIsReadInLargePieces) {
  const std::string bytes = chain(100000);
  const TempFile file(bytes);
  InputFile input(file.path());
  const FileReads reads;
  const auto offsets =
      walkBlocks(input, [](const Finding& finding) { FAIL() << finding.sentence; }).offsets();
  EXPECT_LT(reads.calls(), bytes.size() / 65536 + 20);
  EXPECT_LT(reads.bytes(), bytes.size() + 100000);
  EXPECT_EQ(offsets.size(), 100001U);
}

TEST(Walk, DataIsNotRead) {
  constexpr std::int64_t data_length = std::int64_t{1} << 36U;
  TempFile file(fileHead({0, 168, 0, 0, 0, 0}) + unknownBlock({208, 208 + data_length}) +
                Bytes().header("DT", data_length, 0).str());
  file.writeAt(208 + data_length, unknownBlock({64}));
  InputFile input(file.path());
  const FileReads reads;
  const auto offsets =
      walkBlocks(input, [](const Finding& finding) { FAIL() << finding.sentence; }).offsets();
  EXPECT_LT(reads.bytes(), 100000U);
  EXPECT_EQ(offsets, (std::vector<std::uint64_t>{64, 168, 208, std::uint64_t{208 + data_length}}));
}

TEST(Walk, MillionLinksNeedNoMemory) {
  Bytes bytes;
  bytes.header("XX", 24 + 8 * million, million);
  for (std::int64_t i = 0; i < std::int64_t{million}; i += 4) {
    bytes.links({64, 0, -1 - i, 1000000000 + i});
  }
  const TempFile file(fileHead({168, 0, 0, 0, 0, 0}) + bytes.str());
  InputFile input(file.path());
  std::size_t findings = 0;
  mdf_reader::typeOf("XX");  // makes the table of types, which whoever asks first does
  const AllocationLimit limit(4096);
  const auto offsets = walkBlocks(input, [&](const Finding&) { ++findings; });
  EXPECT_EQ(offsets.size(), 2U);
  EXPECT_EQ(findings, million / 2);
}

TEST(Walk, FromAnotherBlock) {
  const TempFile file(fileHead({0, 0, 0, 0, 0, 0}) + unknownBlock({200, 208}) + unknownBlock({0}));
  InputFile input(file.path());
  std::string findings;
  const auto report = [&](const Finding& finding) { findings += findingLine(finding); };
  EXPECT_EQ(walkBlocks(input, report, 168).offsets(), (std::vector<std::uint64_t>{168, 208}));
  EXPECT_EQ(findings, linkToNoBlock(168, "XX", 0, "\\xd0\\x00\\x00\\x00", 200));
  findings.clear();
  EXPECT_EQ(walkBlocks(input, report, 169).offsets(), std::vector<std::uint64_t>());
  EXPECT_EQ(findings, "169: expected a block \"##\" at 169 (0xa9), found \"#XX\\x00\"\n");
}

TEST(Walk, BlocksThatOverlapAreFollowedInProportionToTheFile) {
  constexpr std::uint64_t count = 20000;
  constexpr std::uint64_t end = 168 + 32 * count;
  Bytes bytes;
  for (std::uint64_t at = 168; at < end; at += 32) {
    bytes.header("XX", end - at, (end - at - 24) / 8).i64(static_cast<std::int64_t>(at) + 32);
  }
  const TempFile file(fileHead({168, 0, 0, 0, 0, 0}) + bytes.str());
  InputFile input(file.path());
  std::uint64_t findings = 0;
  std::string last;
  walkBlocks(input, [&](const Finding& finding) {
    ++findings;
    last = finding.sentence.rfind("expected blocks", 0) == 0 ? finding.sentence : last;
  });
  EXPECT_LE(findings, 4 * end / 8 + 8 * count + 1);
  EXPECT_EQ(last,
            "expected blocks that do not overlap, found several times the file's bytes in "
            "overlapping blocks; some of them are skipped");
}

}  // namespace
