#ifndef MDF_TOOLS_PICTURES_CHART_LAYOUT_H_
#define MDF_TOOLS_PICTURES_CHART_LAYOUT_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "event_marks.h"
#include "panel.h"

namespace mdf_tools {

/// How a chart is to be drawn.
struct ChartForm {
  enum class Kind { svg, png, ascii };
  enum class Style { automatic, lines, steps, points };

  Kind kind = Kind::svg;
  std::string title;
  std::size_t width = 1200;      ///< pixels, or characters
  std::size_t height = 0;        ///< the same; 0 for what the panels need
  std::size_t least_height = 0;  ///< of a picture as high as the panels need
  Style style = Style::automatic;
  bool is_logarithmic = false;

  bool isAscii() const { return kind == Kind::ascii; }
};

/// Where the parts of a panel are, from the top of the picture.
struct PanelBox {
  double top = 0;
  double bottom = 0;
  double legend = 0;
  bool has_x_label = false;
  std::size_t legend_rows = 0;  ///< 0 for none
  std::size_t name_bytes = 0;   ///< of the names in the legend
  std::vector<std::size_t> marks{};
  std::vector<std::optional<Flag>> flags{};  ///< of the marks, above the panel
};

/// Where everything in a chart is: panels one below another, the flags of events above the first
/// panel of their axis, and a legend below each panel. Panels are as large with a legend as without
/// one: the picture grows, or where its size is given and there is no room, flags and then legends
/// are left out.
struct ChartLayout {
  double width = 0;
  double height = 0;
  double left = 0;  ///< edges of the panels
  double right = 0;
  double flag_height = 0;
  std::vector<PanelBox> boxes;
  std::vector<std::string> notes;  ///< on what was left out
};

/// @throws DrawingFailed where even the panels have no room.
ChartLayout layOut(const std::vector<Panel>& panels, const std::vector<Curve>& curves,
                   const std::vector<EventMark>& marks, const ChartForm& form);

/// The width of a text in a picture, or a bit more.
double textWidth(const std::string& text, const ChartForm& form);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_CHART_LAYOUT_H_
