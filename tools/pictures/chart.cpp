#include "chart.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr double no_number = std::numeric_limits<double>::quiet_NaN();

std::string labelOf(const std::string& name, const std::string& unit) {
  return unit.empty() ? name : name + " [" + unit + ']';
}

/// A text, cut to the room that there is.
std::string shortened(const std::string& text) {
  constexpr std::size_t longest = 60;
  if (text.size() <= longest) {
    return text;
  }
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
    --end;  // not inside a character
  }
  return text.substr(0, end) + "...";
}

/// Text in quotes, cut if long, with codes for all characters that have a meaning there.
std::string quoted(const std::string& text) {
  constexpr std::string_view plain = " ,.:;/()[]+-%_=";
  std::string result = "\"";
  for (const char character : shortened(text)) {
    const auto code = static_cast<unsigned char>(character);
    const bool is_plain =
        code < 0x80 && (std::isalnum(code) != 0 || plain.find(character) != std::string_view::npos);
    if (is_plain) {
      result += character;
    } else if (code < 0x20 || code == 0x7F) {
      result += ' ';
    } else {
      const auto digit = [](unsigned value) { return static_cast<char>('0' + (value & 7U)); };
      result += {'\\', digit(code >> 6U), digit(code >> 3U), digit(code)};
    }
  }
  return result + '"';
}

/// Curves with one unit over the same axis.
struct Panel {
  std::string unit;
  std::string x_label;
  std::vector<std::size_t> curves;
};

/// The limits of an axis.
class Range {
 public:
  void add(double number) {
    if (!std::isnan(number)) {
      low_ = std::min(low_, number);
      high_ = std::max(high_, number);
    }
  }
  bool isEmpty() const { return low_ > high_; }
  /// Whether the range is a single point, which leaves gnuplot nothing to draw.
  bool isPoint() const { return low_ == high_; }

  /// "[0:1]", with some room around a point.
  std::string text() const {
    const double room = isPoint() ? std::max(std::abs(low_) * 0.01, 1.0) : 0;
    return '[' + number(low_ - room) + ':' + number(high_ + room) + ']';
  }

 private:
  static std::string number(double value) {
    std::string text;
    printNumber(value, text);
    return text;
  }

  double low_ = std::numeric_limits<double>::infinity();
  double high_ = -std::numeric_limits<double>::infinity();
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
  void ranges(const Panel& panel);
  std::string curveStyle(std::size_t curve, std::size_t place) const;
  bool isAscii() const { return form_.kind == ChartForm::Kind::ascii; }
  void line(const std::string& text) { script_ += text + '\n'; }

  const std::vector<Curve>& curves_;
  const ChartForm& form_;
  std::vector<Panel> panels_;
  std::vector<std::vector<Point>> points_;  ///< of each curve
  std::string script_;
};

std::string number(double value) {
  std::string text;
  printNumber(value, text);
  return text;
}

std::string Script::text() {
  for (std::size_t i = 0; i < curves_.size(); ++i) {
    data(i);
  }
  line("set encoding utf8");
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
  points_.push_back(curves_[curve].points.points());
  for (const Point& point : points_.back()) {
    line(std::isnan(point.y) ? "" : number(point.x) + ' ' + number(point.y));
  }
  line("END");
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
  line("set format '%.8g'");
  line("set lmargin 14");
  line("set rmargin 4");
}

std::string Script::curveStyle(std::size_t curve, std::size_t place) const {
  constexpr std::size_t few = 100;
  if (isAscii()) {
    return "with lines";
  }
  return std::string(points_[curve].size() <= few ? "with linespoints" : "with lines") +
         " linetype " + std::to_string(place + 1);
}

/// Panels over the same axis show the same part of it. Vertically, gnuplot finds good limits
/// itself, except for a level line.
void Script::ranges(const Panel& panel) {
  Range x;
  Range y;
  for (std::size_t i = 0; i < curves_.size(); ++i) {
    const bool is_inside =
        std::find(panel.curves.begin(), panel.curves.end(), i) != panel.curves.end();
    for (const Point& point : points_[i]) {
      x.add(curves_[i].x_label == panel.x_label ? point.x : no_number);
      y.add(is_inside ? point.y : no_number);
    }
  }
  line("set xrange " + (x.isEmpty() ? "[0:1]" : x.text()));
  line("set yrange " + (y.isEmpty() ? "[0:1]" : y.isPoint() ? y.text() : "[*:*]"));
}

void Script::panel(std::size_t index) {
  const Panel& panel = panels_[index];
  ranges(panel);
  const bool has_label_below =
      index + 1 < panels_.size() && panels_[index + 1].x_label == panel.x_label;
  line("set xlabel " + quoted(has_label_below ? "" : panel.x_label));
  line("set ylabel " + quoted(panel.curves.size() == 1
                                  ? labelOf(curves_[panel.curves[0]].name, panel.unit)
                                  : (panel.unit.empty() ? "" : '[' + panel.unit + ']')));
  std::string plots;
  for (std::size_t place = 0; place < panel.curves.size(); ++place) {
    const std::size_t curve = panel.curves[place];
    const bool has_points = !points_[curve].empty();
    plots += plots.empty() ? "plot " : ", ";
    plots += has_points ? "$c" + std::to_string(curve) + " using 1:2" : "NaN";
    plots += " title " + quoted(curves_[curve].name) + ' ' + curveStyle(curve, place);
  }
  line(plots);
}

}  // namespace

void CurveCollector::begin(const TableHead& table) {
  first_ = curves_.size();
  const std::vector<ColumnHead>& columns = table.columns;
  const std::string x_label =
      table.has_master ? labelOf(columns[0].name, columns[0].unit) : "sample";
  for (std::size_t i = table.has_master ? 1 : 0; i < columns.size(); ++i) {
    if (curves_.size() >= most_curves) {
      left_out_ += columns.size() - i;
      return;
    }
    curves_.push_back({prefix_ + columns[i].name, columns[i].unit, x_label, Decimator(columns_),
                       file_, columns[i].name});
  }
}

bool CurveCollector::take(const Batch& batch) {
  const bool has_master = batch.head().has_master;
  const std::size_t first_column = has_master ? 1 : 0;
  const ColumnData* const master = has_master ? &batch.column(0) : nullptr;
  const bool is_as_it_is =
      has_master && master->type() == ColumnType::float64 && master->nullCount() == 0;
  std::vector<double> numbers;
  if (has_master && !is_as_it_is) {
    numbers = master->reals();
  }
  for (std::size_t row = 0; !has_master && row < batch.rows(); ++row) {
    numbers.push_back(static_cast<double>(batch.record(row)));
  }
  const Abscissa x(is_as_it_is ? master->values<double>() : numbers.data(), batch.rows());
  for (std::size_t i = first_; i < curves_.size(); ++i) {
    const ColumnData& y = batch.column(first_column + i - first_);
    if (isNumber(y.type()) && y.nullCount() == 0) {
      withNumberType(y.type(),
                     [&](auto zero) { curves_[i].points.add(x, y.values<decltype(zero)>()); });
    } else {
      curves_[i].points.add(x, y.reals().data());
    }
  }
  return first_ < curves_.size();
}

std::string gnuplotScript(const std::vector<Curve>& curves, const ChartForm& form) {
  return Script(curves, form).text();
}

}  // namespace mdf_tools
