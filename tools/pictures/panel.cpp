#include "panel.h"

#include <algorithm>
#include <cmath>

#include "gnuplot_text.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

namespace {

bool areAlike(const Panel& a, const Panel& b) {
  return a.unit == b.unit && a.x_label == b.x_label && a.is_scattered == b.is_scattered;
}

/// The last panel like this one; a new one after it where it is full, or else after all others.
Panel& panelLike(const Panel& wanted, std::vector<Panel>& panels) {
  const auto last = std::find_if(panels.rbegin(), panels.rend(),
                                 [&](const Panel& panel) { return areAlike(panel, wanted); });
  if (last != panels.rend() && last->curves.size() < most_in_a_panel) {
    return *last;
  }
  return *panels.insert(last == panels.rend() ? panels.end() : last.base(), wanted);
}

}  // namespace

void Range::add(double number) {
  if (!std::isnan(number)) {
    low_ = std::min(low_, number);
    high_ = std::max(high_, number);
  }
}

double Range::largest() const { return isEmpty() ? 0 : std::max(std::abs(low_), std::abs(high_)); }

Range Range::visible() const {
  Range range;
  const double room = isPoint() ? std::max(std::abs(low_) * 0.01, 1.0) : 0;
  range.add(isEmpty() ? 0 : low_ - room);
  range.add(isEmpty() ? 1 : high_ + room);
  return range;
}

std::string Range::text() const {
  const Range range = visible();
  return '[' + numberText(range.low_) + ':' + numberText(range.high_) + ']';
}

bool isScattered(const Curve& curve, const std::vector<Point>& points) {
  constexpr double most = 200;  // times from one end to the other
  if (!curve.is_state) {
    return false;
  }
  Range range;
  double way = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    range.add(points[i].y);
    const double step = i == 0 ? 0 : std::abs(points[i].y - points[i - 1].y);
    way += std::isnan(step) ? 0 : step;
  }
  return range.size() > 0 && way / range.size() > most;
}

std::vector<Panel> panelsOf(const std::vector<Curve>& curves,
                            const std::vector<std::vector<Point>>& points, bool is_logarithmic) {
  std::vector<Panel> panels;
  for (std::size_t i = 0; i < curves.size(); ++i) {
    const Curve& curve = curves[i];
    Panel& panel = panelLike({curve.unit, curve.x_label, curve.axis,
                              curve.clock ? curve.clock->zone : "", isScattered(curve, points[i])},
                             panels);
    panel.curves.push_back(i);
    for (const Point& point : points[i]) {
      panel.y.add(point.y);
      panel.x.add(point.x);
    }
  }
  for (Panel& panel : panels) {
    panel.shown =
        is_logarithmic ? baseUnitFor(panel.unit) : axisUnitFor(panel.unit, panel.y.largest());
    for (const Panel& other : panels) {
      if (other.x_label == panel.x_label && !other.x.isEmpty()) {
        panel.x.add(other.x);
      }
    }
  }
  return panels;
}

std::vector<std::string> notesOnFullPanels(const std::vector<Panel>& panels) {
  std::vector<std::string> notes;
  for (std::size_t begin = 0, end = 0; begin < panels.size(); begin = end) {
    std::size_t curves = 0;
    for (; end < panels.size() && areAlike(panels[end], panels[begin]); ++end) {
      curves += panels[end].curves.size();
    }
    if (end - begin > 1) {
      const std::string& unit = panels[begin].unit;
      notes.push_back("a panel has room for " + std::to_string(most_in_a_panel) +
                      " channels; the " + std::to_string(curves) +
                      (unit.empty() ? " without a unit" : " in " + printable(unit)) + " take " +
                      std::to_string(end - begin) + " panels");
    }
  }
  return notes;
}

}  // namespace mdf_tools
