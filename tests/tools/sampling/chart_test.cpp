#include "pictures/chart.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exported.h"
#include "pictures/drawing_program.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_tools::ChartForm;
using mdf_tools::ChartScript;
using mdf_tools::Curve;
using mdf_tools::CurveCollector;
using mdf_tools::Decimator;
using mdf_tools::EventMark;
using mdf_tools::gnuplotScript;

namespace {

/// The curves of all channels of a file.
std::vector<Curve> curvesOf(const FileBuilder& contents, std::size_t* left_out = nullptr) {
  const TempFile path(contents.bytes());
  mdf_reader::InputFile file(path.path());
  std::vector<Curve> curves;
  CurveCollector collector(curves, 100);
  mdf_reader::Query query;
  query.numbers = true;
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
    ADD_FAILURE() << finding.sentence;
  };
  const mdf_reader::NoteSink note = [](const std::string& /*text*/) {};
  mdf_reader::Tables tables(file, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    collector.begin(table->head());
    while (const mdf_reader::Batch* const batch = table->next()) {
      collector.take(*batch);
    }
  }
  if (left_out != nullptr) {
    *left_out = collector.leftOut();
  }
  return curves;
}

Curve curve(const std::string& name, const std::string& unit, const std::vector<double>& values) {
  Curve curve{name, unit, "time [s]", Decimator(100)};
  double x = 0;
  for (const double value : values) {
    curve.points.add(x, value);
    x += 0.5;
  }
  return curve;
}

/// The script after the lines that set the style.
std::string plotsOf(const std::vector<Curve>& curves) {
  const std::string script = gnuplotScript(curves, {ChartForm::Kind::svg, "title"}).text;
  return script.substr(script.find("set multiplot"));
}

TEST(CurveCollector, CurvesOverTheMaster) {
  FileBuilder file;
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "km/h";
  file.addSortedGroup({2, 9}, {timeChannel(), speed},
                      file.addData(Bytes().f64(1).u8(50).f64(2).u8(60)));
  const std::vector<Curve> curves = curvesOf(file);
  ASSERT_EQ(curves.size(), 1U);
  EXPECT_EQ(curves[0].name, "speed");
  EXPECT_EQ(curves[0].unit, "km/h");
  EXPECT_EQ(curves[0].x_label, "time [s]");
  ASSERT_EQ(curves[0].points.points().size(), 2U);
  EXPECT_EQ(curves[0].points.points()[1].x, 2);
  EXPECT_EQ(curves[0].points.points()[1].y, 60);
}

TEST(CurveCollector, TextsAreDrawnAsTheirNumbersOverTheSamples) {
  FileBuilder file;
  ChannelSpec state = firstByte("state");
  state.conversion = file.addConversion({7, {file.text("on"), file.text("off")}, {1}});
  file.addSortedGroup({3, 1}, {state}, file.addData(u8(0, 1, 5)));
  const std::vector<Curve> curves = curvesOf(file);
  ASSERT_EQ(curves.size(), 1U);
  EXPECT_EQ(curves[0].x_label, "sample");
  ASSERT_EQ(curves[0].points.points().size(), 3U);
  EXPECT_EQ(curves[0].points.points()[2].x, 2);
  EXPECT_EQ(curves[0].points.points()[2].y, 5);
}

TEST(CurveCollector, MoreCurvesThanAPictureHasRoomFor) {
  FileBuilder file;
  std::vector<ChannelSpec> channels;
  for (int i = 0; i < 70; ++i) {
    channels.push_back(firstByte("c" + std::to_string(i)));
  }
  file.addSortedGroup({1, 1}, channels, file.addData("A"));
  std::size_t left_out = 0;
  EXPECT_EQ(curvesOf(file, &left_out).size(), 64U);
  EXPECT_EQ(left_out, 6U);
}

TEST(Chart, PanelForEachUnitWithItsLegendBelow) {
  const std::vector<Curve> curves = {curve("a", "rpm", {1, 2}), curve("b", "mA", {3000, 3000}),
                                     curve("c", "rpm", {4, 5})};
  // 682 pixels: a title of 36; panels of 250, each with 24 for ticks, a legend of 4 and 17, and 14
  // below it; 20 for the label of the axis, and 8 at the bottom.
  EXPECT_EQ(
      plotsOf(curves),
      "set multiplot title \"title\"\n"
      "set tmargin at screen 0.94721\n"
      "set bmargin at screen 0.58065\n"
      "set key at screen 0.08333,0.53959 left top vertical Left reverse samplen 2 maxrows 1\n"
      "set xrange [0:0.5]\n"
      "set xtics autofreq\n"
      "set format x '%.8g'\n"
      "set xlabel \"\"\n"
      "set yrange [*:*]\n"
      "set ytics autofreq\n"
      "set format y \"%.8g\"\n"
      "set ylabel \"[rpm]\"\n"
      "plot $c0 using 1:2 title \"a\" with linespoints linetype 1, $c2 using 1:2 title \"c\" with "
      "linespoints linetype 2\n"
      "set tmargin at screen 0.49413\n"
      "set bmargin at screen 0.12757\n"
      "set key at screen 0.08333,0.05718 left top vertical Left reverse samplen 2 maxrows 1\n"
      "set xrange [0:0.5]\n"
      "set xtics autofreq\n"
      "set format x '%.8g'\n"
      "set xlabel \"time [s]\"\n"
      "set yrange [2:4]\n"
      "set ytics autofreq\n"
      "set format y \"%.8g A\"\n"
      "set ylabel \"b\"\n"
      "plot $c1 using 1:($2*0.001) title \"b\" with linespoints linetype 1\n"
      "unset multiplot\n");
}

