#include "shown_number.h"

#include "formatted.h"

namespace mdf_tools {

std::string shownNumber(double number) { return formatted("%.6g", number); }

std::string shownRecords(const mdf_reader::RecordCount& count) {
  return count.records ? std::to_string(*count.records) + (count.is_counted ? " (counted)" : "")
                       : "?";
}

}  // namespace mdf_tools
