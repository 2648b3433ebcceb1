#include "reader/model/events.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Event;
using mdf_reader::Finding;
using mdf_reader::InputFile;
using mdf_reader::readEvents;
using mdf_reader::Texts;

namespace {

TEST(Events, AllOfIt) {
  FileBuilder builder;
  const auto name = builder.text("start");
  const auto comment = builder.metadata("<EVcomment><TX>by hand</TX></EVcomment>");
  const auto event =
      builder.add("EV", {0, 0, 0, name, comment},
                  Bytes().u8s({6, 1, 2, 4, 1, 0, 0, 0}).u32(3).u16(2).u16(0).i64(-250).f64(0.01));
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  Texts texts;
  const auto events = readEvents(file, event, texts, [](const Finding&) { FAIL(); });
  ASSERT_EQ(events.size(), 1U);
  const Event& read = events[0];
  EXPECT_EQ(read.offset, event);
  EXPECT_EQ(read.name, "start");
  EXPECT_EQ(read.comment, "by hand");
  EXPECT_EQ(read.type, 6U);
  EXPECT_EQ(read.sync_type, 1U);
  EXPECT_EQ(read.range_type, 2U);
  EXPECT_EQ(read.cause, 4U);
  EXPECT_EQ(read.flags, 1U);
  EXPECT_EQ(read.base_value, -250);
  EXPECT_EQ(read.position(), -2.5);
  EXPECT_EQ(read.scope_count, 3U);
  EXPECT_EQ(read.attachment_count, 2U);
}

}  // namespace
