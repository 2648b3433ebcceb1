#ifndef MDF_READER_MODEL_HIERARCHY_H_
#define MDF_READER_MODEL_HIERARCHY_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "texts.h"

namespace mdf_reader {

class InputFile;

/// A channel of an entry in the channel hierarchy, by the offsets of its blocks.
struct HierarchyElement {
  std::uint64_t data_group = 0;
  std::uint64_t channel_group = 0;
  std::uint64_t channel = 0;
};

/// An entry in the channel hierarchy: how somebody orders the channels.
struct HierarchyEntry {
  std::uint64_t offset = 0;
  std::size_t depth = 0;  ///< 0 for an entry of the file's own list; entries below it follow it
  unsigned type = 0;      ///< mdf_v4_10::CHBLOCK::MDF_CH_TYPE_t
  std::string_view name;
  std::string_view comment;
  std::vector<HierarchyElement> elements;
};

/// Reads the hierarchy from its first entry on, each followed by those below it. A link that leads
/// elsewhere, or to an entry that was met before, is reported and not followed.
std::vector<HierarchyEntry> readHierarchy(InputFile& file, std::uint64_t first, Texts& texts,
                                          const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_HIERARCHY_H_
