#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "reader/measurement/measurement.h"
#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/recorded_file.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

/// The channel of a name; an empty one, and a test failure, when there is none.
RecordedChannel channelNamed(const RecordedFile& file, const std::string& name) {
  for (const RecordedChannel& channel : file.channels()) {
    if (channel.name == name) {
      return channel;
    }
  }
  ADD_FAILURE() << "no channel " << name;
  return {};
}

/// 20 samples at 50 Hz, recorded once for all tests that look at it.
class Recorded : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder = new ScratchFolder;
    RunOptions options;
    options.environment = {"TZ=CET-1CEST,M3.5.0,M10.5.0/3"};
    started = std::time(nullptr);
    result =
        record({(*folder / "out.mf4").string(), "--duration", "400ms", "--rate", "50Hz"}, options);
    file = new RecordedFile(*folder / "out.mf4");
  }
  static void TearDownTestSuite() {
    delete file;
    delete folder;
  }

  static ScratchFolder* folder;
  static RecordedFile* file;
  static RunResult result;
  static std::time_t started;
};

ScratchFolder* Recorded::folder = nullptr;
RecordedFile* Recorded::file = nullptr;
RunResult Recorded::result;
std::time_t Recorded::started = 0;

TEST_F(Recorded, FileIsComplete) {
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_EQ(result.output, "");
  file->expectComplete();
}

TEST_F(Recorded, EverySampleIsRecordedOrReportedMissed) {
  expectSummary(result.messages, *folder / "out.mf4", 0.4, 20);
}

TEST_F(Recorded, TimeIsTheMasterInSecondsAndGrowsFrom0) {
  const RecordedChannel time = file->channels().at(0);
  EXPECT_EQ(time.name, "time");
  EXPECT_EQ(time.unit, "s");
  EXPECT_EQ(time.type, 2U) << "master";
  EXPECT_EQ(time.sync_type, 1U) << "time";
  EXPECT_EQ(time.data_type, 4U);
  EXPECT_EQ(time.bit_count, 64U);
  ASSERT_FALSE(time.values.empty());
  EXPECT_GE(time.values.front(), 0);
  EXPECT_LT(time.values.front(), 0.5);
  EXPECT_GT(time.values.back(), 0.3);
  EXPECT_EQ(std::adjacent_find(time.values.begin(), time.values.end(), std::greater_equal<>()),
            time.values.end());
}

TEST_F(Recorded, OtherChannelsHaveFixedLengthAndOneOfThreeTypes) {
  const std::vector<RecordedChannel> channels = file->channels();
  for (std::size_t i = 1; i < channels.size(); ++i) {
    const RecordedChannel& channel = channels[i];
    SCOPED_TRACE(channel.name);
    EXPECT_EQ(channel.type, 0U);
    EXPECT_EQ(channel.sync_type, 0U);
    const bool is_float = channel.data_type == 4 && channel.bit_count == 32;
    const bool is_count = channel.data_type == 0 && channel.bit_count == 64;
    EXPECT_TRUE(is_float || is_count);
  }
}

TEST_F(Recorded, UtilisationOfTheMachineAndOfEachCpuIsAPercentage) {
  EXPECT_EQ(channelNamed(*file, "cpu_total").unit, "%");
  long cpus = 0;
  for (const RecordedChannel& channel : file->channels()) {
    if (channel.name.substr(0, 3) == "cpu") {
      cpus += channel.name != "cpu_total" ? 1 : 0;
      EXPECT_EQ(channel.unit, "%");
      for (const double value : channel.values) {
        ASSERT_TRUE(value >= 0 && value <= 100) << channel.name << " " << value;
      }
    }
  }
  EXPECT_EQ(cpus, sysconf(_SC_NPROCESSORS_ONLN));
}

