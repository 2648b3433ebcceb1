#include "evblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

namespace {

constexpr std::size_t fixed_link_count = detail::evblock_links.size();

/// Links that are not among the fixed ones: scope and attachments.
std::size_t additionalLinkCount(const EVBLOCK& evb) {
  return evb.ev_scope.size() + evb.ev_at_reference.size();
}

}  // namespace

EVBLOCK::EVBLOCK(UINT64 length) : GENERALBLOCK(MDF_EV_ID, length, fixed_link_count) {}

EVBLOCK::EVBLOCK(MDF_EV_TYPE_t type, MDF_EV_SYNCTYPE_t syncType, MDF_EV_RANGETYPE_t rangeType,
                 MDF_EV_CAUSETYPE_t causeType)
    : EVBLOCK(EVBLOCK_CONSTANT_SIZE) {
  setType(type);
  setSyncType(syncType);
  setRangeType(rangeType);
  setCause(causeType);
}

EVBLOCK::EVBLOCK(std::istream& is) : EVBLOCK(UINT64{0}) {
  detail::BlockBody body(is, *this, detail::evblock_fields.takenWidth(), detail::BodyForm::low_32);
  if (!body.isReadable()) {
    return;
  }
  const auto [scope_count, attachment_count] =
      detail::evblock_fields.take(body.in.position(), *this);
  // The lists start at the file's first link, not after its fixed ones. This is deliberate.
  body.links.appendPartTo(ev_scope, 0, detail::hostSize(scope_count));
  body.links.appendPartTo(ev_at_reference, detail::hostSize(scope_count),
                          detail::hostSize(attachment_count));
}

std::uint64_t EVBLOCK::getSize() const {
  return EVBLOCK_CONSTANT_SIZE + sizeof(LINK) * std::uint64_t{additionalLinkCount(*this)};
}

void EVBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "EVBLOCK");
  dump.line("block size = ", getSize());
  dump.line("next event block (pointer) = ", getNextEVBlock());
  dump.line("parent event (pointer) = ", getParentEVBlock());
  dump.line("event range (pointer) = ", getEVRangeBlock());
  dump.line("event name tx (pointer) = ", getTXNameBlock());
  dump.line("comment md (pointer) = ", getMDBlock());
  dump.part("flags = postProcessed(", isPostProcessed());
  dump.part(")");
  dump.endLine();
  dump.line("type = ", ev_type);
  dump.line("syncType = ", ev_sync_type);
  dump.line("rangeType = ", ev_range_type);
  dump.line("cause = ", ev_cause);
  dump.line("creator index = ", ev_creator_index);
  dump.line("syncbaseValue = ", ev_sync_base_value);
  dump.line("syncbaseFactor = ", ev_sync_factor);
  dump.line("scope cnt = ", ev_scope.size());
  for (const LINK scope : ev_scope) {
    dump.line("scope pointer = ", scope);
  }
  dump.line("attachement cnt = ", ev_at_reference.size());
  for (const LINK attachment : ev_at_reference) {
    dump.line("attachement pointer = ", attachment);
  }
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const EVBLOCK& evb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  const std::size_t link_count = fixed_link_count + additionalLinkCount(evb);
  out.header(evb.header, detail::sizeWithLinks(link_count, detail::evblock_fields), link_count);
  out.numbers(evb.links);
  out.numbers(evb.ev_scope);
  out.numbers(evb.ev_at_reference);
  out.fields(detail::evblock_fields, evb);
  return out.finish();
}

}  // namespace mdf_v4_10
