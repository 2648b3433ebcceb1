#include "pictures/event_marks.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using mdf_reader::Event;
using mdf_tools::EventMark;
using mdf_tools::Flag;
using mdf_tools::marksOf;
using mdf_tools::placeFlags;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

Event eventAt(std::uint64_t offset, const char* name, unsigned range_type, std::int64_t at) {
  Event event;
  event.offset = offset;
  event.name = name;
  event.type = 6;
  event.sync_type = 1;
  event.range_type = range_type;
  event.base_value = at;
  event.factor = 0.5;
  return event;
}

/// "lap 1:2..4" for each mark.
std::string textOf(const std::vector<EventMark>& marks) {
  std::string text;
  for (const EventMark& mark : marks) {
    text += mark.name + ':' + std::to_string(mark.from).substr(0, 3) + ".." +
            std::to_string(mark.to).substr(0, 3) + ' ';
  }
  return text;
}

/// "0> 1< -": rows, and on which side of their poles names stand.
std::string textOf(const std::vector<std::optional<Flag>>& flags) {
  std::string text;
  for (const std::optional<Flag>& flag : flags) {
    text += flag ? std::to_string(flag->row) + (flag->is_left_of_pole ? "<" : ">") : "-";
  }
  return text;
}

TEST(EventMarks, PointsAndRanges) {
  Event end = eventAt(300, "lap", 2, 8);
  end.range_begin = 200;
  EXPECT_EQ(textOf(marksOf({eventAt(100, "start", 0, 1), eventAt(200, "lap", 1, 4), end}, "a: ")),
            "a: start:0.5..0.5 a: lap:2.0..4.0 ");
}

TEST(EventMarks, EndsWithoutTheOtherEnd) {
  const std::vector<EventMark> marks =
      marksOf({eventAt(100, "open", 1, 2), eventAt(200, "close", 2, 4)});
  EXPECT_EQ(textOf(marks), "open:1.0..inf close:2.0..2.0 ");
  EXPECT_TRUE(marks[0].isRange());
  EXPECT_FALSE(marks[1].isRange());
}

TEST(EventMarks, WithoutAPositionOrAName) {
  Event nowhere = eventAt(100, "nowhere", 0, 1);
  nowhere.factor = infinity;
  EXPECT_EQ(textOf(marksOf({nowhere, eventAt(200, "", 0, 2)})), "marker:1.0..1.0 ");
}

TEST(EventMarks, NoNameOrPoleRunsThroughANameOfAnother) {
  EXPECT_EQ(textOf(placeFlags({10, 50}, {40, 40}, 200, 5)), "0>0>");
  EXPECT_EQ(textOf(placeFlags({10, 20, 30}, {40, 40, 40}, 200, 5)), "2>1>0>");
  EXPECT_EQ(textOf(placeFlags({10, 20, 30}, {40, 40, 40}, 200, 2)), "-1>0>");
  // The first name ends where the third one begins, but the pole of the second one is high.
  EXPECT_EQ(textOf(placeFlags({10, 20, 50}, {40, 40, 40}, 200, 5)), "2>1>0>");
}

TEST(EventMarks, NamesNearTheEdgeStandOnTheLeft) {
  EXPECT_EQ(textOf(placeFlags({80, 90}, {40, 40}, 100, 5)), "0<1<");
  EXPECT_EQ(textOf(placeFlags({20}, {90}, 100, 5)), "0>");
}

}  // namespace
