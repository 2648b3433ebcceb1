#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "../support/file_builder.h"
#include "../support/program.h"
#include "../support/scratch_folder.h"

using namespace mdf_tests;

namespace {

/// A record of a byte each, in a block that states no length when it is unfinished.
std::string fileOf(const std::string& records, bool is_finished, const std::string& custom = "") {
  FileBuilder file(is_finished ? "MDF     " : "UnFinMF ");
  if (!is_finished) {
    file.write(60, u16(5) + (custom.empty() ? u16(0) : custom));
  }
  GroupSpec group{is_finished ? records.size() : 0, 1};
  group.name = "bytes";
  const auto data_group = file.addSortedGroup(group, {firstByte("b")}, 0);
  file.link(data_group, 2, file.add("DT", {}, is_finished ? records : ""));
  if (!is_finished) {
    file.append(records);
  }
  return file.bytes();
}

class RepairCommand : public testing::Test {
 protected:
  RepairCommand() {
    folder_.write("cut.mf4", fileOf("abc", false));
    folder_.write("whole.mf4", fileOf("abc", true));
    folder_.write("custom.mf4", fileOf("abc", false, u16(9)));
    folder_.write("no.mf4", "nothing of the kind");
    std::filesystem::create_directory(folder_ / "out");
  }

  /// Runs the command in the folder; what it prints is without the folder's name.
  RunResult repair(std::vector<std::string> arguments) {
    for (std::string& argument : arguments) {
      const bool is_option = argument[0] == '-';
      argument = is_option ? argument : (folder_ / argument).string();
    }
    arguments.insert(arguments.begin(), "repair");
    RunResult result = run(arguments);
    const std::string prefix = folder_.path().string() + '/';
    for (std::string* text : {&result.output, &result.messages}) {
      for (std::size_t at = text->find(prefix); at != std::string::npos; at = text->find(prefix)) {
        text->erase(at, prefix.size());
      }
    }
    return result;
  }

  std::string read(const std::string& name) { return bytesOf(folder_ / name); }

