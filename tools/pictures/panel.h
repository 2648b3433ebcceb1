#ifndef MDF_TOOLS_PICTURES_PANEL_H_
#define MDF_TOOLS_PICTURES_PANEL_H_

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "curve.h"
#include "engineering_unit.h"

namespace mdf_tools {

/// The limits of an axis.
class Range {
 public:
  void add(double number);
  /// Makes room for another range.
  void add(const Range& other) {
    add(other.low_);
    add(other.high_);
  }
  bool isEmpty() const { return !(low_ <= high_); }
  /// Whether the range is a single point, which leaves gnuplot nothing to draw.
  bool isPoint() const { return low_ == high_; }
  double low() const { return low_; }
  double high() const { return high_; }
  double size() const { return isEmpty() ? 0 : high_ - low_; }
  /// The largest magnitude in it; 0 where it is empty.
  double largest() const;

  /// With some room around a point; from 0 to 1 where it is empty.
  Range visible() const;
  /// "[0:1]", of the visible one.
  std::string text() const;

 private:
  double low_ = std::numeric_limits<double>::infinity();
  double high_ = -std::numeric_limits<double>::infinity();
};

/// Curves with one unit over the same axis.
struct Panel {
  std::string unit;
  std::string x_label;
  unsigned axis = 0;   ///< see Curve
  std::string zone{};  ///< of the clock that the axis shows, if it does
  bool is_scattered = false;
  std::vector<std::size_t> curves{};
  Range x{};  ///< the same of all panels over this axis
  Range y{};
  AxisUnit shown{};  ///< in place of the unit
};

/// More curves than this go into further panels.
constexpr std::size_t most_in_a_panel = 12;

/// Whether a curve is of states and a line through its points would fill the panel, as one through
/// identifiers does: it goes up and down all the time. Such curves have panels of their own.
bool isScattered(const Curve& curve, const std::vector<Point>& points);

/// The panels of curves, in the order of the first curve of each unit.
/// @param points of each curve.
std::vector<Panel> panelsOf(const std::vector<Curve>& curves,
                            const std::vector<std::vector<Point>>& points, bool is_logarithmic);

/// Sentences about units whose curves take several panels.
std::vector<std::string> notesOnFullPanels(const std::vector<Panel>& panels);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_PANEL_H_
