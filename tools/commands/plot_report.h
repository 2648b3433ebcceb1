#ifndef MDF_TOOLS_COMMANDS_PLOT_REPORT_H_
#define MDF_TOOLS_COMMANDS_PLOT_REPORT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "chart_options.h"
#include "decoding_option.h"
#include "reader/columns/query.h"

namespace mdf_tools {

/// Channels that `mdf plot` is to write as a page.
struct ReportRequest {
  const std::vector<std::string>& paths;
  const mdf_reader::Query& query;
  const DecodingRequest& decoding;
  const ChartOptions& chart;
  const std::string& output;
  std::size_t most = 0;  ///< bytes of the page
};

/// Writes it; returns the exit code.
int writeReport(const ReportRequest& request);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_PLOT_REPORT_H_