/// The words after each place where a text stands in a script, up to the line's end.
std::vector<std::string> linesWith(const std::string& script, const std::string& beginning) {
  std::vector<std::string> lines;
  for (std::size_t at = script.find(beginning); at != std::string::npos;
       at = script.find(beginning, at + 1)) {
    const std::size_t begin = at + beginning.size();
    lines.push_back(script.substr(begin, script.find('\n', begin) - begin));
  }
  return lines;
}

using Words = std::vector<std::string>;

TEST(Chart, FurtherPanelsForMoreThanTwelveCurves) {
  std::vector<Curve> curves(13, curve("a name", "V", {1, 2}));
  curves.push_back(curve("b", "rpm", {1}));
  const ChartScript script = gnuplotScript(curves, {ChartForm::Kind::svg, "title"});
  EXPECT_EQ(script.notes, Words{"a panel has room for 12 channels; the 13 in V take 2 panels"});
  const Words plots = linesWith(script.text, "\nplot ");
  ASSERT_EQ(plots.size(), 3U);
  EXPECT_NE(plots[0].find("$c11 using"), std::string::npos);
  EXPECT_EQ(plots[1], "$c12 using 1:2 title \"a name\" with linespoints linetype 1");
  EXPECT_EQ(plots[2], "$c13 using 1:2 title \"b\" with linespoints linetype 1");
}

TEST(Chart, ThePictureGrowsWithItsLegends) {
  const auto sizeWith = [](std::size_t count) {
    const std::vector<Curve> curves(count, curve(std::string(50, 'n'), "V", {1, 2}));
    return linesWith(gnuplotScript(curves, {ChartForm::Kind::svg, ""}).text, " size ")[0];
  };
  EXPECT_EQ(sizeWith(1), "1200,481");
  EXPECT_EQ(sizeWith(2), "1200,481");
  EXPECT_EQ(sizeWith(12), "1200,566");  // five rows of 17 pixels more
}

TEST(Chart, WithoutRoomForALegend) {
  ChartForm form{ChartForm::Kind::svg, "", 300, 120};
  const std::vector<Curve> curves = {curve("a", "V", {1, 2})};
  const ChartScript script = gnuplotScript(curves, form);
  EXPECT_EQ(script.notes, Words{"the legend is left out; a larger --size has room for it"});
  EXPECT_NE(script.text.find("\nunset key\n"), std::string::npos);
  form.height = 100;
  EXPECT_THROW(gnuplotScript(curves, form), mdf_tools::DrawingFailed);
}

TEST(Chart, FewTicksInASmallPicture) {
  const ChartForm form{ChartForm::Kind::svg, "", 300, 140};
  const std::string script = gnuplotScript({curve("a", "V", {0, 7})}, form).text;
  EXPECT_EQ(linesWith(script, "set xtics "), Words{"0.5"});
  EXPECT_EQ(linesWith(script, "set ytics "), Words{"5"});
}

TEST(Chart, LogarithmicAxisOfWholeDecades) {
  ChartForm form{ChartForm::Kind::svg, ""};
  form.is_logarithmic = true;
  const std::string script = gnuplotScript({curve("a", "KiB", {2, 20})}, form).text;
  EXPECT_EQ(linesWith(script, "set yrange "), Words{"[1000:1e+05]"});
  EXPECT_EQ(linesWith(script, "set format y "), Words{"\"%.0s %cB\""});
  EXPECT_NE(script.find("set logscale y 10\n"), std::string::npos);
}

TEST(Chart, StatesAreStepsAndIdentifiersPoints) {
  Curve gear = curve("gear", "", {1, 2, 2});
  gear.is_state = true;
  std::vector<double> values(300, 0);
  for (std::size_t i = 1; i < values.size(); i += 2) {
    values[i] = 1;
  }
  Curve id = curve("id", "", values);
  id.is_state = true;
  ChartForm form{ChartForm::Kind::svg, ""};
  const auto plots = [&] { return linesWith(gnuplotScript({gear, id}, form).text, "\nplot "); };
  EXPECT_EQ(plots(), (Words{"$c0 using 1:2 title \"gear\" with steps linetype 1",
                            "$c1 using 1:2 title \"id\" with points linetype 1"}));
  form.style = ChartForm::Style::lines;
  EXPECT_EQ(plots()[0], "$c0 using 1:2 title \"gear\" with lines linetype 1");
}

