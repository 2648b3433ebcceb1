#include "shown_number.h"

#include "reader/bytes/formatted.h"

namespace mdf_tools {

std::string shownNumber(double number) { return mdf_reader::formatted("%.6g", number); }

std::string withCommas(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) {
    at -= 3;
    text.insert(at, 1, ',');
  }
  return text;
}

std::string shownRecords(const mdf_reader::RecordCount& count) {
  return count.records ? std::to_string(*count.records) + (count.is_counted ? " (counted)" : "")
                       : "?";
}

}  // namespace mdf_tools
