#include "printing/progress.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "reader/bytes/input_file.h"
#include "tools/sampling/exported.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::InputFile;
using mdf_tools::Progress;
using mdf_tools::readSoFar;

namespace {

using std::chrono::milliseconds;

TEST(ReadSoFar, InTheUnitOfTheWhole) {
  EXPECT_EQ(readSoFar(0, 1000), "0 of 1000 bytes");
  EXPECT_EQ(readSoFar(512, 2048), "0.5 of 2.0 KiB");
  EXPECT_EQ(readSoFar(1U << 20U, 3U << 20U), "1.0 of 3.0 MiB");
  EXPECT_EQ(readSoFar(3435973837, std::uint64_t{4} << 30U), "3.2 of 4.0 GiB");
  EXPECT_EQ(readSoFar(4096, 4096), "4.0 of 4.0 KiB");
}

TEST(ReadSoFar, WhatIsReadAgainIsSaidAlone) {
  EXPECT_EQ(readSoFar(2048, 1024), "2.0 KiB");
  EXPECT_EQ(readSoFar(5U << 20U, 1024), "5.0 MiB");
}

TEST(Progress, ShortWorkShowsNothing) {
  const TempFile temp(std::string(3000, 'x'));
  const InputFile file(temp.path());
  std::ostringstream terminal;
  { const Progress progress(file, "", terminal, std::chrono::hours(1)); }
  EXPECT_EQ(terminal.str(), "");
}

TEST(Progress, TheLineIsRenewedAndGoesAway) {
  const TempFile temp(std::string(100'000, 'x'));
  InputFile file(temp.path());
  std::array<char, 70'000> bytes;
  file.readAt(0, bytes.data(), bytes.size());
  std::ostringstream terminal;
  {
    Progress progress(file, "trip.mf4", terminal, milliseconds(1));
    std::string so_far;
    while (so_far.find("KiB") == std::string::npos) {
      std::this_thread::sleep_for(milliseconds(1));
      progress.interrupt([&] { so_far = terminal.str(); });
    }
    progress.interrupt([&] { terminal << "a finding\n"; });
  }
  const std::string line = "\r\x1B[Ktrip.mf4: read 68.4 of 97.7 KiB";
  const std::string text = terminal.str();
  EXPECT_EQ(text.rfind(line, 0), 0U) << text;
  EXPECT_NE(text.find("\r\x1B[Ka finding\n"), std::string::npos) << text;
  const bool ends_clean =
      text.substr(text.size() - 4) == "\r\x1B[K" || text.substr(text.size() - 10) == "a finding\n";
  EXPECT_TRUE(ends_clean) << text;
}

TEST(Progress, NothingIsShownInTheMiddleOfALine) {
  const TempFile temp(std::string(3000, 'x'));
  const InputFile file(temp.path());
  std::ostringstream terminal;
  std::string in_the_middle;
  std::string after_it;
  Progress progress(file, "", terminal, milliseconds(1));
  progress.interrupt([&] { terminal.str("half of "); }, false);
  std::this_thread::sleep_for(milliseconds(10));
  progress.interrupt([&] {
    in_the_middle = terminal.str();
    terminal << "a line\n";
  });
  while (after_it.find("read") == std::string::npos) {
    std::this_thread::sleep_for(milliseconds(1));
    progress.interrupt([&] { after_it = terminal.str(); });
  }
  EXPECT_EQ(in_the_middle, "half of ");
}

/// A file that takes long to read: unsorted records up to its end that nobody has counted. There is
/// no room for its bytes, which are all zero.
class SlowFile {
 public:
  SlowFile() : file_(unfinished()) {
    std::filesystem::resize_file(file_.path(), std::uintmax_t{1} << 36U);
  }
  const std::string& path() const { return file_.path(); }

 private:
  static std::string unfinished() {
    FileBuilder file("UnFinMF ");
    file.write(60, Bytes().u16(1 + 4));
    const std::uint64_t first = file.addGroupOf({0, 1}, {firstByte("a")});
    const std::uint64_t second = file.addGroupOf({0, 1, 0, 1}, {firstByte("b")});
    file.addDataGroup({first, second}, 0, 1);
    const std::uint64_t group = file.bytes().size() - 64;
    file.link(group, 2, file.addData(""));
    return file.bytes();
  }

  TempFile file_;
};

class SlowCommands : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(SlowCommands, ShowProgressOnATerminal) {
  const SlowFile file;
  std::vector<std::string> arguments = GetParam();
  arguments.push_back(file.path());
  RunOptions options;
  options.output_is_terminal = true;
  options.error_is_terminal = true;
  options.signal_after = milliseconds(0);
  options.signal_at_message = " of 64.0 GiB";
  const RunResult result = run(arguments, options);
  EXPECT_EQ(result.exit_code, 128 + SIGINT);
  EXPECT_NE(result.messages.find("\r\x1B[Kread "), std::string::npos) << result.messages;
}

INSTANTIATE_TEST_SUITE_P(All, SlowCommands,
                         testing::Values(std::vector<std::string>{"info"},
                                         std::vector<std::string>{"list", "channels"},
                                         std::vector<std::string>{"check"},
                                         std::vector<std::string>{"export"},
                                         std::vector<std::string>{"plot", "-c", "a"}));

TEST(Progress, OfAQuickCommandOnATerminalNothingIsSeen) {
  const TempFile temp(std::string(10, 'x'));
  RunOptions options;
  options.error_is_terminal = true;
  const RunResult result = run({"list", "blocks", temp.path()}, options);
  EXPECT_EQ(result.messages,
            "mdf: " + temp.path() + ": this is not an MDF file: it begins with \"xxxxxxxx\"\n");
}

}  // namespace