TEST(Chart, EventsAreLinesAndRangesAreShaded) {
  Curve speed = curve("a", "rpm", {1, 2, 3});
  speed.axis = 1;
  const std::vector<EventMark> marks = {
      {"go`x`", 1, 0.25, 0.25}, {"lap", 1, 0.5, 7}, {"later", 1, 2, 2}, {"index", 4, 0.5, 0.5}};
  const ChartScript script = gnuplotScript({speed}, {ChartForm::Kind::svg, ""}, marks);
  EXPECT_EQ(linesWith(script.text, "set arrow from "),
            (Words{"0.25,graph 0 to 0.25,screen 0.95482 nohead linecolor rgb '#c2410c' dashtype 2",
                   "0.5,graph 0 to 0.5,screen 0.95482 nohead linecolor rgb '#c2410c' dashtype 2"}));
  EXPECT_EQ(linesWith(script.text, "set label "),
            (Words{"\"go\\140x\\140\" at 0.25,screen 0.95482 offset 0.7,0 textcolor rgb '#9a3412'",
                   "\"lap\" at 0.5,screen 0.95482 offset 0.7,0 textcolor rgb '#9a3412'"}));
  EXPECT_EQ(linesWith(script.text, "set object rectangle from "),
            Words{"0.5,graph 0 to 1,graph 1 behind fillcolor rgb '#c2410c' fillstyle transparent "
                  "solid 0.12 noborder"});
}

TEST(Chart, AxisOfDates) {
  Curve speed = curve("a", "rpm", {1, 2, 3});
  speed.clock = mdf_tools::WallClock{1715947200, "UTC"};
  speed.x_label = "time [UTC]";
  const std::string script = gnuplotScript({speed}, {ChartForm::Kind::svg, ""}).text;
  EXPECT_EQ(linesWith(script, "set xrange "), Words{"[1715947200:1715947201]"});
  EXPECT_EQ(linesWith(script, "set xtics "), Words{"1715947200,0.2 timedate"});
  EXPECT_EQ(linesWith(script, "set format x "), Words{"'%H:%M:%.3S' timedate"});
  EXPECT_EQ(linesWith(script, "set xlabel "), Words{"\"time [UTC], 2024-05-17\""});
}

TEST(Chart, GroupsTellChannelsOfOneNameApart) {
  const auto of = [](const char* group, const char* number, const char* name) {
    Curve made = curve(name, "", {});
    made.channel = name;
    made.group = group;
    made.group_number = number;
    return made;
  };
  std::vector<Curve> curves = {of("engine", "0", "n"), of("", "1", "n"), of("twin", "2", "n"),
                               of("twin", "3", "n"), of("engine", "0", "t")};
  tellApart(curves);
  Words names;
  for (const Curve& each : curves) {
    names.push_back(each.name);
  }
  EXPECT_EQ(names, (Words{"engine.n", "1.n", "2.n", "3.n", "t"}));
}

TEST(Chart, PointsAndGaps) {
  const std::string script =
      gnuplotScript({curve("a", "", {1, std::stod("nan"), 2.5})}, {ChartForm::Kind::ascii, ""})
          .text;
  EXPECT_EQ(script.substr(0, script.find("set ")), "$c0 << END\n0 1\n\n1 2.5\nEND\n");
}

TEST(Chart, CurveWithoutPoints) {
  const std::string plots = plotsOf({curve("a", "", {})});
  EXPECT_NE(plots.find("plot NaN title \"a\""), std::string::npos);
  EXPECT_NE(plots.find("set xrange [0:1]"), std::string::npos);
}

TEST(Chart, TextsOfTheFileAreNoCommands) {
  const std::string hostile = "a'; f('x') \"`x`\" @m $x \\ \xC2\xB0\n!x\n";
  const std::string plots = plotsOf({curve(hostile, "`u`", {1, 2})});
  const std::string quoted =
      "a\\047; f(\\047x\\047) \\042\\140x\\140\\042 \\100m \\044x \\134 \\302\\260 \\041x ";
  EXPECT_NE(plots.find("title \"" + quoted + "\" with"), std::string::npos) << plots;
  EXPECT_NE(plots.find("set ylabel \"" + quoted + " [\\140u\\140]\"\n"), std::string::npos);
  EXPECT_EQ(plots.find("\n!"), std::string::npos);
}

TEST(Chart, LongNamesAreCut) {
  const std::string plots = plotsOf({curve(std::string(59, 'n') + "\xC2\xB0"
                                                                  "n",
                                           "", {1})});
  EXPECT_NE(plots.find("title \"" + std::string(59, 'n') + "...\""), std::string::npos) << plots;
}

}  // namespace
