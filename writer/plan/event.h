#ifndef MDF_WRITER_PLAN_EVENT_H_
#define MDF_WRITER_PLAN_EVENT_H_

#include <cstdint>
#include <optional>
#include <string>

#include "../../mdf/mdf_v4_10.h"
#include "group.h"

namespace mdf_writer {

/// Something that happens while a recording runs, such as a marker that somebody sets.
struct Event {
  using Type = mdf_v4_10::EVBLOCK::MDF_EV_TYPE_t;
  using Cause = mdf_v4_10::EVBLOCK::MDF_EV_CAUSETYPE_t;

  std::string name;
  std::int64_t nanoseconds = 0;                         ///< since the start
  std::optional<std::int64_t> nanoseconds_at_end = {};  ///< of an event that lasts
  Type type = mdf_v4_10::EVBLOCK::EV_TYPE_MARKER;
  Cause cause = mdf_v4_10::EVBLOCK::EV_CAUSETYPE_USER;
  std::string comment = {};
  const Group* group = nullptr;  ///< the group that it concerns; none where it concerns all
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_EVENT_H_
