#include "chart_layout.h"

#include <algorithm>
#include <cmath>

#include "drawing_program.h"
#include "gnuplot_text.h"

namespace mdf_tools {

namespace {

/// The sizes of what a chart is made of, in pixels or characters.
struct Sizes {
  double character;
  double line;        ///< of a legend
  double legend_gap;  ///< above a legend
  double sample;      ///< of a legend's entry: what stands beside the name
  double left, right, bottom;
  double title;
  double ticks;
  double x_label;
  double flag;
  double gap;         ///< below a panel and its legend
  double least_body;  ///< the height of a panel, at the least
  double body(std::size_t panels) const {
    return character == 1 ? 12 : panels == 1 ? 380 : panels == 2 ? 250 : 190;
  }
};

constexpr Sizes in_pixels = {7.4, 17, 4, 64, 100, 40, 8, 36, 24, 20, 17, 14, 40};
constexpr Sizes in_characters = {1, 1, 0, 9, 12, 3, 0, 1, 2, 1, 1, 1, 5};

const Sizes& sizesOf(const ChartForm& form) { return form.isAscii() ? in_characters : in_pixels; }

constexpr std::size_t most_flag_rows = 5;

/// Puts a chart together from the top to the bottom.
class Arrangement {
 public:
  Arrangement(const std::vector<Panel>& panels, const std::vector<Curve>& curves,
              const std::vector<EventMark>& marks, const ChartForm& form)
      : panels_(panels), curves_(curves), marks_(marks), form_(form), sizes_(sizesOf(form)) {}

  ChartLayout make();

 private:
  void placeLegend(std::size_t panel);
  void placeMarks(std::size_t panel);
  double poleOf(const EventMark& mark, const Range& x) const;
  double flagsHeight(const PanelBox& box) const;
  double legendHeight(const PanelBox& box) const;
  double bodyHeight() const;
  double heightWithoutBodies() const;
  void shrink();
  void stack(double body);
  bool isFirstOnItsAxis(std::size_t panel) const;

