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

/// The picture of a file and what is said of it.
RunResult draw(const TempFile& file, const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"plot", file.path(), "-c", "*", "--format", "svg"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return run(arguments);
}

/// A file with a channel of one byte in each of two groups.
std::string fileOfTwoGroups(std::uint64_t cycles_of_the_second) {
  FileBuilder file;
  const Bytes records = Bytes().f64(0.5).u8(1).f64(1.5).u8(2);
  GroupSpec first{2, 9};
  first.name = "engine";
  GroupSpec second{cycles_of_the_second, 9};
  second.name = "gear <box>";
  const std::vector<ChannelSpec> channels = {timeChannel(), channelOf("n", 0, 8, 8)};
  file.addSortedGroup(first, channels, file.addData(records));
  file.addSortedGroup(second, channels, cycles_of_the_second == 0 ? 0 : file.addData(records));
  return file.bytes();
}

TEST(PlotCommand, GroupsOfChannelsOfOneName) {
  const TempFile file(fileOfTwoGroups(2));
  const RunResult result = draw(file, {});
  EXPECT_EQ(result.messages, "");
  EXPECT_PRED2(contains, result.output, ">engine.n<");
  EXPECT_PRED2(contains, result.output, ">gear &lt;box>.n<");
}

TEST(PlotCommand, EmptyGroupsAreLeftOut) {
  const TempFile file(fileOfTwoGroups(0));
  const RunResult result = draw(file, {});
  EXPECT_EQ(result.messages,
            "mdf: note: left out, without a sample that is a number: gear <box>.n\n");
  EXPECT_PRED2(contains, result.output, ">engine.n<");
  EXPECT_EQ(result.output.find("gear"), std::string::npos);
}

/// The rising file with a start and events: a point with a name that looks like commands, and a
/// range.
std::string fileWithEvents(std::uint64_t start) {
  FileBuilder file;
  ChannelSpec memory = channelOf("memory", 0, 8, 32);
  memory.unit = "KiB";
  const Bytes records = Bytes().f64(0).u32(0).f64(10).u32(25000000);
  file.addSortedGroup({2, 12}, {timeChannel(), memory}, file.addData(records));
  const auto event = [&](const std::string& name, unsigned range, std::int64_t at,
                         std::uint64_t begin) {
    return file.add("EV", {0, 0, begin, file.text(name), 0},
                    u8(6, 1, range, 0, 0) + zeros(3) + u32(0) + u16(0, 0) +
                        u64(static_cast<std::uint64_t>(at)) + f64(1));
  };
  const std::uint64_t point = event("`touch x` <\"{'@", 0, 2, 0);
  const std::uint64_t begin = event("lap", 1, 4, 0);
  file.chain({point, begin, event("end of lap", 2, 6, begin)});
  file.link(FileBuilder::header, 4, point);
  file.write(FileBuilder::header + 72, u64(start) + u16(60, 60) + u8(2));
  return file.bytes();
}

constexpr std::uint64_t noon = 1715947200000000000U;  // 2024-05-17 12:00:00 UTC

TEST(PlotCommand, Events) {
  const TempFile file(fileWithEvents(noon));
  const RunResult with = draw(file, {});
  EXPECT_EQ(with, wrote(with.output));
  EXPECT_PRED2(contains, with.output, ">`touch x` &lt;\"{'@<");
  EXPECT_PRED2(contains, with.output, ">lap<");
  EXPECT_EQ(with.output.find("end of lap"), std::string::npos);
  EXPECT_EQ(draw(file, {"--no-events"}).output.find(">lap<"), std::string::npos);
}

TEST(PlotCommand, EngineeringTicks) {
  const TempFile file(fileWithEvents(noon));
  EXPECT_PRED2(contains, draw(file, {}).output, ">25 GB<");
}

TEST(PlotCommand, SizeAndTitle) {
  const TempFile file(fileWithEvents(noon));
  const RunResult result = draw(file, {"--size", "800x400", "--title", "A `title`"});
  EXPECT_PRED2(contains, result.output, "width=\"800\" height=\"400\"");
  EXPECT_PRED2(contains, result.output, ">A `title`<");
  EXPECT_EQ(draw(file, {"--size", "20x10"}),
            said(1, "cannot draw: 20x10 has no room for 1 panel; give a larger --size"));
}

TEST(PlotCommand, LogarithmicAxisLeavesOutZero) {
  const TempFile file(fileWithEvents(noon));
  const RunResult result = draw(file, {"--log"});
  EXPECT_EQ(result.messages, "mdf: " + file.path() +
                                 ": note: a logarithmic axis begins above 0; values left out: 1\n");
  EXPECT_PRED2(contains, result.output, ">10 GB<");
  EXPECT_PRED2(contains, result.output, ">100 GB<");
}

TEST(PlotCommand, DatesInTheZoneOfTheFile) {
  const TempFile file(fileWithEvents(noon));
  const RunResult result = draw(file, {"--time", "iso"});
  EXPECT_PRED2(contains, result.output, ">14:00:04<");
  EXPECT_PRED2(contains, result.output, ">time [UTC+02:00], 2024-05-17<");
  EXPECT_PRED2(contains, result.output, ">lap<");
  const TempFile without(fileWithEvents(0));
  EXPECT_EQ(draw(without, {"--time", "iso"}),
            said(1, without.path() +
                        ": the file does not say when it was begun; draw it without --time iso"));
}

}  // namespace
