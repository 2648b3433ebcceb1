// Sample files that are cut in pieces and joined again are what they were.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tools/samples/sample.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;

/// Limits of pieces that have each record once.
const std::vector<Words> pieces = {{"--to", "0.05"},
                                   {"--from", "0.06", "--to", "0.15"},
                                   {"--from", "0.16", "--to", "0.25"},
                                   {"--from", "0.26", "--to", "0.6"},
                                   {"--from", "0.61"}};

/// Cuts a sample, in.mf4, and joins it; returns the exit code of a diff, or another one that is not
/// 0.
int cutAndJoin(const ScratchFolder& folder, const Words& options) {
  const std::string in = (folder / "in.mf4").string();
  const std::string out = (folder / "out.mf4").string();
  Words join = {"join", "-o", out, "--force"};
  for (const Words& limits : pieces) {
    const std::string piece = (folder / std::to_string(join.size())).string() + ".mf4";
    Words copy = {"copy", in, "-o", piece, "--force"};
    copy.insert(copy.end(), limits.begin(), limits.end());
    if (run(copy).exit_code != 0) {
      return -1;
    }
    join.push_back(piece);
  }
  join.insert(join.end(), options.begin(), options.end());
  const int joined = run(join).exit_code;
  return joined != 0 ? joined : run({"diff", in, out}).exit_code;
}

/// Files of arrays whose elements have records of their own, and of channels that refer to a
/// stream, have a group for each piece. Reductions are left out, and so are, in the pieces, records
/// without times. One sample has its records in the order of falling distances. Of some there are
/// no pieces.
const std::set<std::string> others = {"array-of-channel-groups",
                                      "array-of-channel-groups-with-axis",
                                      "array-of-data-groups",
                                      "block-sample-reduction",
                                      "channel-synchronization",
                                      "channel-virtual-master-distance",
                                      "layout-no-master",
                                      "remote-master-shared",
                                      "unfinished-last-data-open-half-a-record",
                                      "unfinished-last-data-open-less-than-a-record",
                                      "unfinished-unsorted"};

TEST(JoinSamples, PiecesAreTheFileAgain) {
  const ScratchFolder folder;
  std::set<std::string> different;
  bool is_zipped = false;
  for (const Sample& sample : allSamples()) {
    folder.write("in.mf4", sample.bytes);
    is_zipped = !is_zipped;
    if (cutAndJoin(folder, is_zipped ? Words{"--zip", "transposed"} : Words{}) != 0) {
      different.insert(sample.name);
    }
  }
  EXPECT_EQ(different, others);
}

}  // namespace