  const std::vector<Panel>& panels_;
  const std::vector<Curve>& curves_;
  const std::vector<EventMark>& marks_;
  const ChartForm& form_;
  const Sizes& sizes_;
  ChartLayout layout_;
};

void Arrangement::placeLegend(std::size_t panel) {
  PanelBox& box = layout_.boxes[panel];
  const double room = layout_.right - layout_.left;
  const double for_a_name = std::max(room - sizes_.sample, 8 * sizes_.character);
  box.name_bytes = std::min(longest_text, static_cast<std::size_t>(for_a_name / sizes_.character));
  double widest = 0;
  for (const std::size_t curve : panels_[panel].curves) {
    const std::string shown = shortened(curves_[curve].name, box.name_bytes);
    widest = std::max(widest, textWidth(shown, form_));
  }
  const std::size_t count = panels_[panel].curves.size();
  const double fitting = std::floor(room / (widest + sizes_.sample));
  const auto columns = static_cast<std::size_t>(std::max(fitting, 1.0));
  box.legend_rows = (count + columns - 1) / columns;
}

double Arrangement::poleOf(const EventMark& mark, const Range& x) const {
  const Range visible = x.visible();
  const double part = (std::max(mark.from, visible.low()) - visible.low()) / visible.size();
  return layout_.left + part * (layout_.right - layout_.left);
}

bool Arrangement::isFirstOnItsAxis(std::size_t panel) const {
  return std::none_of(panels_.begin(), panels_.begin() + static_cast<std::ptrdiff_t>(panel),
                      [&](const Panel& each) { return each.x_label == panels_[panel].x_label; });
}

/// The marks of a panel, with flags if it is the first one of its axis.
void Arrangement::placeMarks(std::size_t panel) {
  const Panel& on = panels_[panel];
  PanelBox& box = layout_.boxes[panel];
  std::vector<double> poles;
  std::vector<double> widths;
  for (std::size_t i = 0; i < marks_.size(); ++i) {
    const EventMark& mark = marks_[i];
    const bool is_visible = mark.axis == on.axis && mark.zone == on.zone && !on.x.isEmpty() &&
                            mark.from <= on.x.high() && mark.to >= on.x.low();
    if (is_visible) {
      box.marks.push_back(i);
      poles.push_back(poleOf(mark, on.x));
      widths.push_back(textWidth(shortened(mark.name), form_) + 3 * sizes_.character);
    }
  }
  box.flags.resize(box.marks.size());
  if (isFirstOnItsAxis(panel)) {
    box.flags = placeFlags(poles, widths, layout_.width, most_flag_rows);
    const auto without = std::count(box.flags.begin(), box.flags.end(), std::nullopt);
    if (without > 0) {
      layout_.notes.push_back("there is no room for the names of " + std::to_string(without) +
                              (without == 1 ? " event" : " events") + "; choose a part of the " +
                              "time to see more, or a larger --size");
    }
  }
}

double Arrangement::flagsHeight(const PanelBox& box) const {
  std::size_t rows = 0;
  for (const std::optional<Flag>& flag : box.flags) {
    rows = std::max(rows, flag ? flag->row + 1 : 0);
  }
  return static_cast<double>(rows) * sizes_.flag;
}

double Arrangement::legendHeight(const PanelBox& box) const {
  return box.legend_rows == 0
             ? 0
             : static_cast<double>(box.legend_rows) * sizes_.line + sizes_.legend_gap;
}

double Arrangement::heightWithoutBodies() const {
  double height = (form_.title.empty() ? sizes_.gap : sizes_.title) + sizes_.bottom;
  for (const PanelBox& box : layout_.boxes) {
    height += flagsHeight(box) + sizes_.ticks + (box.has_x_label ? sizes_.x_label : 0) +
              legendHeight(box) + sizes_.gap;
  }
  return height;
}

/// Of each panel.
double Arrangement::bodyHeight() const {
  const auto count = static_cast<double>(panels_.size());
  const auto least = static_cast<double>(form_.least_height);
  const double height = form_.height != 0 ? static_cast<double>(form_.height) : least;
  const double body = (height - heightWithoutBodies()) / count;
  return form_.height != 0 ? body : std::max(body, sizes_.body(panels_.size()));
}

/// Makes room for the panels.
void Arrangement::shrink() {
  if (bodyHeight() < sizes_.least_body) {
    double flags = 0;
    for (PanelBox& box : layout_.boxes) {
      flags += flagsHeight(box);
      std::fill(box.flags.begin(), box.flags.end(), std::nullopt);
    }
    if (flags > 0) {
      layout_.notes = {"the names of events are left out; a larger --size has room for them"};
    }
  }
  if (bodyHeight() < sizes_.least_body) {
    for (PanelBox& box : layout_.boxes) {
      box.legend_rows = 0;
    }
    layout_.notes.emplace_back("the legend is left out; a larger --size has room for it");
  }
  if (bodyHeight() < sizes_.least_body) {
    throw DrawingFailed("cannot draw: " + std::to_string(form_.width) + 'x' +
                        std::to_string(form_.height) + " has no room for " +
                        std::to_string(panels_.size()) +
                        (panels_.size() == 1 ? " panel" : " panels") + "; give a larger --size");
  }
}

void Arrangement::stack(double body) {
  double at = form_.title.empty() ? sizes_.gap : sizes_.title;
  for (PanelBox& box : layout_.boxes) {
    box.top = at + flagsHeight(box);
    box.bottom = box.top + body;
    box.legend = box.bottom + sizes_.ticks + (box.has_x_label ? sizes_.x_label : 0) +
                 (box.legend_rows == 0 ? 0 : sizes_.legend_gap);
    at = box.legend + static_cast<double>(box.legend_rows) * sizes_.line + sizes_.gap;
  }
  layout_.height =
      form_.height != 0 ? static_cast<double>(form_.height) : std::ceil(at + sizes_.bottom);
}

ChartLayout Arrangement::make() {
  layout_.width = static_cast<double>(form_.width);
  layout_.left = sizes_.left;
  layout_.right = std::max(layout_.width - sizes_.right, layout_.left + sizes_.character);
  layout_.flag_height = sizes_.flag;
  layout_.boxes.resize(panels_.size());
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    layout_.boxes[i].has_x_label =
        i + 1 == panels_.size() || panels_[i + 1].x_label != panels_[i].x_label;
    placeLegend(i);
    placeMarks(i);
  }
  shrink();
  stack(bodyHeight());
  return std::move(layout_);
}

}  // namespace

double textWidth(const std::string& text, const ChartForm& form) {
  const auto characters = std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xC0U) != 0x80;
  });
  return static_cast<double>(characters) * sizesOf(form).character;
}

ChartLayout layOut(const std::vector<Panel>& panels, const std::vector<Curve>& curves,
                   const std::vector<EventMark>& marks, const ChartForm& form) {
  return Arrangement(panels, curves, marks, form).make();
}

}  // namespace mdf_tools
