#include "printing/tree_text.h"

#include <gtest/gtest.h>

#include <string>

#include "drawn_file.h"
#include "support/allocation_counter.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/healthy_file.h"

using namespace mdf_tests;
using namespace mdf_reader;
using mdf_tools::TreeOptions;

namespace {

Dumped treeOf(const std::string& bytes, const TreeOptions& options = {}) {
  return drawn(bytes, [&](InputFile& file, std::ostream& os, const FindingSink& report) {
    mdf_tools::writeTree(file, options, os, report);
  });
}

TEST(TreeText, NoBlockToBeginWith) {
  TreeOptions options;
  options.from = 80;
  const Dumped tree = treeOf(healthyFile(), options);
  EXPECT_EQ(tree.output, "");
  EXPECT_EQ(tree.findings,
            "80: expected a block \"##\" at 80 (0x50), found \"\\x06\\x00\\x00\\x00\"\n");
}

/// A file with a chain of file histories; returns its builder.
FileBuilder historyChain(std::size_t count) {
  FileBuilder file;
  std::uint64_t before = FileBuilder::header;
  for (std::size_t i = 0; i < count; ++i) {
    const auto history = file.add("FH", {0, 0}, Bytes().zeros(16));
    file.link(before, before == FileBuilder::header ? 1 : 0, history);
    before = history;
  }
  return file;
}

TEST(TreeText, ChainsAreOnOneLevelAndTheirRestIsCounted) {
  FileBuilder file = historyChain(6);
  TreeOptions options;
  options.list_limit = 3;
  const std::string first =
      "HD 64 (0x40)\n"
      "  hd_fh_first -> FH 168 (0xa8)\n"
      "  fh_fh_next -> FH 224 (0xe0)\n"
      "  fh_fh_next -> FH 280 (0x118)\n";
  EXPECT_EQ(treeOf(file.bytes(), options).output, first + "  ... 3 more FH\n");
  options.list_limit = 5;
  EXPECT_EQ(treeOf(file.bytes(), options).output, first +
                                                      "  fh_fh_next -> FH 336 (0x150)\n"
                                                      "  fh_fh_next -> FH 392 (0x188)\n"
                                                      "  ... 1 more FH\n");
  options.list_limit = 6;
  EXPECT_EQ(treeOf(file.bytes(), options).output, first +
                                                      "  fh_fh_next -> FH 336 (0x150)\n"
                                                      "  fh_fh_next -> FH 392 (0x188)\n"
                                                      "  fh_fh_next -> FH 448 (0x1c0)\n");
}

TEST(TreeText, ChainThatEndsInItselfIsACycle) {
  FileBuilder file = historyChain(4);
  file.link(336, 0, 224);
  file.link(336, 1, 280);
  const std::string beginning =
      "HD 64 (0x40)\n"
      "  hd_fh_first -> FH 168 (0xa8)\n"
      "  fh_fh_next -> FH 224 (0xe0)\n";
  EXPECT_EQ(treeOf(file.bytes()).output, beginning +
                                             "  fh_fh_next -> FH 280 (0x118)\n"
                                             "  fh_fh_next -> FH 336 (0x150)\n"
                                             "    fh_md_comment -> FH 280 (0x118) (shared, shown "
                                             "above)\n"
                                             "  fh_fh_next -> FH 224 (0xe0) (cycle, leads back)\n");
  TreeOptions options;
  options.list_limit = 2;
  EXPECT_EQ(treeOf(file.bytes(), options).output,
            beginning +
                "  ... 2 more FH\n"
                "  fh_fh_next -> FH 224 (0xe0) (cycle, leads back)\n");
}

TEST(TreeText, BlockThatLeadsToItself) {
  FileBuilder file = historyChain(1);
  file.link(168, 0, 168);
  file.link(168, 1, 168);
  EXPECT_EQ(treeOf(file.bytes()).output,
            "HD 64 (0x40)\n"
            "  hd_fh_first -> FH 168 (0xa8)\n"
            "    fh_md_comment -> FH 168 (0xa8) (cycle, leads back)\n"
            "  fh_fh_next -> FH 168 (0xa8) (cycle, leads back)\n");
}

TEST(TreeText, LongListIsCounted) {
  FileBuilder file;
  const auto data = file.add("DT", {}, "ab");
  const auto list =
      file.add("DL", {0, data, data, 0, data, data, 7}, Bytes().u8s({1, 0, 0, 0}).u32(6).u64(2));
  file.link(FileBuilder::header, 0, list);
  TreeOptions options;
  options.list_limit = 2;
  const Dumped tree = treeOf(file.bytes(), options);
  EXPECT_EQ(tree.output,
            "HD 64 (0x40)\n"
            "  hd_dg_first -> DL 200 (0xc8) 6 blocks\n"
            "    dl_data[0] -> DT 168 (0xa8) 2 bytes\n"
            "    dl_data[1] -> DT 168 (0xa8) (shared, shown above)\n"
            "    ... 3 more DT\n");
  EXPECT_EQ(tree.findings,
            "200: expected link 6 of ##DL to lead to a block \"##\", found "
            "\" 4.1\" at 7 (0x7)\n");
}

TEST(TreeText, LinksThatLeadNowhere) {
  FileBuilder file;
  const auto group =
      file.add("DG", {9, static_cast<std::uint64_t>(-8), 99999, 0}, Bytes().u8(8).zeros(7));
  file.link(FileBuilder::header, 0, group);
  const Dumped tree = treeOf(file.bytes());
  EXPECT_EQ(tree.output,
            "HD 64 (0x40)\n"
            "  hd_dg_first -> DG 168 (0xa8) 8 bytes of record id\n"
            "    dg_cg_first -> -8 no block there\n"
            "    dg_data -> 99999 (0x1869f) no block there\n"
            "  dg_dg_next -> 9 (0x9) no block there\n");
  EXPECT_EQ(tree.findings,
            "168: expected link 1 of ##DG to lead into the file of 232 bytes, found -8\n"
            "168: expected link 2 of ##DG to lead into the file of 232 bytes, found 99999 "
            "(0x1869f)\n"
            "168: expected link 0 of ##DG to lead to a block \"##\", found \".10 \" at 9 (0x9)\n");
}

TEST(TreeText, HostileNamesStayOnTheirLine) {
  FileBuilder file;
  const auto name = file.text("a\nb\x1b[2J\xff\xc2\xb5\xe2\x80\xae" + std::string(99, 'c'));
  const auto source = file.add("SI", {name, 0, 0}, Bytes().zeros(8));
  file.link(FileBuilder::header, 0, source);
  EXPECT_EQ(treeOf(file.bytes(), {64, 1}).output,
            "HD 64 (0x40)\n"
            "  hd_dg_first -> SI 312 (0x138) \"a\\x0ab\\x1b[2J\\xff\xc2\xb5\\xe2\\x80\\xae" +
                std::string(47, 'c') + "...\" other\n");
}

TEST(TreeText, DeepNestingTakesMemoryInProportion) {
  constexpr std::size_t count = 100000;
  std::string bytes = FileBuilder().bytes();
  for (std::uint64_t i = 0; i < count; ++i) {
    bytes += Bytes().header("XX", 32, 1).u64(i + 1 < count ? 168 + 32 * (i + 1) : 64).str();
  }
  bytes.replace(88, 8, Bytes().u64(168));
  const TempFile file(bytes);
  InputFile input(file.path());
  std::string last;
  std::size_t entries = 0;
  const AllocationLimit limit(16 * bytes.size());
  mdf_tools::walkTree(
      input, {}, [](const Finding& finding) { ADD_FAILURE() << finding.sentence; },
      [&](const mdf_tools::TreeEntry& entry) {
        EXPECT_EQ(entry.depth, entries);
        ++entries;
        last = entry.role;
        return true;
      });
  EXPECT_EQ(entries, count + 2);
  EXPECT_EQ(last, "link 0");
}

TEST(TreeText, BeyondFortyLevelsTheyAreNumbered) {
  std::string bytes = FileBuilder().bytes();
  for (std::uint64_t i = 0; i < 50; ++i) {
    bytes += Bytes().header("XX", 32, 1).u64(i < 49 ? 168 + 32 * (i + 1) : 0).str();
  }
  bytes.replace(88, 8, Bytes().u64(168));
  const std::string tree = treeOf(bytes).output;
  const std::string forty(80, ' ');
  EXPECT_EQ(tree.substr(tree.find(forty), tree.find("(level 42)") - tree.find(forty)),
            forty + "link 0 -> XX 1416 (0x588) 0 bytes\n" + forty +
                "(level 41) link 0 -> XX 1448 (0x5a8) 0 bytes\n" + forty);
}

TEST(TreeText, VisitorEndsTheWalk) {
  const TempFile file(healthyFile());
  InputFile input(file.path());
  int entries = 0;
  mdf_tools::walkTree(
      input, {}, [](const Finding&) {}, [&](const mdf_tools::TreeEntry&) { return ++entries < 5; });
  EXPECT_EQ(entries, 5);
}

TEST(TreeText, JsonLines) {
  FileBuilder file;
  const auto group = file.add("DG", {99999, 168, 168, 0}, Bytes().zeros(8));
  file.link(FileBuilder::header, 0, group);
  std::string name;
  const Dumped tree =
      drawn(file.bytes(), [&](InputFile& input, std::ostream& os, const FindingSink& report) {
        name = input.name();
        TreeOptions options;
        options.list_limit = 1;
        mdf_tools::writeTreeAsJson(input, options, os, report);
      });
  const std::string head = R"({"schema":2,"file":")" + name + R"(","entry":)";
  EXPECT_EQ(tree.output,
            head +
                R"("block","depth":0,"from":0,"role":"","offset":64,"type":"HD","length":104,)"
                R"("name":""})"
                "\n" +
                head +
                R"("block","depth":1,"from":64,"role":"hd_dg_first","offset":168,"type":"DG",)"
                R"("length":64,"name":""})"
                "\n" +
                head +
                R"("cycle","depth":2,"from":168,"role":"dg_cg_first","offset":168,"type":"DG",)"
                R"("length":64,"name":""})"
                "\n" +
                head +
                R"("cycle","depth":2,"from":168,"role":"dg_data","offset":168,"type":"DG",)"
                R"("length":64,"name":""})"
                "\n" +
                head +
                R"("nothing","depth":1,"from":168,"role":"dg_dg_next","offset":99999})"
                "\n");
}

}  // namespace