TEST_F(Recorded, LoadMemoryAndNetworkMakeSense) {
  for (const std::string name : {"load_1min", "load_5min", "load_15min"}) {
    const RecordedChannel load = channelNamed(*file, name);
    EXPECT_EQ(load.unit, "");
    EXPECT_GE(*std::min_element(load.values.begin(), load.values.end()), 0) << name;
  }
  const RecordedChannel total = channelNamed(*file, "mem_total");
  const RecordedChannel available = channelNamed(*file, "mem_available");
  EXPECT_EQ(total.unit, "KiB");
  EXPECT_GT(*std::min_element(available.values.begin(), available.values.end()), 0);
  EXPECT_LT(*std::max_element(available.values.begin(), available.values.end()),
            total.values.front());
  const RecordedChannel bytes = channelNamed(*file, "net_lo_rx_bytes");
  EXPECT_EQ(bytes.unit, "B");
  EXPECT_TRUE(std::is_sorted(bytes.values.begin(), bytes.values.end()));
  EXPECT_EQ(channelNamed(*file, "net_lo_tx_packets").unit, "");
}

TEST_F(Recorded, HeaderSaysWhenTheRecordingStarted) {
  const std::uint64_t at = 64 + 24 + 48;
  const std::uint64_t nanoseconds = file->numberAt(at, 8);
  EXPECT_GE(nanoseconds / 1'000'000'000, static_cast<std::uint64_t>(started));
  EXPECT_LE(nanoseconds / 1'000'000'000, static_cast<std::uint64_t>(started) + 60);
  EXPECT_EQ(file->numberAt(at + 8, 2), 60U) << "minutes of the time zone";
  EXPECT_TRUE(file->numberAt(at + 10, 2) == 0 || file->numberAt(at + 10, 2) == 60);
  EXPECT_EQ(file->numberAt(at + 12, 1), 2U) << "UTC, offsets valid";
  EXPECT_EQ(file->numberAt(at + 13, 1), 0U) << "the local computer's clock";
}

TEST_F(Recorded, CommentsSayWhereHowAndByWhat) {
  char host[256] = "";
  ASSERT_EQ(gethostname(host, sizeof host), 0);
  const std::size_t begin = file->bytes().find("<HDcomment");
  const std::string comment = file->bytes().substr(begin, file->bytes().find('\0', begin) - begin);
  EXPECT_PRED2(contains, comment, host);
  EXPECT_PRED2(contains, comment, "recorded at 50 Hz");
  const std::string version = run({"--version"}).output.substr(4);
  EXPECT_PRED2(contains, file->bytes(),
               "<TX>Recorded live signals</TX><tool_id>mdf</tool_id><tool_vendor>The mdf "
               "maintainers</tool_vendor><tool_version>" +
                   version.substr(0, version.size() - 1) + "</tool_version>");
}

TEST(RecordRates, SourceWithARateOfItsOwnIsAGroup) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  const RunResult result = record({path, "--duration", "300ms", "--rate", "10", "--rate",
                                   "memory=50", "-c", "mem_free", "-c", "load_1min", "--sync"});
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_EQ(summaryOf(result.messages).records + summaryOf(result.messages).missed, 18U);
  EXPECT_EQ(summaryOf(result.messages).channels, 4U);
  const mdf_reader::Measurement file(path);
  ASSERT_EQ(file.groups().size(), 2U);
  EXPECT_EQ(file.groups()[0].shownName(), "system signals");
  EXPECT_EQ(file.groups()[0].channels.at(1).name, "load_1min");
  EXPECT_EQ(file.groups()[1].shownName(), "memory");
  EXPECT_EQ(file.groups()[1].channels.at(1).name, "mem_free");
  EXPECT_EQ(checkedBytes(bytesOf(path)), "");
}

TEST(RecordToStandardOutput, IsARecordingThatStaysOpen) {
  const RunResult result = record({"-", "--duration", "200ms", "--rate", "10"});
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_EQ(summaryOf(result.messages).path, "standard output");
  EXPECT_EQ(checkedCodes(result.output), "file-unfinished 1\n");
  const ScratchFolder folder;
  folder.write("out.mf4", result.output);
  EXPECT_EQ(RecordedFile(folder / "out.mf4").records(), summaryOf(result.messages).records);
}

}  // namespace
