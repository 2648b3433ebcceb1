#include "reader/model/history.h"

#include <gtest/gtest.h>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Finding;
using mdf_reader::InputFile;
using mdf_reader::readHistory;
using mdf_reader::Texts;

namespace {

TEST(History, AllOfIt) {
  FileBuilder builder;
  const auto comment = builder.metadata("<FHcomment><TX>cut in two</TX></FHcomment>");
  const auto second = builder.add("FH", {0, 0}, Bytes().u64(7).zeros(8));
  const auto first =
      builder.add("FH", {second, comment},
                  Bytes().u64(1700000000000000000U).i16(-60).i16(30).u8s({2, 0, 0, 0}));
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  Texts texts;
  const auto entries = readHistory(file, first, texts, [](const Finding&) { FAIL(); });
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].offset, first);
  EXPECT_EQ(entries[0].time, 1700000000000000000U);
  EXPECT_EQ(entries[0].zone_minutes, -60);
  EXPECT_EQ(entries[0].daylight_minutes, 30);
  EXPECT_EQ(entries[0].time_flags, 2U);
  EXPECT_EQ(entries[0].comment, "cut in two");
  EXPECT_EQ(entries[1].offset, second);
  EXPECT_EQ(entries[1].time, 7U);
  EXPECT_EQ(entries[1].comment, "");
}

}  // namespace
