#include "history.h"

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "description.h"
#include "fileblocks/fhblock.h"

namespace mdf_reader {

using mdf_v4_10::FHBLOCK;

std::vector<HistoryEntry> readHistory(InputFile& file, std::uint64_t first, Texts& texts,
                                      const FindingSink& report) {
  std::vector<HistoryEntry> entries;
  forEachInChain(file, first, "FH", report, [&](const BlockFields& block) {
    HistoryEntry entry;
    entry.offset = block.offset();
    entry.time = block.number("fh_time_ns");
    entry.zone_minutes = static_cast<int>(block.signedNumber("fh_tz_offset_min"));
    entry.daylight_minutes = static_cast<int>(block.signedNumber("fh_dst_offset_min"));
    entry.time_flags = static_cast<unsigned>(block.number("fh_time_flags"));
    entry.comment = texts.commentAt(file, block.link(FHBLOCK::fh_md_comment));
    entries.push_back(entry);
  });
  return entries;
}

}  // namespace mdf_reader
