#ifndef MDF_TOOLS_PRINTING_STATISTICS_H_
#define MDF_TOOLS_PRINTING_STATISTICS_H_

#include <ostream>
#include <string>
#include <vector>

#include "measuring/statistics.h"
#include "reader/summary/json_type.h"

namespace mdf_tools {

/// Statistics of tables for people: a table of the groups and one of their channels.
void printStatistics(const std::vector<TableStatistics>& tables, std::ostream& out);

/// The same of one table for programs.
mdf_reader::Json statisticsAsJson(const std::string& file, const TableStatistics& table);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_STATISTICS_H_
