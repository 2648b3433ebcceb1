#include <gtest/gtest.h>

#include "tools/support/program.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

constexpr const char* lines =
    "t,a,s\n"
    "100,1,x\n"
    "101,95,x\n"
    "102,96,y\n"
    "103,50,z\n"
    "104,99,z\n"
    "105,1,w\n"
    "106,,w\n"
    "107,99.5,w\n";

std::string recorded(std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), {"--stdin", "csv", "--time", "t"});
  return recordedLines(lines, arguments);
}

/// A trigger at a position, as a line of JSON.
std::string trigger(const std::string& position, const std::string& condition) {
  return "\"position\":" + position +
         R"(,"unit":"s","sync_type":"time","sync_type_number":1,"type":"trigger","type_number":5,)"
         R"("range_type":"point","range_type_number":0,"cause":"tool","cause_number":2,"flags":0,)"
         R"("name":")" +
         condition + "\",\"comment\":\"\",\"scopes\":0,\"attachments\":0}\n";
}

/// What is said of so many records in one file.
std::string oneFile(const std::string& records) {
  return "recorded " + records + " of 3 channels to out.mf4, 0 lines left out\nexit code 0\n" +
         "out.mf4\ntime [s],a,s\n";
}

TEST(RecordRing, HasTheLastSamples) {
  EXPECT_EQ(recorded({"--ring", "2500ms"}), oneFile("3 records") + "0,1,w\n1,,w\n2,99.5,w\n");
  EXPECT_EQ(recorded({"--ring", "0"}), oneFile("1 record") + "0,99.5,w\n");
  EXPECT_EQ(
      recorded({"--ring", "1h"}),
      oneFile("8 records") + "0,1,x\n1,95,x\n2,96,y\n3,50,z\n4,99,z\n5,1,w\n6,,w\n7,99.5,w\n");
}

TEST(RecordTrigger, BeginsAFileWhenTheConditionBecomesTrue) {
  struct Case {
    std::vector<std::string> arguments;
    std::string file;
  };
  const Case cases[] = {
      {{"--trigger", "a > 96"},
       oneFile("4 records") + "0,99,z\n1,1,w\n2,,w\n3,99.5,w\n" + trigger("0.0", "a > 96")},
      {{"--trigger", "a > 96", "--pre-trigger", "2", "--post-trigger", "1s"},
       oneFile("4 records") + "0,96,y\n1,50,z\n2,99,z\n3,1,w\n" + trigger("2.0", "a > 96")},
      {{"--trigger", "a > 96", "--ring", "2s", "--post-trigger", "0"},
       oneFile("3 records") + "0,96,y\n1,50,z\n2,99,z\n" + trigger("2.0", "a > 96")},
      {{"--trigger", "a > 96", "--ring", "2s", "--pre-trigger", "1500ms", "--post-trigger", "0.9"},
       oneFile("2 records") + "0,50,z\n1,99,z\n" + trigger("1.0", "a > 96")},
      {{"--trigger", "a<=50", "--ring", "1h", "--post-trigger", "1"},
       oneFile("2 records") + "0,1,x\n1,95,x\n" + trigger("0.0", "a<=50")},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(recorded(one.arguments), one.file);
  }
}

TEST(RecordTrigger, BeginsNumberedFilesWithRotate) {
  EXPECT_EQ(
      recorded({"--trigger", "a > 90", "--ring", "3s", "--post-trigger", "1s", "--rotate", "1GB"}),
      "recorded 8 records of 3 channels to out_001.mf4 to out_003.mf4, 0 lines left out\n"
      "exit code 0\n"
      "out_001.mf4\ntime [s],a,s\n0,1,x\n1,95,x\n2,96,y\n" +
          trigger("1.0", "a > 90") + "out_002.mf4\ntime [s],a,s\n0,50,z\n1,99,z\n2,1,w\n" +
          trigger("1.0", "a > 90") + "out_003.mf4\ntime [s],a,s\n0,,w\n1,99.5,w\n" +
          trigger("1.0", "a > 90"));
  EXPECT_EQ(recorded({"--trigger", "a == 50", "--pre-trigger", "1s", "--rotate", "3s"}),
            "recorded 6 records of 3 channels to out_001.mf4 to out_002.mf4, 0 lines left out\n"
            "exit code 0\n"
            "out_001.mf4\ntime [s],a,s\n0,96,y\n1,50,z\n2,99,z\n" +
                trigger("1.0", "a == 50") + "out_002.mf4\ntime [s],a,s\n0,1,w\n1,,w\n2,99.5,w\n");
}

TEST(RecordTrigger, WithoutOneThereIsNoFile) {
  EXPECT_EQ(recorded({"--trigger", "a > 100", "--ring", "5s"}),
            "mdf: the trigger did not fire: \"a > 100\" did not become true; nothing was recorded\n"
            "exit code 1\n");
}

TEST(RecordTrigger, IsRefusedWhenItCannotFire) {
  struct Case {
    std::vector<std::string> arguments;
    std::string sentence;
  };
  const Case cases[] = {
      {{"--trigger", "b > 1"}, "cannot trigger on \"b\": there is no such channel"},
      {{"--trigger", "s == 1"}, "cannot trigger on \"s\": it has texts, no numbers"},
      {{"--trigger", ""},
       "\"\" is no condition; write a channel, one of > >= < <= == != and a number, such as "
       "\"cpu_total > 90\""},
      {{"--trigger", "a > 1", "--ring", "1s", "--pre-trigger", "2s"},
       "--pre-trigger 2s is longer than --ring 1s"},
      {{"--pre-trigger", "2s"}, "--pre-trigger requires --trigger"},
      {{"--post-trigger", "2s"}, "--post-trigger requires --trigger"},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(recorded(one.arguments), "mdf: " + one.sentence + "\nexit code 2\n");
  }
}

TEST(RecordTrigger, EndsARecordingOfTheMachineByItself) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  const auto recordTotal = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {path, "--rate", "20", "-c", "mem_total", "--force"});
    return record(arguments);
  };
  EXPECT_EQ(recordTotal({"--trigger", "mem_total < 0", "--ring", "1s", "--duration", "100ms"}),
            said(1,
                 "the trigger did not fire: \"mem_total < 0\" did not become true; nothing was "
                 "recorded"));
  EXPECT_FALSE(std::filesystem::exists(path));
  const RunResult triggered = recordTotal({"--trigger", "mem_total > 0", "--post-trigger", "0.28"});
  EXPECT_EQ(triggered.exit_code, 0);
  EXPECT_EQ(summaryOf(triggered.messages).records + summaryOf(triggered.messages).missed, 6U);
  EXPECT_PRED2(contains, run({"list", "events", path, "--json"}).output,
               trigger("0.0", "mem_total > 0"));
  const RunResult ring = recordTotal({"--ring", "120ms", "--duration", "500ms"});
  EXPECT_EQ(ring.exit_code, 0);
  EXPECT_LE(summaryOf(ring.messages).records, 3U);
  EXPECT_GE(summaryOf(ring.messages).records, 1U);
}

}  // namespace
