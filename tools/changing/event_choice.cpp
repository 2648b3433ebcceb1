#include "event_choice.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

#include "fileblocks/evblock.h"
#include "fileblocks/hdblock.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/model/events.h"
#include "reader/model/texts.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::EVBLOCK;
using mdf_v4_10::HDBLOCK;

void leaveOutEvents(BlockCopy& blocks, const Query& limits, const FindingSink& report) {
  struct Span {
    double begin = -std::numeric_limits<double>::infinity();
    double end = std::numeric_limits<double>::infinity();
  };
  InputFile& file = blocks.file();
  const auto header = readFields(file, header_block_offset, "HD");
  Texts texts;
  const std::vector<Event> events =
      readEvents(file, header ? header->link(HDBLOCK::hd_ev_first) : 0, texts, report);
  // Of an event that lasts, the end names the beginning.
  const auto beginning = [&](const Event& event) {
    const auto block = readFields(file, event.offset, "EV");
    const bool is_end = event.range_type == EVBLOCK::EV_RANGETYPE_END;
    return is_end && block && block->link(EVBLOCK::ev_ev_range) != 0
               ? block->link(EVBLOCK::ev_ev_range)
               : event.offset;
  };
  std::unordered_map<std::uint64_t, Span> spans;
  for (const Event& event : events) {
    Span& span = spans[beginning(event)];
    if (event.range_type != EVBLOCK::EV_RANGETYPE_END) {
      span.begin = event.position();
    }
    if (event.range_type != EVBLOCK::EV_RANGETYPE_BEGIN) {
      span.end = event.position();
    }
  }
  for (const Event& event : events) {
    const Span& span = spans[beginning(event)];
    const bool is_outside =
        (limits.from && span.end < *limits.from) || (limits.to && span.begin > *limits.to);
    if (event.sync_type == EVBLOCK::EV_SYNCTYPE_SECONDS && is_outside) {
      blocks.leaveOut(blocks.table().find(event.offset));
    }
  }
}

void leaveOutEventsOfNothing(BlockCopy& blocks) {
  constexpr std::uint64_t first_scope = EVBLOCK::ev_md_comment + 1;
  InputFile& file = blocks.file();
  for (std::uint32_t index = 0; index < blocks.table().size(); ++index) {
    const auto event = blocks.table()[index].letters() == "EV"
                           ? readFields(file, blocks.table()[index].offset, "EV")
                           : std::nullopt;
    if (!event) {
      continue;
    }
    const std::uint64_t scopes =
        std::min(event->number("ev_scope_count"), linksThere(file, event->raw()));
    bool is_of_nothing = scopes > 0;
    for (std::uint64_t scope = 0; is_of_nothing && scope < scopes; ++scope) {
      is_of_nothing = blocks.isLeftOut(linkAt(file, event->raw(), first_scope + scope));
    }
    if (is_of_nothing) {
      blocks.leaveOut(index);
    }
  }
}

}  // namespace mdf_tools
