#include "file_plan.h"

#include <utility>

namespace mdf_tools {

using mdf_v4_10::LINK;
using mdf_v4_10::UINT64;

namespace {

constexpr UINT64 alignment = 8;

constexpr UINT64 aligned(UINT64 position) {
  return (position + alignment - 1) / alignment * alignment;
}

}  // namespace

LINK FilePlan::add(UINT64 size, std::function<void(std::ostream&)> write) {
  const UINT64 position = aligned(end_);
  entries_.push_back({position, size, std::move(write)});
  end_ = position + size;
  return static_cast<LINK>(position);
}

void FilePlan::write(std::ostream& os) const {
  static constexpr char zeros[alignment] = {};
  UINT64 at = 0;
  for (const Entry& entry : entries_) {
    os.write(zeros, static_cast<std::streamsize>(entry.position - at));
    entry.write(os);
    at = entry.position + entry.size;
  }
}

}  // namespace mdf_tools
