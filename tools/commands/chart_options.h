#ifndef MDF_TOOLS_COMMANDS_CHART_OPTIONS_H_
#define MDF_TOOLS_COMMANDS_CHART_OPTIONS_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command_line/option.h"
#include "pictures/chart_layout.h"

namespace mdf_tools {

class CommandLine;

/// What a user wants of a chart beside its samples.
struct ChartOptions {
  std::string size;  ///< "1600x900"; "" for what the panels need
  std::optional<std::string> title;
  std::string time = "seconds";
  bool is_logarithmic = false;
  bool has_lines = false;
  bool has_steps = false;
  bool has_points = false;
  bool without_events = false;

  bool hasDates() const { return time == "iso"; }

  /// The form of a chart in a format: "svg", "png" or "ascii".
  ChartForm formFor(const std::string& format, const std::vector<std::string>& paths) const;
};

/// Adds --size, --title, --log, --lines, --steps, --points, --time and --no-events.
/// @param other an option that none of them goes with.
std::shared_ptr<ChartOptions> addChartOptions(CommandLine& command, const Option& other);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_CHART_OPTIONS_H_
