#include "ccblock.h"

#include <algorithm>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

namespace {

constexpr std::size_t fixed_link_count = detail::ccblock_links.size();

}  // namespace

CCBLOCK::CCBLOCK() : GENERALBLOCK(MDF_CC_ID) {}

CCBLOCK::CCBLOCK(MDF_CC_TYPE_t _type) : CCBLOCK() {
  header.setLength(CCBLOCK_CONSTANT_SIZE);
  header.setLinkCount(fixed_link_count);
  links.resize(fixed_link_count);
  setConversionType(_type);
}

CCBLOCK::CCBLOCK(std::istream& is) : CCBLOCK() {
  detail::BlockBody body(is, *this, detail::ccblock_fields.takenWidth(), detail::BodyForm::low_32);
  if (!body.isReadable()) {
    return;
  }
  const auto [reference_count, value_count] = detail::ccblock_fields.take(body.in, *this);
  body.links.fill(links, fixed_link_count);
  // The references are the links after the fixed ones, as many as the count says. Links beyond it
  // are dropped; deliberate.
  body.links.appendPartTo(cc_refs, fixed_link_count, detail::hostSize(reference_count));
  body.takeList(detail::hostSize(value_count), cc_vals);
}

std::uint64_t CCBLOCK::getSize() const {
  return CCBLOCK_CONSTANT_SIZE + sizeof(LINK) * std::uint64_t{cc_refs.size()} +
         sizeof(REAL) * std::uint64_t{cc_vals.size()};
}

void CCBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "CCBLOCK");
  dump.line("block size = ", getSize());
  dump.line("name tx block = ", getNameTxblock());
  dump.line("unit tx block = ", getUnitblock());
  dump.line("comment block = ", getCommentblock());
  dump.line("inverse cc block = ", getInverseCcblock());
  dump.line("conversion type = ", cc_type);
  // The flags come as numbers, whatever form the stream gives booleans, and not in the order of
  // their bits; deliberate.
  dump.line("precision valid = ", static_cast<UINT8>(isPrecisionValid()));
  dump.line("precision = ", cc_precision);
  dump.line("status string = ", static_cast<UINT8>(isStatusString()));
  dump.line("physical value range valid = ", static_cast<UINT8>(isPhysicalValueRangeValid()));
  dump.line("minimum physical signal value = ", cc_phy_range_min);
  dump.line("maximum physical signal value = ", cc_phy_range_max);
  dump.line("ref count = ", cc_refs.size());
  for (const LINK reference : cc_refs) {
    dump.line("Ref = ", reference);
  }
  dump.line("val count = ", cc_vals.size());
  for (const REAL value : cc_vals) {
    dump.line("Value = ", value);
  }
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const CCBLOCK& ccb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.header(ccb.header, ccb.getSize(), ccb.getLinkCount());
  out.numbers(ccb.links);
  out.numbers(ccb.cc_refs);
  out.fields(detail::ccblock_fields, ccb);
  out.numbers(ccb.cc_vals);
  return out.finish();
}

}  // namespace mdf_v4_10
