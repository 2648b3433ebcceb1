#include "recording/line_source.h"

#include <gtest/gtest.h>

#include <sstream>

#include "recording/quantity.h"
#include "tools/support/float_bits.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

/// The time if it has its own, and the values; "-" for one that is missing.
std::string textOf(LineSource& source) {
  std::ostringstream text;
  const Sample& sample = source.sample();
  if (source.hasTimes()) {
    text << sample.nanoseconds << " ns:";
  }
  for (std::size_t i = 0; i < sample.values.size(); ++i) {
    const bool is_text = source.groups().front().signals[i].bytes == 0;
    text << ' ' << source.groups().front().signals[i].name << ' ';
    if (sample.is_missing[i]) {
      text << '-';
    } else if (is_text) {
      text << '"' << sample.texts[i] << '"';
    } else {
      text << doubleOf(sample.values[i]);
    }
  }
  return text.str();
}

/// What becomes of each line, a line each.
std::string taken(LineForm form, const std::string& time, const std::vector<std::string>& lines) {
  LineSource source(form, time);
  std::string text;
  for (const std::string& line : lines) {
    try {
      text += source.take(line) ? textOf(source) : "";
    } catch (const UnfitLine& bad) {
      text += std::string("bad: ") + bad.what();
    } catch (const BadOption& bad) {
      text += std::string("refused: ") + bad.what();
    }
    text += '\n';
  }
  return text;
}

TEST(LineSource, TakesCsv) {
  EXPECT_EQ(taken(LineForm::csv, "",
                  {"a,b [V],\"c, d\"", "1, -2.5e1 ,\"x \"\"y\"\"\"", "", ",,", "2,x,z", "3,4",
                   "3,4,\"5", "nan,4,5"}),
            "\n"
            " a 1 b -25 c, d \"x \"y\"\"\n"
            "\n"
            " a - b - c, d -\n"
            "bad: expected a number for \"b\", found \"x\"\n"
            "bad: expected 3 fields, found 2\n"
            "bad: a quotation mark has no second one\n"
            " a nan b 4 c, d \"5\"\n");
  EXPECT_EQ(taken(LineForm::csv, "t", {"t [ms];a", "1.5;1", "1.5;2", "1;3", ";4", "2e20;5"}),
            "\n"
            "1500000 ns: a 1\n"
            "1500000 ns: a 2\n"
            "bad: the time 1 is before that of the line before\n"
            "bad: expected a time in \"t\", found \"\"\n"
            "bad: expected a time in \"t\", found \"2e20\"\n");
}

TEST(LineSource, TakesJson) {
  EXPECT_EQ(taken(LineForm::json, "t",
                  {R"({"a":{}})", R"({"t":1700000000.5,"a [V]":1,"b":true,"c":"x"})",
                   R"({"t":1700000002,"c":null})", R"({"t":1700000003,"c":7,"d":1})", "[1]", "{",
                   R"({"t":1700000003,"c":7,"b":null})", "\xff"}),
            "bad: expected a number or a text for \"a\", found {}\n"
            "500000000 ns: a 1 b 1 c \"x\"\n"
            "2000000000 ns: a - b - c -\n"
            "bad: \"d\" is not in the first line\n"
            "bad: expected an object in JSON, found something else\n"
            "bad: expected an object in JSON, found something else\n"
            "3000000000 ns: a - b - c \"7\"\n"
            "bad: expected UTF-8, found other bytes\n");
}

TEST(LineSource, RefusesNamesThatAreNotAsWasSaid) {
  EXPECT_EQ(taken(LineForm::csv, "t", {"time,a"}),
            "refused: standard input has a channel \"time\", as the recording has; --time time "
            "takes the times from it\n");
  EXPECT_EQ(taken(LineForm::csv, "t", {"a,b"}),
            "refused: standard input has no channel \"t\" to take times from\n");
  EXPECT_EQ(taken(LineForm::json, "t", {R"({"t [km]":1})"}),
            "refused: the times of \"t\" are in km; expected s, ms, us or ns\n");
}

}  // namespace
