#include "chart.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "value.h"

namespace mdf_tools {

namespace {

std::string labelOf(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " [" + unit + ']';
}

/// The number to draw for a value: of a text the one that the file has in its place.
double drawnNumber(Column& column, const Sample& sample) {
  const Value value = column.value(sample);
  auto number = numberOf(value);
  if (!number && std::holds_alternative<std::string>(value)) {
    number = numberOf(column.raw(sample));
  }
  return number.value_or(std::numeric_limits<double>::quiet_NaN());
}

/// Text in single quotes, where gnuplot knows no other character than the quote itself.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20 || code == 0x7F) {
      result += ' ';
    } else {
      result += character;
      result += character == '\'' ? "'" : "";
    }
  }
  return result + '\'';
}

/// Curves with one unit over the same axis.
struct Panel {
  std::string unit;
  std::string x_label;
  std::vector<std::size_t> curves;
};

std::vector<Panel> panelsOf(const std::vector<Curve>& curves) {
  std::vector<Panel> panels;
  for (std::size_t i = 0; i < curves.size(); ++i) {
    const Curve& curve = curves[i];
    auto panel = std::find_if(panels.begin(), panels.end(), [&](const Panel& each) {
      return each.unit == curve.unit && each.x_label == curve.x_label;
    });
    if (panel == panels.end()) {
      panel = panels.insert(panel, {curve.unit, curve.x_label, {}});
    }
    panel->curves.push_back(i);
  }
  return panels;
}

/// Writes the commands.
class Script {
 public:
  Script(const std::vector<Curve>& curves, const ChartForm& form)
      : curves_(curves), form_(form), panels_(panelsOf(curves)) {}

  std::string text();

 private:
  void terminal();
  void style();
  void data(std::size_t curve);
  void panel(std::size_t index);
  std::string curveStyle(std::size_t curve, std::size_t place) const;
  bool isAscii() const { return form_.kind == ChartForm::Kind::ascii; }
  void line(const std::string& text) { script_ += text + '\n'; }

  const std::vector<Curve>& curves_;
  const ChartForm& form_;
  std::vector<Panel> panels_;
  std::vector<std::size_t> point_counts_;
  std::string script_;
};

std::string number(double value) {
  std::string text;
  appendText(value, text);
  return text;
}

std::string Script::text() {
  for (std::size_t i = 0; i < curves_.size(); ++i) {
    data(i);
  }
  terminal();
  style();
  line("set multiplot layout " + std::to_string(panels_.size()) + ",1 title " +
       quoted(form_.title));
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    panel(i);
  }
  line("unset multiplot");
  return std::move(script_);
}

/// The points of a curve as gnuplot's own data: a blank line is a gap.
void Script::data(std::size_t curve) {
  line("$c" + std::to_string(curve) + " << END");
  const std::vector<Point> points = curves_[curve].points.points();
  for (const Point& point : points) {
    line(std::isnan(point.y) ? "" : number(point.x) + ' ' + number(point.y));
  }
  line("END");
  point_counts_.push_back(points.size());
}

void Script::terminal() {
  const std::size_t height =
      form_.height != 0 ? form_.height : std::max<std::size_t>(100 + 250 * panels_.size(), 500);
  const std::string size = " size " + std::to_string(form_.width) + ',' + std::to_string(height);
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
  if (isAscii()) {
    line("set key top right");
    return;
  }
  const char* colours[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e",
                           "#9467bd", "#8c564b", "#17becf", "#7f7f7f"};
  std::size_t index = 0;
  for (const char* colour : colours) {
    line("set linetype " + std::to_string(++index) + " linecolor rgb '" + colour +
         "' linewidth 1.4 pointtype 7 pointsize 0.4");
  }
  line("set linetype cycle " + std::to_string(index));
  line("set border 3 linecolor rgb '#808080'");
  line("set tics nomirror textcolor rgb '#303030'");
  line("set grid linecolor rgb '#d8d8d8' linewidth 0.6 linetype 1");
  line("set key outside top left horizontal Left reverse samplen 2");
  line("set lmargin 12");
  line("set rmargin 4");
}

std::string Script::curveStyle(std::size_t curve, std::size_t place) const {
  constexpr std::size_t few = 100;
  if (isAscii()) {
    return "with lines";
  }
  return std::string(point_counts_[curve] <= few ? "with linespoints" : "with lines") +
         " linetype " + std::to_string(place + 1);
}

void Script::panel(std::size_t index) {
  const Panel& panel = panels_[index];
  const bool has_label_below =
      index + 1 < panels_.size() && panels_[index + 1].x_label == panel.x_label;
  line("set xlabel " + quoted(has_label_below ? "" : panel.x_label));
  line("set ylabel " + quoted(panel.curves.size() == 1
                                  ? labelOf(curves_[panel.curves[0]].name, panel.unit)
                                  : (panel.unit.empty() ? "" : '[' + panel.unit + ']')));
  std::string plots;
  for (std::size_t place = 0; place < panel.curves.size(); ++place) {
    const std::size_t curve = panel.curves[place];
    const bool has_points = point_counts_[curve] > 0;
    plots += plots.empty() ? "plot " : ", ";
    plots += has_points ? "$c" + std::to_string(curve) + " using 1:2" : "NaN";
    plots += " title " + quoted(curves_[curve].name) + ' ' + curveStyle(curve, place);
  }
  line(plots);
}

}  // namespace

void CurveCollector::begin(Table& table) {
  first_ = curves_.size();
  const std::vector<Column>& columns = table.columns();
  const std::string x_label =
      table.hasMaster() ? labelOf(columns[0].name(), columns[0].unit()) : "sample";
  for (std::size_t i = table.hasMaster() ? 1 : 0; i < columns.size(); ++i) {
    if (curves_.size() >= most_curves) {
      left_out_ += columns.size() - i;
      return;
    }
    curves_.push_back(
        {prefix_ + columns[i].name(), columns[i].unit(), x_label, Decimator(columns_)});
  }
}

bool CurveCollector::sample(Table& table, const Sample& sample) {
  std::vector<Column>& columns = table.columns();
  const std::size_t first_column = table.hasMaster() ? 1 : 0;
  const double x =
      table.hasMaster() ? drawnNumber(columns[0], sample) : static_cast<double>(sample.number);
  for (std::size_t i = first_; i < curves_.size(); ++i) {
    curves_[i].points.add(x, drawnNumber(columns[first_column + i - first_], sample));
  }
  return first_ < curves_.size();
}

std::string gnuplotScript(const std::vector<Curve>& curves, const ChartForm& form) {
  return Script(curves, form).text();
}

}  // namespace mdf_tools
