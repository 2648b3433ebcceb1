#include <gtest/gtest.h>

#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

TEST(ViewCommand, FileThatIsNoneOfMdfIsRefusedBeforeAnythingIsServed) {
  const TempFile file("no measurement at all, but sixty-four bytes and more of some text...");
  const RunResult result = run({"view", "--no-browser", file.path()});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_PRED2(contains, result.messages, file.path());
}

TEST(ViewCommand, PortOutOfRangeIsRefused) {
  EXPECT_EQ(run({"view", "--port", "65536", "trip.mf4"}).exit_code, 2);
  EXPECT_EQ(run({"view", "--memory", "0", "trip.mf4"}).exit_code, 2);
}
