#include <gtest/gtest.h>

#include <string>

#include "tools/support/file_builder.h"
#include "tools/support/healthy_file.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

TEST(TreeCommand, ChosenPartOfAFile) {
  const TempFile file(healthyFile());
  const RunResult result =
      run({"tree", "--from", "0x178", "--depth", "1", "--no-text", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(
      result.output,
      "CG 376 (0x178) \"vehicle speed\" 2 records, 3 bytes each\n"
      "  cg_cn_first -> CN 480 (0x1e0) \"vehicle speed\" [vehicle speed], master, real LE, 16 "
      "bits\n"
      "  cg_si_acq_source -> SI 776 (0x308) \"vehicle speed\" bus, LIN\n"
      "  cg_sr_first -> SR 832 (0x340) 1 record, interval 0.25\n");
  EXPECT_EQ(result.messages, "");
}

TEST(TreeCommand, LongChainsAreWholeWhenAllIsWanted) {
  FileBuilder builder;
  std::uint64_t before = FileBuilder::header;
  for (int i = 0; i < 150; ++i) {
    const auto text = builder.add("FH", {0, 0}, std::string(16, '\0'));
    builder.link(before, before == FileBuilder::header ? 1 : 0, text);
    before = text;
  }
  const TempFile file(builder.bytes());
  const std::string rest = run({"tree", file.path()}).output;
  EXPECT_EQ(rest.substr(rest.size() - 17), "  ... 50 more FH\n");
  const std::string json = run({"tree", "--json", file.path()}).output;
  EXPECT_EQ(json.substr(json.rfind('{')),
            R"({"schema":2,"file":")" + file.path() +
                R"(","entry":"left out","depth":1,"from":5712,"role":"fh_fh_next","offset":5768,)"
                R"("type":"FH","count":50})"
                "\n");
  const std::string all = run({"tree", "--all", file.path()}).output;
  EXPECT_EQ(all.substr(all.size() - 33), "  fh_fh_next -> FH 8512 (0x2140)\n");
}

TEST(TreeCommand, SeveralFilesAndAnUnreadableOne) {
  const TempFile file(FileBuilder().bytes());
  const RunResult result = run({"tree", file.path(), "/no/such/file", file.path()});
  EXPECT_EQ(result.exit_code, 2);
  const std::string tree = file.path() + ":\nHD 64 (0x40)\n";
  EXPECT_EQ(result.output, tree + tree);
  EXPECT_EQ(result.messages, "mdf: cannot open /no/such/file: No such file or directory\n");
}

TEST(TreeCommand, BrokenFile) {
  const TempFile file(FileBuilder().bytes().substr(0, 100));
  EXPECT_EQ(run({"tree", "--json", file.path()}),
            (RunResult{1,
                       R"({"schema":2,"file":")" + file.path() +
                           R"(","entry":"block","depth":0,"from":0,"role":"","offset":64,)"
                           R"("type":"HD","length":104,"name":""})"
                           "\n",
                       "mdf: " + file.path() +
                           ": 64 (0x40): expected the 104 bytes of ##HD, found 36 up to the "
                           "file's end\n"}));
}

}  // namespace
