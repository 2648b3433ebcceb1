#include <gtest/gtest.h>

#include <string>

#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// A terminal with these variables in its environment, which says nothing of colours otherwise.
RunOptions terminal(const std::string& type, const std::string& no_color = "") {
  RunOptions options;
  options.output_is_terminal = true;
  options.environment = {"TERM=" + type, "NO_COLOR=" + no_color};
  return options;
}

TEST(Colours, CheckShowsSeverities) {
  const TempFile file(faultyFile());
  EXPECT_EQ(run({"check", file.path()}, terminal("xterm")).output,
            file.path() +
                ": 64 (0x40): \x1b[1;31merror\x1b[0m \x1b[1mlink-outside-file\x1b[0m: expected "
                "hd_md_comment to lead to a block in the file of 762 bytes, found 739 (0x2e3)"
                "\x1b[2m [HD]\x1b[0m\n" +
                file.path() +
                ": 656 (0x290): \x1b[1;33mwarning\x1b[0m \x1b[1mtext-not-utf8\x1b[0m: expected a "
                "text in UTF-8, found other bytes"
                "\x1b[2m [HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[0].cn_tx_name/TX]"
                "\x1b[0m\n" +
                file.path() +
                ": 232 (0xe8): \x1b[1;34mnote\x1b[0m \x1b[1mmaster-missing\x1b[0m: expected a "
                "master channel among the channels, found none"
                "\x1b[2m [HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]\x1b[0m\n");
}

TEST(Colours, TreeShowsTypesAndLinksThatLeadNowhere) {
  FileBuilder builder;
  const std::uint64_t history = builder.add("FH", {0, 0}, std::string(16, '\0'));
  builder.link(FileBuilder::header, 1, history);
  builder.link(history, 0, history);
  builder.link(history, 1, 4096);
  const TempFile file(builder.bytes());
  EXPECT_EQ(run({"tree", file.path()}, terminal("xterm")).output,
            "\x1b[1mHD\x1b[0m 64 (0x40)\n"
            "  \x1b[2mhd_fh_first -> \x1b[0m\x1b[1mFH\x1b[0m 168 (0xa8)\n"
            "    \x1b[2mfh_md_comment -> \x1b[0m4096 (0x1000)\x1b[1;31m no block there\x1b[0m\n"
            "  \x1b[2mfh_fh_next -> \x1b[0m\x1b[1mFH\x1b[0m 168 (0xa8)\x1b[1;33m (cycle, leads "
            "back)\x1b[0m\n");
}

TEST(Colours, BytesOfTheFileGiveNone) {
  FileBuilder builder;
  builder.link(FileBuilder::header, 5, builder.text("\x1b[31mred, and more of it"));
  const TempFile file(builder.bytes());
  const std::string shown = run({"dump", "--type", "TX", file.path()}, terminal("xterm")).output;
  EXPECT_EQ(shown.substr(0, shown.find('\n')), "\x1b[1m168 (0xa8) ##TX\x1b[0m length 49 links 0");
  EXPECT_NE(shown.find("\n    \\x1b[31mred"), std::string::npos) << shown;
}

TEST(Colours, TitlesOfTables) {
  const TempFile file(SmallFile().bytes());
  const std::string shown = run({"list", "channels", file.path()}, terminal("xterm")).output;
  EXPECT_EQ(shown.substr(0, 9), "\x1b[1mgroup");
  EXPECT_EQ(run({"info", file.path()}, terminal("xterm")).output.substr(0, 13),
            "\x1b[1mFile:\x1b[0m");
}

TEST(Colours, NoneWhereTheyAreNotWantedOrNotShown) {
  const TempFile file(faultyFile());
  const std::string plain = run({"check", file.path()}).output;
  EXPECT_EQ(plain.find('\x1b'), std::string::npos);
  EXPECT_EQ(run({"check", file.path()}, terminal("xterm", "1")).output, plain);
  EXPECT_EQ(run({"check", file.path()}, terminal("dumb")).output, plain);
  EXPECT_EQ(run({"check", file.path()}, terminal("")).output, plain);
}

}  // namespace
