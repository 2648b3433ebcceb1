#include "candump_source.h"

#include <memory>
#include <string>

namespace mdf_tools {

bool CandumpSource::take(std::string_view line) {
  if (line.find_first_not_of(" \t") == std::string_view::npos) {
    return false;
  }
  try {
    const LoggedFrame& logged = line_.take(line);
    const auto index = kinds_.indexOf(logged.frame);
    if (!index) {
      throw UnfitFrame{0, "expected frames of at most 256 buses, found more"};
    }
    if (*index == groups_.size()) {
      const BusGroupKind& kind = kinds_.all()[*index];
      groups_.push_back({kind.bus, {}, false, kind});
    }
    start_ = start_.value_or(startOfLog(logged.nanoseconds));
    sample_.group = *index;
    sample_.nanoseconds = logged.nanoseconds - *start_;
    sample_.frame = std::make_shared<HeldFrame>(logged.frame, number_++);
  } catch (const UnfitFrame& unfit) {
    throw UnfitLine((unfit.column > 0 ? "column " + std::to_string(unfit.column) + ": " : "") +
                    unfit.sentence);
  }
  return true;
}

}  // namespace mdf_tools
