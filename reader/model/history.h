#ifndef MDF_READER_MODEL_HISTORY_H_
#define MDF_READER_MODEL_HISTORY_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "../blocks/finding.h"
#include "texts.h"

namespace mdf_reader {

class InputFile;

/// Who changed the file, and when: what a file history block says.
struct HistoryEntry {
  std::uint64_t offset = 0;
  std::uint64_t time = 0;  ///< as stored: nanoseconds since 1970
  int zone_minutes = 0;
  int daylight_minutes = 0;
  unsigned time_flags = 0;   ///< see Header::TimeFlag
  std::string_view comment;  ///< what was done
};

/// Reads the chain of history entries from the first one on; what is wrong with it is reported.
std::vector<HistoryEntry> readHistory(InputFile& file, std::uint64_t first, Texts& texts,
                                      const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_HISTORY_H_
