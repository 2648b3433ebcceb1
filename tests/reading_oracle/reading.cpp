#include "reading_oracle/reading.h"

#include <algorithm>
#include <sstream>
#include <tuple>

namespace mdf_tests::oracle {

namespace {

auto allOf(const Reading& reading) {
  return std::tie(reading.thrown, reading.state, reading.position, reading.length,
                  reading.link_count, reading.links, reading.unwritten, reading.written);
}

std::string listed(const std::vector<std::int64_t>& values) {
  std::string text;
  for (const std::int64_t value : values) {
    text += ' ' + std::to_string(value);
  }
  return text;
}

std::ostream& operator<<(std::ostream& os, const Reading& reading) {
  return os << reading.thrown << (reading.thrown.empty() ? "state " : ", state ") << reading.state
            << " at " << reading.position << ", length " << reading.length << ", link count "
            << reading.link_count << ", links" << listed(reading.links) << ", unwritten"
            << listed(reading.unwritten) << ", " << reading.written.size() << " bytes written";
}

}  // namespace

std::string differenceOf(const Reading& expected, const Reading& found) {
  if (allOf(expected) == allOf(found)) {
    return {};
  }
  const std::string& written = expected.written;
  const auto differs =
      std::mismatch(written.begin(), written.end(), found.written.begin(), found.written.end());
  std::ostringstream os;
  os << expected << "\nfound " << found << ", the same up to byte "
     << differs.first - written.begin();
  return os.str();
}

}  // namespace mdf_tests::oracle
