#include <gtest/gtest.h>

#include <filesystem>

#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// Two channel groups: time with speed and gear, and a count without a time.
std::string twoGroups() {
  FileBuilder file;
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "km/h";
  const std::uint64_t first = file.addData(Bytes().f64(0).u8(10).u8(1).f64(1).u8(20).u8(2));
  file.addSortedGroup({2, 10}, {timeChannel(), speed, channelOf("gear", 0, 9, 8)}, first);
  file.addSortedGroup({2, 1}, {firstByte("count")}, file.addData(Bytes().u8(5).u8(6)));
  return file.bytes();
}

class PlotReport : public testing::Test {
 protected:
  RunResult plot(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"plot", file_.path(), "-o", path()});
    return run(arguments);
  }
  std::string path() const { return (folder_ / "out.html").string(); }
  std::string page() const { return bytesOf(path()); }
  bool exists() const { return std::filesystem::exists(path()); }

  TempFile file_{twoGroups()};
  ScratchFolder folder_;
};

}  // namespace

TEST_F(PlotReport, HasTheChosenChannels) {
  EXPECT_EQ(plot({"-c", "s*", "--title", "A </title> B"}), wrote(""));
  const std::string text = page();
  EXPECT_EQ(text.substr(0, 15), "<!doctype html>");
  EXPECT_PRED2(contains, text, "<title>A &lt;/title> B</title>");
  EXPECT_PRED2(contains, text, R"("columns":[{"name":"speed","unit":"km/h",)");
  EXPECT_FALSE(contains(text, R"("name":"gear")"));
  EXPECT_FALSE(contains(text, R"("name":"count")"));
  EXPECT_FALSE(contains(text, std::filesystem::path(file_.path()).parent_path().string()));
}

TEST_F(PlotReport, TakesPartOfTheTime) {
  EXPECT_EQ(plot({"-c", "gear", "--from", "0.5"}).exit_code, 0);
  EXPECT_PRED2(contains, page(), R"("records":1,)");
  EXPECT_PRED2(contains, page(), R"("span":{"from":1.0,"to":1.0,)");
  // The one sample: 2 at 1 s.
  EXPECT_PRED2(contains, page(),
               R"("lists":[[{"type":"same","count":1,"value":1.0},)"
               R"({"type":"same","count":1,"value":2.0}]])");
}

TEST_F(PlotReport, DoesNotTakeThePlaceOfWhatItReads) {
  const std::string before = bytesOf(file_.path());
  const std::string other = path();
  std::filesystem::create_symlink(file_.path(), other);
  EXPECT_EQ(plot({"-c", "gear"}), said(2, "the output " + other + " is one of the files to read"));
  EXPECT_EQ(bytesOf(file_.path()), before);
}

TEST_F(PlotReport, GoesToStandardOutput) {
  const RunResult result =
      run({"plot", file_.path(), "-c", "count", "-o", "-", "--format", "html"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_PRED2(contains, result.output, R"("name":"count")");
  EXPECT_PRED2(contains, result.output, R"("master":null)");
}

TEST_F(PlotReport, WithoutAChannelThereIsNone) {
  EXPECT_EQ(plot({"-c", "nothing"}).exit_code, 1);
  EXPECT_FALSE(exists());
}

TEST_F(PlotReport, WithTheTimeOfDayTheFileMustSayWhenItBegan) {
  const RunResult result = plot({"-c", "speed", "--time", "iso"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_PRED2(contains, result.messages, "does not say when it was begun");
  EXPECT_FALSE(exists());
}

TEST_F(PlotReport, OptionsOfPicturesAreRefused) {
  for (const char* const option : {"--log", "--points"}) {
    EXPECT_EQ(plot({"-c", "speed", option}),
              said(2, std::string(option) + " is for pictures; a report has no such form"));
  }
  EXPECT_EQ(plot({"-c", "speed", "--size", "800x600"}).exit_code, 2);
  EXPECT_EQ(run({"plot", file_.path(), "-c", "speed", "--format", "svg", "--max-size", "5"}),
            said(2, "--max-size is for reports; end OUT in .html"));
  EXPECT_EQ(plot({"-c", "speed", "--max-size", "0"}).exit_code, 2);
}

TEST_F(PlotReport, FileThatIsNoneOfMdfLeavesNothing) {
  const TempFile other("no measurement at all, but sixty-four bytes and more of some text...");
  EXPECT_EQ(run({"plot", other.path(), "-c", "a", "-o", path()}).exit_code, 2);
  EXPECT_FALSE(exists());
}
