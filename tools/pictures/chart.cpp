#include "chart.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "gnuplot_text.h"

namespace mdf_tools {

namespace {

std::string number(double value) { return numberText(value); }

/// The points of a curve, at the times that its clock shows.
std::vector<Point> pointsOf(const Curve& curve) {
  std::vector<Point> points = curve.points.points();
  for (Point& point : points) {
    point.x += curve.clock ? curve.clock->start : 0;
  }
  return points;
}

/// The distance of ticks, where there is room for a few only; gnuplot finds a good one for more.
std::string stepOf(double size, double room) {
  constexpr double few = 6;
  return room >= few || size == 0 ? "autofreq" : number(roundStep(size / std::max(room, 2.0)));
}

/// Writes the commands.
class Script {
 public:
  Script(const std::vector<Curve>& curves, const ChartForm& form,
         const std::vector<EventMark>& marks)
      : curves_(curves), form_(form), marks_(marks) {
    std::transform(curves.begin(), curves.end(), std::back_inserter(points_), pointsOf);
    panels_ = panelsOf(curves, points_, form.is_logarithmic);
    layout_ = layOut(panels_, curves, marks, form);
    has_clock_ = std::any_of(curves.begin(), curves.end(),
                             [](const Curve& curve) { return curve.clock.has_value(); });
  }

  ChartScript make();

 private:
  void data(std::size_t curve);
  void terminal();
  void style();
  void pictureStyle();
  void panel(std::size_t index);
  void place(const PanelBox& box);
  void xAxis(const Panel& panel, const PanelBox& box);
  void dates(const Panel& panel);
  void yAxis(const Panel& panel, const PanelBox& box);
  std::string yRange(const Panel& panel) const;
  void marks(const Panel& panel, const PanelBox& box);
  void pole(const EventMark& mark, const PanelBox& box, const std::optional<Flag>& flag);
  void curves(const Panel& panel, const PanelBox& box);
  std::string curveStyle(std::size_t curve, std::size_t place) const;
  ChartForm::Style styleOf(std::size_t curve) const;
  std::string fromBottom(double y) const {
    return number(part(layout_.height - y, layout_.height));
  }
  /// A part of the picture, in as many digits as a pixel takes.
  static double part(double of, double all) { return std::round(of / all * 1e5) / 1e5; }
  void line(const std::string& text) { script_ += text + '\n'; }

  const std::vector<Curve>& curves_;
  const ChartForm& form_;
  const std::vector<EventMark>& marks_;
  std::vector<std::vector<Point>> points_;  ///< of each curve
  std::vector<Panel> panels_;
  ChartLayout layout_;
  bool has_clock_ = false;
  std::string script_;
};

ChartScript Script::make() {
  for (std::size_t i = 0; i < curves_.size(); ++i) {
    data(i);
  }
  line("set encoding utf8");
  terminal();
  style();
  const auto room = static_cast<std::size_t>(layout_.width / textWidth("x", form_));
  line(form_.title.empty() ? "set multiplot" : "set multiplot title " + quoted(form_.title, room));
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    panel(i);
  }
  line("unset multiplot");
  std::vector<std::string> notes = notesOnFullPanels(panels_);
  notes.insert(notes.end(), layout_.notes.begin(), layout_.notes.end());
  return {std::move(script_), std::move(notes)};
}

/// The points of a curve as gnuplot's own data: a blank line is a gap.
void Script::data(std::size_t curve) {
  line("$c" + std::to_string(curve) + " << END");
  for (const Point& point : points_[curve]) {
    line(std::isnan(point.y) ? "" : number(point.x) + ' ' + number(point.y));
  }
  line("END");
}

void Script::terminal() {
  const std::string size = " size " + number(layout_.width) + ',' + number(layout_.height);
  switch (form_.kind) {
    case ChartForm::Kind::svg:
      line("set terminal svg noenhanced font 'sans-serif,13' background '#ffffff'" + size);
      break;
    case ChartForm::Kind::png:
      line("if (strstrt(GPVAL_TERMINALS, 'pngcairo') > 0) {");
      line("  set terminal pngcairo noenhanced font 'Sans,10'" + size);
      line("} else {");
      line("  set terminal png noenhanced" + size);
      line("}");
      break;
    case ChartForm::Kind::ascii:
      line("set terminal dumb noenhanced" + size);
      break;
  }
}

void Script::style() {
  if (!form_.isAscii()) {
    pictureStyle();
  }
  if (form_.is_logarithmic) {
    line("set logscale y 10");
  }
  line("set format '%.8g'");
  line("set lmargin at screen " + number(part(layout_.left, layout_.width)));
  line("set rmargin at screen " + number(part(layout_.right, layout_.width)));
}

void Script::pictureStyle() {
  const char* colours[most_in_a_panel] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e",
                                          "#9467bd", "#8c564b", "#17becf", "#e377c2",
                                          "#7f7f7f", "#bcbd22", "#1b2a6b", "#0b5d3b"};
  std::size_t index = 0;
  for (const char* colour : colours) {
    line("set linetype " + std::to_string(++index) + " linecolor rgb '" + colour +
         "' linewidth 1.4 pointtype 7 pointsize 0.4");
  }
  line("set linetype cycle " + std::to_string(index));
  line("set border 3 linecolor rgb '#808080'");
  line("set tics nomirror textcolor rgb '#303030'");
  line("set grid linecolor rgb '#d8d8d8' linewidth 0.6 linetype 1");
}

