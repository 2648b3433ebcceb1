#ifndef MDF_TOOLS_REPORTING_REPORT_PAGE_H_
#define MDF_TOOLS_REPORTING_REPORT_PAGE_H_

#include <string>
#include <vector>

#include "viewing/serving/embedded_files.h"

namespace mdf_tools {

/// What a page has beside its own files.
struct ReportText {
  std::string title;
  std::string nonce;        ///< which nobody knew before
  std::string description;  ///< JSON
  std::vector<std::string> blocks;
};

/// A page as one file: "index.html" with what it names, and what that names in turn. Its own
/// scripts run, and no others; nothing is fetched from elsewhere.
std::string reportPage(const std::vector<EmbeddedFile>& files, const ReportText& text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_REPORT_PAGE_H_
