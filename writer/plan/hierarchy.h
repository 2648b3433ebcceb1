#ifndef MDF_WRITER_PLAN_HIERARCHY_H_
#define MDF_WRITER_PLAN_HIERARCHY_H_

#include <string>
#include <vector>

#include "../../mdf/mdf_v4_10.h"
#include "group.h"

namespace mdf_writer {

/// An entry of a tree over the file's channels, which orders them as people think of them, not as
/// they are stored.
struct HierarchyEntry {
  using Type = mdf_v4_10::CHBLOCK::MDF_CH_TYPE_t;

  std::string name;
  Type type = mdf_v4_10::CHBLOCK::CH_TYPE_GROUP;
  std::string comment = {};
  std::vector<ChannelRef> channels = {};
  std::vector<HierarchyEntry> entries = {};  ///< below this one
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_HIERARCHY_H_