void Script::panel(std::size_t index) {
  const Panel& panel = panels_[index];
  const PanelBox& box = layout_.boxes[index];
  place(box);
  xAxis(panel, box);
  yAxis(panel, box);
  marks(panel, box);
  curves(panel, box);
}

/// The panel and its legend.
void Script::place(const PanelBox& box) {
  line("set tmargin at screen " + fromBottom(box.top));
  line("set bmargin at screen " + fromBottom(box.bottom));
  line(box.legend_rows == 0
           ? "unset key"
           : "set key at screen " + number(part(layout_.left, layout_.width)) + ',' +
                 fromBottom(box.legend) + " left top vertical Left reverse samplen 2 maxrows " +
                 std::to_string(box.legend_rows));
}

/// Panels over the same axis show the same part of it.
void Script::xAxis(const Panel& panel, const PanelBox& box) {
  line("set xrange " + panel.x.text());
  const bool has_dates = !panel.zone.empty() && !panel.x.isEmpty();
  std::string label = panel.x_label;
  if (has_dates) {
    dates(panel);
    label += ", " + timeTicks(panel.x.low(), panel.x.high(), 1).dates;
  } else {
    const double room = (layout_.right - layout_.left) / textWidth("a long tick", form_);
    line("set xtics " + stepOf(panel.x.visible().size(), room) + (has_clock_ ? " numeric" : ""));
    line("set format x '%.8g'" + std::string(has_clock_ ? " numeric" : ""));
  }
  line("set xlabel " + quoted(box.has_x_label ? label : ""));
}

void Script::dates(const Panel& panel) {
  const double width_of_a_tick = 16 * textWidth("x", form_);
  const double room = (layout_.right - layout_.left) / width_of_a_tick;
  const Range x = panel.x.visible();
  const TimeTicks ticks =
      timeTicks(x.low(), x.high(), static_cast<std::size_t>(std::max(room, 1.0)));
  line("set xtics " + number(ticks.first) + ',' + number(ticks.step) + " timedate");
  line("set format x '" + ticks.format + "' timedate");
}

void Script::yAxis(const Panel& panel, const PanelBox& box) {
  const bool has_states = std::all_of(panel.curves.begin(), panel.curves.end(),
                                      [&](std::size_t i) { return curves_[i].is_state; });
  constexpr double few = 10;
  line("set yrange " + yRange(panel));
  if (!form_.is_logarithmic) {
    const double room = (box.bottom - box.top) / (form_.isAscii() ? 1.5 : 20);
    line("set ytics " + (has_states && panel.y.size() <= few && room >= few
                             ? "1"
                             : stepOf(panel.y.size() * panel.shown.factor, room)));
  }
  const AxisUnit& unit = panel.shown;
  const std::string digits = !form_.is_logarithmic ? "%.8g" : unit.has_prefix ? "%.0s" : "%g";
  const std::string space = form_.is_logarithmic ? " %c" : " ";
  line("set format y " + quoted(digits + (unit.has_prefix ? space + unit.unit : "")));
  std::string label = panel.curves.size() == 1 ? curves_[panel.curves[0]].name : "";
  if (!unit.has_prefix && !unit.unit.empty()) {
    label += (label.empty() ? "[" : " [") + unit.unit + ']';
  }
  const double characters = (box.bottom - box.top) / textWidth("x", form_);
  const std::size_t room = form_.isAscii() ? longest_text : static_cast<std::size_t>(characters);
  line("set ylabel " + quoted(label, std::min(room, longest_text)));
}