  ScratchFolder folder_;
};

const std::string sentence = "3 records in 1 group; counts of 1 group and 1 data block set; ";

TEST_F(RepairCommand, MakesAFinishedCopy) {
  const RunResult result = repair({"cut.mf4", "-o", "new.mf4"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "repaired new.mf4: " + sentence + "nothing lost\n");
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(read("new.mf4"), read("whole.mf4"));
  EXPECT_EQ(read("cut.mf4"), fileOf("abc", false));
}

TEST_F(RepairCommand, WorksInPlaceOrInAFolderOnManyFiles) {
  const RunResult folder = repair({"cut.mf4", "whole.mf4", "-o", "out"});
  EXPECT_EQ(folder.exit_code, 0);
  EXPECT_EQ(folder.output, "repaired out/cut.mf4: " + sentence + "nothing lost\n");
  EXPECT_EQ(folder.messages, "mdf: whole.mf4: the file is whole: there is nothing to repair\n");
  EXPECT_EQ(read("out/cut.mf4"), read("whole.mf4"));
  EXPECT_EQ(read("out/whole.mf4"), read("whole.mf4"));

  const RunResult in_place = repair({"--in-place", "cut.mf4", "no.mf4", "whole.mf4"});
  EXPECT_EQ(in_place.exit_code, 2);
  EXPECT_EQ(in_place.output, "repaired cut.mf4: " + sentence + "nothing lost\n");
  EXPECT_EQ(in_place.messages,
            "mdf: no.mf4: this is not an MDF file: it begins with \"nothing \"\n"
            "mdf: whole.mf4: the file is whole: there is nothing to repair\n");
  EXPECT_EQ(read("cut.mf4"), read("whole.mf4"));
}

TEST_F(RepairCommand, TellsAsJson) {
  const RunResult result = repair({"custom.mf4", "-o", "new.mf4", "--json"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output,
            "{\"schema\":2,\"file\":\"custom.mf4\",\"output\":\"new.mf4\",\"counts\":[{\"offset\":"
            "392,\"of\":\"group\",\"group\":\"bytes\",\"records\":3,\"stated\":0}],\"data_blocks\":"
            "[{\"offset\":560,\"length\":27,\"stated\":24}],\"data_lists\":[],\"put_back\":[],"
            "\"skipped\":[],\"value_offsets\":[],\"cut\":[],\"lost\":[{\"code\":\"file-"
            "unfinished\",\"offset\":60,\"text\":\"expected no custom "
            "flags, found 9; what they left open is not known\"}],\"more_lost\":0}\n");
  EXPECT_EQ(result.messages,
            "mdf: custom.mf4: 60 (0x3c): expected no custom flags, found 9; what they left "
            "open is not known\n");
}

TEST_F(RepairCommand, RefusesWhatItMayNotDo) {
  struct Case {
    std::vector<std::string> arguments;
    int exit_code;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"cut.mf4"}, 2, "either -o OUT or --in-place is needed"},
      {{"cut.mf4", "--in-place", "-o", "new.mf4"}, 2, "either -o OUT or --in-place is needed"},
      {{"-", "--in-place"}, 2, "standard input cannot be repaired in place"},
      {{"cut.mf4", "custom.mf4", "-o", "new.mf4"},
       2,
       "of several files, the output must be a folder that exists"},
      {{"cut.mf4", "-o", "cut.mf4"},
       2,
       "the output cut.mf4 is the file to repair; --in-place changes it"},
      {{"cut.mf4", "-o", ".", "--force"},
       1,
       "the output ./cut.mf4 is the file to repair; --in-place changes it"},
      {{"cut.mf4", "-o", "whole.mf4"}, 2, "cannot write whole.mf4: it exists; --force replaces it"},
      {{"cut.mf4", "-o", "none/new.mf4"},
       1,
       "cannot write none/new.mf4: No such file or directory"},
  };
  for (const Case& each : cases) {
    const RunResult result = repair(each.arguments);
    EXPECT_EQ(result.exit_code, each.exit_code) << each.message;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.messages, "mdf: " + each.message + '\n');
  }
  EXPECT_EQ(read("cut.mf4"), fileOf("abc", false));
}

TEST_F(RepairCommand, SavesWhatThereIsOfADamagedFile) {
  std::string damaged = fileOf("abc", true);
  damaged.resize(damaged.size() - 1);
  folder_.write("damaged.mf4", damaged);
  const RunResult result = repair({"damaged.mf4", "-o", "new.mf4"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output,
            "repaired new.mf4: 2 records in 1 group; counts of 1 group and 1 data block set; see "
            "above for what could not be repaired\n");
  EXPECT_EQ(result.messages, "mdf: damaged.mf4: 392 (0x188): expected 3 records, found 2\n");
  const std::string copy = (folder_ / "new.mf4").string();
  EXPECT_EQ(run({"export", copy}).output, "b\n97\n98\n");
  EXPECT_EQ(run({"check", copy}).exit_code, 0);

  const RunResult in_place = repair({"damaged.mf4", "--in-place"});
  EXPECT_EQ(in_place.exit_code, 1);
  EXPECT_EQ(
      in_place.messages,
      "mdf: damaged.mf4: 0 (0x0): the file is finished, but damaged, as 'mdf check' tells: -o "
      "makes a file of what there is\n");
  EXPECT_EQ(read("damaged.mf4"), damaged);
}

TEST_F(RepairCommand, SaysWhereNothingCanBeSaved) {
  folder_.write("stump.mf4", fileOf("abc", true).substr(0, 200));
  const RunResult result = repair({"stump.mf4", "-o", "new.mf4"});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.messages,
            "mdf: stump.mf4: nothing can be saved: no channel group can be reached\n");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "new.mf4"));
}

}  // namespace
