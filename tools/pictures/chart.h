#ifndef MDF_TOOLS_PICTURES_CHART_H_
#define MDF_TOOLS_PICTURES_CHART_H_

#include <string>
#include <vector>

#include "chart_layout.h"
#include "curve.h"
#include "event_marks.h"

namespace mdf_tools {

/// What it takes to draw a chart.
struct ChartScript {
  std::string text;
  std::vector<std::string> notes;  ///< sentences about what the picture has no room for
};

/// Commands for gnuplot that draw a chart to its standard output: a panel for each unit, one below
/// another. Texts of the file are quoted so that gnuplot carries out nothing in them.
/// @throws DrawingFailed where the picture has no room for the panels.
ChartScript gnuplotScript(const std::vector<Curve>& curves, const ChartForm& form,
                          const std::vector<EventMark>& marks = {});

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_CHART_H_
