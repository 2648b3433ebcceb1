#include "events.h"

#include "../blocks/block_fields.h"
#include "../bytes/input_file.h"
#include "description.h"
#include "fileblocks/evblock.h"

namespace mdf_reader {

using mdf_v4_10::EVBLOCK;

std::vector<Event> readEvents(InputFile& file, std::uint64_t first, Texts& texts,
                              const FindingSink& report) {
  std::vector<Event> events;
  forEachInChain(file, first, "EV", report, [&](const BlockFields& block) {
    Event event;
    event.offset = block.offset();
    event.name = texts.at(file, block.link(EVBLOCK::ev_tx_name));
    event.comment = texts.commentAt(file, block.link(EVBLOCK::ev_md_comment));
    event.type = static_cast<unsigned>(block.number("ev_type"));
    event.sync_type = static_cast<unsigned>(block.number("ev_sync_type"));
    event.range_type = static_cast<unsigned>(block.number("ev_range_type"));
    event.cause = static_cast<unsigned>(block.number("ev_cause"));
    event.flags = static_cast<unsigned>(block.number("ev_flags"));
    event.base_value = block.signedNumber("ev_sync_base_value");
    event.factor = block.real("ev_sync_factor");
    event.scope_count = block.number("ev_scope_count");
    event.attachment_count = block.number("ev_attachment_count");
    event.range_begin = block.link(EVBLOCK::ev_ev_range);
    events.push_back(event);
  });
  return events;
}

}  // namespace mdf_reader
