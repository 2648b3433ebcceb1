#include "pictures/block_map.h"

#include <gtest/gtest.h>

#include <string>

#include "drawn_file.h"
#include "printing/json_output.h"
#include "support/allocation_counter.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/mdf_bytes.h"

using namespace mdf_tests;
using mdf_reader::FindingSink;
using mdf_reader::InputFile;
using mdf_tools::BlockMap;
using mdf_tools::MapRun;

namespace {

/// A map in words: its scale, a line for each run, then the sums.
std::string inWords(const BlockMap& map) {
  std::string text = std::to_string(map.file_size) + " bytes, " + std::to_string(map.columns) +
                     " cells of " + std::to_string(map.bytes_per_cell) + "\n";
  for (const MapRun& run : map.runs) {
    text += std::to_string(run.row) + ": " + std::to_string(run.first) + "-" +
            std::to_string(run.last) + ' ';
    text += run.kind == MapRun::gap ? "gap" : run.kind == MapRun::overlap ? "overlap" : run.type;
    text += run.offset == 0 ? "\n" : " at " + std::to_string(run.offset) + "\n";
  }
  for (const auto& share : map.types) {
    text +=
        share.type + ' ' + std::to_string(share.blocks) + ' ' + std::to_string(share.bytes) + "\n";
  }
  return text + "gaps " + std::to_string(map.gaps) + ' ' + std::to_string(map.gap_bytes) +
         " overlaps " + std::to_string(map.overlap_bytes) + "\n";
}

Dumped mapOf(const std::string& bytes) {
  return drawn(bytes, [&](InputFile& file, std::ostream& os, const FindingSink& report) {
    os << inWords(mdf_tools::makeMap(file, report));
  });
}

void expectBeginning(const std::string& text, const std::string& beginning) {
  EXPECT_EQ(text.substr(0, beginning.size()), beginning);
}

TEST(BlockMap, EachCellOfASmallFileIsAByte) {
  FileBuilder file;
  const std::uint64_t text = file.text("abcd");  // up to 197
  file.link(FileBuilder::header, 5, text);
  file.append(std::string(13, 'x'));
  EXPECT_EQ(mapOf(file.bytes()).output,
            "210 bytes, 64 cells of 1\n"
            "0: 0-63 ID\n"
            "1: 0-63 HD at 64\n"
            "2: 0-39 HD at 64\n"
            "2: 40-63 TX at 168\n"
            "3: 0-4 TX at 168\n"
            "3: 5-17 gap\n"
            "HD 1 104\n"
            "ID 1 64\n"
            "TX 1 29\n"
            "gaps 1 13 overlaps 0\n");
}

TEST(BlockMap, FilesWithoutAllOfThat) {
  EXPECT_EQ(mapOf("").output, "0 bytes, 64 cells of 1\ngaps 0 0 overlaps 0\n");
  EXPECT_EQ(mapOf("abc").output, "3 bytes, 64 cells of 1\n0: 0-2 gap\ngaps 1 3 overlaps 0\n");
  EXPECT_EQ(mapOf(FileBuilder().bytes().substr(0, 64)).output,
            "64 bytes, 64 cells of 1\n0: 0-63 ID\nID 1 64\ngaps 0 0 overlaps 0\n");
  EXPECT_EQ(mapOf(FileBuilder().bytes().substr(0, 100)).output,
            "100 bytes, 64 cells of 1\n0: 0-63 ID\n1: 0-35 HD at 64\nID 1 64\nHD 1 36\ngaps 0 0 "
            "overlaps 0\n");
}

TEST(BlockMap, BlocksThatOverlap) {
  std::string bytes = FileBuilder().bytes() + Bytes().header("DT", 60, 0).zeros(24).str() +
                      Bytes().header("DT", 24, 0).str();
  bytes.replace(88, 16, Bytes().u64(168).u64(216));  // the header's first two links
  EXPECT_EQ(mapOf(bytes).output,
            "240 bytes, 64 cells of 1\n"
            "0: 0-63 ID\n"
            "1: 0-63 HD at 64\n"
            "2: 0-39 HD at 64\n"
            "2: 40-63 DT at 168\n"
            "3: 0-23 DT at 168\n"
            "3: 24-35 overlap\n"
            "3: 36-47 DT at 216\n"
            "HD 1 104\n"
            "DT 2 84\n"
            "ID 1 64\n"
            "gaps 0 0 overlaps 12\n");
}

TEST(BlockMap, CellsOfALargeFileHoldSeveralBlocks) {
  FileBuilder file;
  std::uint64_t before = FileBuilder::header;
  for (int i = 0; i < 1000; ++i) {
    const std::uint64_t history = file.add("FH", {0, 0}, Bytes().zeros(16));
    file.link(before, before == FileBuilder::header ? 1 : 0, history);
    before = history;
  }
  // 56,168 bytes
  expectBeginning(mapOf(file.bytes()).output,
                  "56168 bytes, 512 cells of 8\n"
                  "0: 0-7 ID\n"
                  "0: 8-20 HD at 64\n"
                  "0: 21-27 FH at 168\n"
                  "0: 28-34 FH at 224\n");
}

TEST(BlockMap, CellBelongsToTheTypeWithMostOfIt) {
  // Two bytes a cell: the text block ends in the middle of one.
  FileBuilder file;
  const std::uint64_t text = file.add("TX", {}, std::string(59 - 24, 'a'));
  file.link(FileBuilder::header, 5, text);
  file.append(std::string(20000, 'x'));
  expectBeginning(mapOf(file.bytes()).output,
                  "20227 bytes, 512 cells of 2\n"
                  "0: 0-31 ID\n"
                  "0: 32-83 HD at 64\n"
                  "0: 84-112 TX at 168\n"
                  "0: 113-113 TX\n"
                  "0: 114-511 gap\n");
}

TEST(BlockMap, ManyBlocksOverTheWholeFileTakeNoMoreTimeAndMemory) {
  constexpr std::uint64_t count = 100000;
  constexpr std::uint64_t end = 168 + 32 * count;
  std::string bytes = fileHead({168, 0, 0, 0, 0, 0});
  for (std::uint64_t at = 168; at < end; at += 32) {
    bytes += Bytes().header("XX", end - at, 1).u64(at + 32 < end ? at + 32 : 0).str();
  }
  const TempFile file(bytes);
  InputFile input(file.path());
  const AllocationLimit limit(8000000);
  const BlockMap map = mdf_tools::makeMap(
      input, [](const mdf_reader::Finding& finding) { FAIL() << finding.sentence; });
  EXPECT_EQ(map.overlap_bytes, end - 200);
  EXPECT_EQ(map.gap_bytes, 0U);
  EXPECT_LT(map.runs.size(), 30U);
}

TEST(BlockMap, Picture) {
  const Dumped map = drawn(
      FileBuilder().bytes(), [](InputFile& file, std::ostream& os, const FindingSink& report) {
        double height = 0;
        os << mdf_tools::mapPicture(
            mdf_tools::mapPart(mdf_tools::makeMap(file, report), "a.mf4", "f0_", height));
      });
  EXPECT_EQ(map.output.substr(0, 40), "graph mdf {\n  graph [pad=0.2];\n  node [s");
  EXPECT_NE(map.output.find("label=\"a.mf4, 168 bytes\\l\""), std::string::npos);
  EXPECT_NE(map.output.find("label=\"0x40\\r\""), std::string::npos);
  EXPECT_NE(map.output.find("  f0_2 [pos=\"480.0000,-22.0000\", width=13.3333, label=\"ID\", "
                            "fillcolor=\"#a9bcc6\", color=\"#404040\"];\n"),
            std::string::npos);
  EXPECT_NE(map.output.find("label=\"HD  1 block, 104 bytes\\l\""), std::string::npos);
  EXPECT_NE(map.output.find("label=\"no block  0 bytes in 0 places\\l\""), std::string::npos);
}

TEST(BlockMap, PictureWithOneGap) {
  FileBuilder file;
  file.append("x");
  const Dumped map =
      drawn(file.bytes(), [](InputFile& input, std::ostream& os, const FindingSink& report) {
        double height = 0;
        os << mdf_tools::mapPart(mdf_tools::makeMap(input, report), "a.mf4", "f0_", height);
      });
  EXPECT_NE(map.output.find("label=\"no block  1 byte in 1 place\\l\""), std::string::npos)
      << map.output;
}

TEST(BlockMap, Json) {
  FileBuilder file;
  file.append("x");
  const Dumped map =
      drawn(file.bytes(), [](InputFile& input, std::ostream& os, const FindingSink& report) {
        os << mdf_tools::jsonLine(mdf_tools::mapAsJson(mdf_tools::makeMap(input, report)));
      });
  EXPECT_EQ(map.output,
            R"({"size":169,"types":[{"type":"HD","blocks":1,"bytes":104},)"
            R"({"type":"ID","blocks":1,"bytes":64}],"gaps":1,"gap_bytes":1,"overlap_bytes":0})");
}

}  // namespace
