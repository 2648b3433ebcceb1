#ifndef MDF_TOOLS_PRINTING_STATISTICS_H_
#define MDF_TOOLS_PRINTING_STATISTICS_H_

#include <ostream>
#include <string>
#include <vector>

#include "json_output.h"
#include "measuring/statistics.h"

namespace mdf_tools {

/// Statistics of tables for people: a table of the groups and one of their channels.
void printStatistics(const std::vector<TableStatistics>& tables, std::ostream& out);

/// The same of one table for programs.
Json statisticsAsJson(const std::string& file, const TableStatistics& table);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_STATISTICS_H_
