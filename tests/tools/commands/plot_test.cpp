#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/sampling/exported.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// Time and a channel with this name, which rises.
std::string risingFile(const std::string& name = "speed") {
  FileBuilder file;
  ChannelSpec speed = channelOf(name, 0, 8, 8);
  speed.unit = "km/h";
  Bytes records;
  for (int i = 0; i < 200; ++i) {
    records.f64(0.1 * i).u8(static_cast<std::uint8_t>(i));
  }
  file.addSortedGroup({200, 9}, {timeChannel(), speed}, file.addData(records));
  return file.bytes();
}

/// The program is found by its path, gnuplot is not.
RunOptions withoutGnuplot() {
  RunOptions options;
  options.environment = {"PATH=/nowhere"};
  return options;
}

TEST(PlotCommand, Svg) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  const std::string path = (folder / "out.svg").string();
  EXPECT_EQ(run({"plot", file.path(), "--channel", "speed", "-o", path}), wrote(""));
  const std::string picture = bytesOf(path);
  for (const char* text : {"<svg", "</svg>", ">speed<", ">speed [km/h]<", ">time [s]<"}) {
    EXPECT_PRED2(contains, picture, text);
  }
}

TEST(PlotCommand, Png) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  const std::string path = (folder / "out.png").string();
  EXPECT_EQ(run({"plot", file.path(), "-c", "speed", "-o", path}).exit_code, 0);
  EXPECT_EQ(bytesOf(path).substr(0, 8), "\x89PNG\r\n\x1A\n");
}

TEST(PlotCommand, InTheTerminal) {
  const TempFile file(risingFile());
  const RunResult result = run({"plot", "-c", "sp*", file.path(), "-o", "-", "--format", "ascii"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  EXPECT_PRED2(contains, result.output, "time [s]");
  EXPECT_PRED2(contains, result.output, "***");
}

TEST(PlotCommand, PartOfTheTime) {
  const TempFile file(risingFile());
  RunOptions options;
  const std::vector<std::string> all = {"plot", file.path(), "-c", "speed", "--format", "svg"};
  std::vector<std::string> part = all;
  part.insert(part.end(), {"--from", "5", "--to", "6"});
  EXPECT_PRED2(contains, run(all).output, ">20<");
  EXPECT_EQ(run(part).output.find(">20<"), std::string::npos);
  EXPECT_PRED2(contains, run(part).output, ">5.2<");
}

TEST(PlotCommand, AnEmptyPictureIsNoted) {
  const TempFile file(risingFile());
  const RunResult result =
      run({"plot", file.path(), "-c", "speed", "--from", "100", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages,
            "mdf: note: nothing to draw: none of the chosen samples is a number\n");
  EXPECT_PRED2(contains, result.output, "</svg>");
}

TEST(PlotCommand, SeveralFilesInOnePicture) {
  const ScratchFolder folder;
  folder.write("a.mf4", risingFile());
  folder.write("b.mf4", risingFile());
  const RunResult result = run({"plot", (folder / "a.mf4").string(), (folder / "b.mf4").string(),
                                "-c", "speed", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_PRED2(contains, result.output, ">a.mf4: speed<");
  EXPECT_PRED2(contains, result.output, ">b.mf4: speed<");
}

/// A time channel and one of bytes, of which the invalid ones are given as none.
std::string fileWithAGap() {
  FileBuilder file;
  ChannelSpec gear = channelOf("gear", 0, 8, 8);
  gear.flags = 2;  // has an invalidation bit
  const Bytes records = Bytes().f64(0.5).u8(1).u8(0).f64(1.5).u8(2).u8(1).f64(2.5).u8(3).u8(0);
  file.addSortedGroup({3, 9, 1}, {timeChannel(), gear}, file.addData(records));
  return file.bytes();
}

TEST(PlotCommand, JsonHasThePointsAndNullForGaps) {
  const TempFile file(fileWithAGap());
  EXPECT_EQ(run({"plot", file.path(), "-c", "gear", "--json"}, withoutGnuplot()),
            wrote(R"({"schema":2,"curves":[{"file":")" + file.path() +
                  R"(","name":"gear","unit":"","over":"time [s]",)"
                  R"("points":[[0.5,1.0],null,[2.5,3.0]]}]})"
                  "\n"));
}

TEST(PlotCommand, JsonWithoutCurvesIsADocumentToo) {
  const TempFile file(risingFile());
  EXPECT_EQ(run({"plot", file.path(), "-c", "none", "--json"}),
            (RunResult{1, "{\"schema\":2,\"curves\":[]}\n",
                       "mdf: " + file.path() + ": note: no channel matches \"none\"\n"}));
}

TEST(PlotCommand, APictureTakesThePlaceOfTheOneBefore) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  folder.write("out.svg", "before");
  std::filesystem::create_symlink("out.svg", folder / "link.svg");
  EXPECT_EQ(run({"plot", file.path(), "-c", "speed", "-o", (folder / "link.svg").string()}),
            wrote(""));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.svg"));
  EXPECT_EQ(bytesOf((folder / "out.svg").string()).substr(0, 5), "<?xml");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

TEST(PlotCommand, ADeviceStaysOne) {
  const TempFile file(risingFile());
  const std::vector<std::string> arguments = {"plot",     file.path(), "-c", "speed",
                                              "--format", "svg",       "-o", ""};
  const auto to = [&](const std::string& path) {
    std::vector<std::string> all = arguments;
    all.back() = path;
    return run(all);
  };
  EXPECT_EQ(to("/dev/null").exit_code, 0);
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_EQ(to("/dev/stdout").output.substr(0, 5), "<?xml");
  EXPECT_EQ(to("/dev/full"), said(1, "cannot write to /dev/full: No space left on device"));
}

TEST(PlotCommand, NamesAreNoCommandsForGnuplot) {
  const ScratchFolder folder;
  const std::string proof = (folder / "proof").string();
  const std::string touch = "system('touch " + proof + "')";
  const TempFile file(risingFile("'.`touch " + proof + "`.'\"." + touch + ".\"@" + touch +
                                 "\n!touch " + proof + "\n"));
  const RunResult result = run({"plot", file.path(), "-c", "*", "--format", "svg"});
  EXPECT_EQ(result, wrote(result.output));
  EXPECT_FALSE(std::filesystem::exists(proof));
}

TEST(PlotCommand, InAnyLocale) {
  const TempFile file(risingFile("G\xc3\xa4nge"));
  RunOptions options;
  options.environment = {"LC_ALL=C"};
  const RunResult result = run({"plot", file.path(), "-c", "*", "--format", "svg"}, options);
  EXPECT_EQ(result.messages, "");
  EXPECT_PRED2(contains, result.output, ">G\xc3\xa4nge [km/h]<");
}

TEST(PlotCommand, WithoutGnuplot) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  const std::string path = (folder / "out.svg").string();
  EXPECT_EQ(run({"plot", file.path(), "-c", "speed", "-o", path}, withoutGnuplot()),
            said(1, "cannot draw: the program gnuplot is not installed; install gnuplot"));
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PlotCommand, NothingThatIsWanted) {
  const TempFile file(risingFile());
  EXPECT_EQ(run({"plot", file.path(), "-c", "none", "--format", "svg"}),
            said(1, file.path() + ": note: no channel matches \"none\""));
}

}  // namespace