/// Vertically, gnuplot finds good limits itself, except for a level line. Those of powers of ten
/// are such.
std::string Script::yRange(const Panel& panel) const {
  Range y;
  if (form_.is_logarithmic) {
    y.add(panel.y.isEmpty() ? 1 : panel.y.low());
    y.add(panel.y.isEmpty() ? 10 : panel.y.high());
    const double low = std::floor(std::log10(y.low() * panel.shown.factor) + 1e-9);
    const double high = std::ceil(std::log10(y.high() * panel.shown.factor) - 1e-9);
    return '[' + number(std::pow(10, low)) + ':' + number(std::pow(10, std::max(high, low + 1))) +
           ']';
  }
  y.add(panel.y.low() * panel.shown.factor);
  y.add(panel.y.high() * panel.shown.factor);
  return panel.y.isEmpty() ? "[0:1]" : panel.y.isPoint() ? y.text() : "[*:*]";
}

void Script::marks(const Panel& panel, const PanelBox& box) {
  if (marks_.empty()) {
    return;
  }
  line("unset arrow");
  line("unset label");
  line("unset object");
  const Range x = panel.x.visible();
  for (std::size_t i = 0; i < box.marks.size(); ++i) {
    EventMark mark = marks_[box.marks[i]];
    mark.from = std::max(mark.from, x.low());
    if (mark.isRange()) {
      mark.to = std::min(mark.to, x.high());
      line("set object rectangle from " + number(mark.from) + ",graph 0 to " + number(mark.to) +
           ",graph 1 behind" +
           (form_.isAscii()
                ? ""
                : " fillcolor rgb '#c2410c' fillstyle transparent solid 0.12 noborder"));
    }
    pole(mark, box, box.flags[i]);
  }
}

/// The line of an event, up to its name.
void Script::pole(const EventMark& mark, const PanelBox& box, const std::optional<Flag>& flag) {
  const double row = flag ? static_cast<double>(flag->row) : 0;
  const double flag_middle = box.top - (row + 0.5) * layout_.flag_height;
  const std::string top = flag ? "screen " + fromBottom(flag_middle) : "graph 1";
  line("set arrow from " + number(mark.from) + ",graph 0 to " + number(mark.from) + ',' + top +
       " nohead" + (form_.isAscii() ? "" : " linecolor rgb '#c2410c' dashtype 2"));
  if (flag) {
    const std::string offset = form_.isAscii() ? "2,0" : "0.7,0";
    line("set label " + quoted(mark.name) + " at " + number(mark.from) + ",screen " +
         fromBottom(flag_middle) + (flag->is_left_of_pole ? " right offset -" : " offset ") +
         offset + (form_.isAscii() ? "" : " textcolor rgb '#9a3412'"));
  }
}

void Script::curves(const Panel& panel, const PanelBox& box) {
  const double factor = panel.shown.factor;
  const std::string y = factor == 1 ? "2" : "($2*" + number(factor) + ')';
  std::string plots;
  for (std::size_t place = 0; place < panel.curves.size(); ++place) {
    const std::size_t curve = panel.curves[place];
    const bool has_points = !points_[curve].empty();
    plots += plots.empty() ? "plot " : ", ";
    plots += has_points ? "$c" + std::to_string(curve) + " using 1:" + y : "NaN";
    plots +=
        " title " + quoted(curves_[curve].name, box.name_bytes) + ' ' + curveStyle(curve, place);
  }
  line(plots);
}

ChartForm::Style Script::styleOf(std::size_t curve) const {
  if (form_.style != ChartForm::Style::automatic || !curves_[curve].is_state) {
    return form_.style;
  }
  return isScattered(curves_[curve], points_[curve]) ? ChartForm::Style::points
                                                     : ChartForm::Style::steps;
}

std::string Script::curveStyle(std::size_t curve, std::size_t place) const {
  constexpr std::size_t few = 100;
  const std::string type = form_.isAscii() ? "" : " linetype " + std::to_string(place + 1);
  switch (styleOf(curve)) {
    case ChartForm::Style::steps:
      return "with steps" + type;
    case ChartForm::Style::points:
      return "with points" + type;
    case ChartForm::Style::lines:
      return "with lines" + type;
    default:
      return (points_[curve].size() <= few && !form_.isAscii() ? "with linespoints"
                                                               : "with lines") +
             type;
  }
}

}  // namespace

ChartScript gnuplotScript(const std::vector<Curve>& curves, const ChartForm& form,
                          const std::vector<EventMark>& marks) {
  return Script(curves, form, marks).make();
}

}  // namespace mdf_tools
