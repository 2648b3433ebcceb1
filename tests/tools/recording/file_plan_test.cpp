#include "recording/file_plan.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/bytes.h"

using namespace mdf_tests;
using mdf_tools::FilePlan;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::TXBLOCK;

namespace {

std::string written(const FilePlan& plan) {
  std::ostringstream os;
  plan.write(os);
  return os.str();
}

TEST(FilePlan, EmptyPlanWritesNothing) {
  const FilePlan plan;
  EXPECT_EQ(plan.end(), 0U);
  EXPECT_EQ(written(plan), "");
}

TEST(FilePlan, EveryBlockStandsOnAMultipleOf8) {
  FilePlan plan;
  std::vector<TXBLOCK> texts;
  const std::string letters = "abcdefghij";
  for (std::size_t length = 0; length <= letters.size(); ++length) {
    texts.emplace_back(letters.data(), length);
  }
  std::vector<mdf_v4_10::LINK> positions;
  for (const TXBLOCK& text : texts) {
    positions.push_back(plan.add(text));
  }
  EXPECT_EQ(positions,
            (std::vector<mdf_v4_10::LINK>{0, 32, 64, 96, 128, 160, 192, 224, 256, 296, 336}));
  EXPECT_EQ(plan.end(), 371U) << "no padding after the last block";

  const std::string bytes = written(plan);
  ASSERT_EQ(bytes.size(), 371U);
  for (std::size_t i = 0; i < positions.size(); ++i) {
    const auto position = static_cast<std::size_t>(positions[i]);
    EXPECT_EQ(bytes.substr(position, 4), "##TX") << i;
    EXPECT_EQ(bytes.substr(position + 24, i), letters.substr(0, i));
  }
}

TEST(FilePlan, WritesZerosBetweenBlocksAndTheLinksSetMeanwhile) {
  FilePlan plan;
  const TXBLOCK text("abc", 3);
  DGBLOCK group(0, 0, 0, DGBLOCK::DG_WITHOUT);
  const DTBLOCK data;
  plan.add(text);
  plan.add(group);
  group.setDatablock(plan.add(data));
  EXPECT_BYTES(written(plan), header("TX", 28, 0) + "abc" + zeros(1) + zeros(4) +
                                  header("DG", 64, 4) + links(0, 0, 96, 0) + zeros(8) +
                                  header("DT", 24, 0));
}

TEST(FilePlan, BlockWithoutASizeOfItsOwnIsGivenOne) {
  FilePlan plan;
  const mdf_v4_10::IDBLOCK id("prog");
  const TXBLOCK text;
  EXPECT_EQ(plan.add(id, 64), 0);
  EXPECT_EQ(plan.add(text), 64);
  EXPECT_EQ(written(plan).size(), 89U);
}

}  // namespace
