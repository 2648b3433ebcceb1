#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tools/sampling/exported.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// Time and a channel with this name, which rises.
std::string risingFile(const std::string& name = "speed") {
  FileBuilder file;
  const std::uint64_t time = file.addTime();
  ChannelSpec speed;
  speed.name = name;
  speed.byte_offset = 8;
  speed.unit = "km/h";
  Bytes records;
  for (int i = 0; i < 200; ++i) {
    records.f64(0.1 * i).u8(static_cast<std::uint8_t>(i));
  }
  file.addDataGroup({file.addChannelGroup({200, 9}, {time, file.addChannel(speed)})},
                    file.addData(records));
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
  const RunResult result = run({"plot", file.path(), "--channel", "speed", "-o", path});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "");
  const std::string picture = bytesOf(path);
  for (const char* text : {"<svg", "</svg>", ">speed<", ">speed [km/h]<", ">time [s]<"}) {
    EXPECT_NE(picture.find(text), std::string::npos) << text;
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
  EXPECT_NE(result.output.find("time [s]"), std::string::npos);
  EXPECT_NE(result.output.find("***"), std::string::npos);
}

TEST(PlotCommand, PartOfTheTime) {
  const TempFile file(risingFile());
  RunOptions options;
  const std::vector<std::string> all = {"plot", file.path(), "-c", "speed", "--format", "svg"};
  std::vector<std::string> part = all;
  part.insert(part.end(), {"--from", "5", "--to", "6"});
  EXPECT_NE(run(all).output.find(">20<"), std::string::npos);
  EXPECT_EQ(run(part).output.find(">20<"), std::string::npos);
  EXPECT_NE(run(part).output.find(">5.2<"), std::string::npos);
}

TEST(PlotCommand, AnEmptyPictureIsNoted) {
  const TempFile file(risingFile());
  const RunResult result =
      run({"plot", file.path(), "-c", "speed", "--from", "100", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages,
            "mdf: note: nothing to draw: none of the chosen samples is a number\n");
  EXPECT_NE(result.output.find("</svg>"), std::string::npos);
}

TEST(PlotCommand, SeveralFilesInOnePicture) {
  const ScratchFolder folder;
  folder.write("a.mf4", risingFile());
  folder.write("b.mf4", risingFile());
  const RunResult result = run({"plot", (folder / "a.mf4").string(), (folder / "b.mf4").string(),
                                "-c", "speed", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_NE(result.output.find(">a.mf4: speed<"), std::string::npos);
  EXPECT_NE(result.output.find(">b.mf4: speed<"), std::string::npos);
}

/// A time channel and one of bytes, of which the invalid ones are given as none.
std::string fileWithAGap() {
  FileBuilder file;
  const std::uint64_t time = file.addTime();
  ChannelSpec gear;
  gear.name = "gear";
  gear.byte_offset = 8;
  gear.flags = 2;  // has an invalidation bit
  const Bytes records = Bytes().f64(0.5).u8(1).u8(0).f64(1.5).u8(2).u8(1).f64(2.5).u8(3).u8(0);
  file.addDataGroup({file.addChannelGroup({3, 9, 1}, {time, file.addChannel(gear)})},
                    file.addData(records));
  return file.bytes();
}

TEST(PlotCommand, JsonHasThePointsAndNullForGaps) {
  const TempFile file(fileWithAGap());
  const RunResult result = run({"plot", file.path(), "-c", "gear", "--json"}, withoutGnuplot());
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.output, R"({"schema":2,"curves":[{"file":")" + file.path() +
                               R"(","name":"gear","unit":"","over":"time [s]",)"
                               R"("points":[[0.5,1.0],null,[2.5,3.0]]}]})"
                               "\n");
}

TEST(PlotCommand, JsonWithoutCurvesIsADocumentToo) {
  const TempFile file(risingFile());
  const RunResult result = run({"plot", file.path(), "-c", "none", "--json"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, "{\"schema\":2,\"curves\":[]}\n");
}

TEST(PlotCommand, JsonOrAPicture) {
  const TempFile file(risingFile());
  EXPECT_EQ(run({"plot", file.path(), "-c", "speed", "--json", "-o", "out.svg"}).exit_code, 2);
  EXPECT_EQ(run({"plot", file.path(), "-c", "speed", "--json", "--format", "svg"}).exit_code, 2);
}

TEST(PlotCommand, APictureTakesThePlaceOfTheOneBefore) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  folder.write("out.svg", "before");
  std::filesystem::create_symlink("out.svg", folder / "link.svg");
  const RunResult result =
      run({"plot", file.path(), "-c", "speed", "-o", (folder / "link.svg").string()});
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exit_code, 0);
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
  const RunResult full = to("/dev/full");
  EXPECT_EQ(full.exit_code, 1);
  EXPECT_EQ(full.messages, "mdf: cannot write to /dev/full: No space left on device\n");
}

TEST(PlotCommand, OutputThatCannotBeWritten) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  const std::string path = (folder / "none" / "out.svg").string();
  const RunResult result = run({"plot", file.path(), "-c", "speed", "-o", path});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages, "mdf: cannot open the folder " + (folder / "none").string() +
                                 ": No such file or directory\n");
}

TEST(PlotCommand, NamesAreNoCommandsForGnuplot) {
  const ScratchFolder folder;
  const std::string proof = (folder / "proof").string();
  const std::string touch = "system('touch " + proof + "')";
  const TempFile file(risingFile("'.`touch " + proof + "`.'\"." + touch + ".\"@" + touch +
                                 "\n!touch " + proof + "\n"));
  const RunResult result = run({"plot", file.path(), "-c", "*", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  EXPECT_FALSE(std::filesystem::exists(proof));
}

TEST(PlotCommand, InAnyLocale) {
  const TempFile file(risingFile("G\xc3\xa4nge"));
  RunOptions options;
  options.environment = {"LC_ALL=C"};
  const RunResult result = run({"plot", file.path(), "-c", "*", "--format", "svg"}, options);
  EXPECT_EQ(result.messages, "");
  EXPECT_NE(result.output.find(">G\xc3\xa4nge [km/h]<"), std::string::npos);
}

TEST(PlotCommand, WithoutGnuplot) {
  const TempFile file(risingFile());
  const ScratchFolder folder;
  const std::string path = (folder / "out.svg").string();
  const RunResult result = run({"plot", file.path(), "-c", "speed", "-o", path}, withoutGnuplot());
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages,
            "mdf: cannot draw: the program gnuplot is not installed; install gnuplot\n");
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(PlotCommand, NothingThatIsWanted) {
  const TempFile file(risingFile());
  const RunResult result = run({"plot", file.path(), "-c", "none", "--format", "svg"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": note: no channel matches \"none\"\n");
}

TEST(PlotCommand, WrongOptions) {
  const TempFile file(risingFile());
  EXPECT_EQ(run({"plot", file.path()}).exit_code, 2);
  EXPECT_EQ(run({"plot", "-c", "speed"}).exit_code, 2);
  const RunResult result = run({"plot", file.path(), "-c", "speed", "-o", "out.jpg"});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.messages,
            "mdf: cannot tell the picture's format from out.jpg; end it in .svg or .png, or add "
            "--format\n");
}

}  // namespace
