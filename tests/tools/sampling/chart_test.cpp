#include "pictures/chart.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "exported.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_tools::ChartForm;
using mdf_tools::Curve;
using mdf_tools::CurveCollector;
using mdf_tools::Decimator;
using mdf_tools::gnuplotScript;

namespace {

/// The curves of all channels of a file.
std::vector<Curve> curvesOf(const FileBuilder& contents, std::size_t* left_out = nullptr) {
  const TempFile path(contents.bytes());
  mdf_reader::InputFile file(path.path());
  std::vector<Curve> curves;
  CurveCollector collector(curves, 100, "");
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

Curve curve(const std::string& name, const std::string& unit, std::vector<double> values) {
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
  const std::string script = gnuplotScript(curves, {ChartForm::Kind::svg, "title"});
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

TEST(Chart, PanelForEachUnit) {
  const std::vector<Curve> curves = {curve("a", "V", {1, 2}), curve("b", "A", {3, 3}),
                                     curve("c", "V", {4, 5})};
  EXPECT_EQ(
      plotsOf(curves),
      "set multiplot layout 2,1 title \"title\"\n"
      "set xrange [0:0.5]\n"
      "set yrange [*:*]\n"
      "set xlabel \"\"\n"
      "set ylabel \"[V]\"\n"
      "plot $c0 using 1:2 title \"a\" with linespoints linetype 1, $c2 using 1:2 title \"c\" with "
      "linespoints linetype 2\n"
      "set xrange [0:0.5]\n"
      "set yrange [2:4]\n"
      "set xlabel \"time [s]\"\n"
      "set ylabel \"b [A]\"\n"
      "plot $c1 using 1:2 title \"b\" with linespoints linetype 1\n"
      "unset multiplot\n");
}

TEST(Chart, PointsAndGaps) {
  const std::string script =
      gnuplotScript({curve("a", "", {1, std::stod("nan"), 2.5})}, {ChartForm::Kind::ascii, ""});
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
