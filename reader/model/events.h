#ifndef MDF_READER_MODEL_EVENTS_H_
#define MDF_READER_MODEL_EVENTS_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "texts.h"

namespace mdf_reader {

class InputFile;

/// What an event block says.
struct Event {
  std::uint64_t offset = 0;
  std::string_view name;
  std::string_view comment;
  unsigned type = 0;
  unsigned sync_type = 0;
  unsigned range_type = 0;
  unsigned cause = 0;
  unsigned flags = 0;
  std::int64_t base_value = 0;
  double factor = 0;
  std::uint64_t scope_count = 0;       ///< as stated
  std::uint64_t attachment_count = 0;  ///< as stated
  std::uint64_t range_begin = 0;  ///< offset of the event that begins the range it ends; 0 for none

  /// When or where it happened, in the unit of its synchronisation type.
  double position() const { return static_cast<double>(base_value) * factor; }
};

/// Reads the chain of events from the first one on; what is wrong with it is reported.
std::vector<Event> readEvents(InputFile& file, std::uint64_t first, Texts& texts,
                              const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_EVENTS_H_
