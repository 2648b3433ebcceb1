#include "reading_oracle/attempt.h"

#include <algorithm>
#include <cstdlib>

namespace mdf_tests::oracle {

std::size_t sectionWidth(const Format& format) {
  std::size_t width = 0;
  for (const int field : format.section) {
    width += static_cast<std::size_t>(std::abs(field));
  }
  return width;
}

std::size_t takenWidth(const Format& format) {
  const int last = format.section.empty() ? 0 : format.section.back();
  return sectionWidth(format) - static_cast<std::size_t>(std::max(0, -last));
}

std::string takenSection(const Format& format, std::string bytes) {
  bytes.resize(sectionWidth(format));
  std::size_t offset = 0;
  for (const int field : format.section) {
    const auto width = static_cast<std::size_t>(std::abs(field));
    if (field < 0) {
      bytes.replace(offset, width, width, '\0');
    }
    offset += width;
  }
  return bytes;
}

Contents startOf(const Format& format) {
  Contents block{format.start.length,
                 format.start.link_count,
                 Links(format.start.nil_links),
                 {},
                 std::string(sectionWidth(format), '\0'),
                 "",
                 std::vector<std::int64_t>(format.unwritten)};
  if (format.precision_at != SIZE_MAX) {
    block.section[format.precision_at] = '\xFF';
  }
  return block;
}

}  // namespace mdf_tests::oracle
