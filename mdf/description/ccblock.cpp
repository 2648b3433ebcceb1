#include "ccblock.h"

#include <algorithm>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"

namespace mdf_v4_10 {

namespace {

constexpr std::size_t fixed_link_count = CCBLOCK::cc_cc_inverse + 1;

}  // namespace

CCBLOCK::CCBLOCK(MDF_CC_TYPE_t _type)
    : GENERALBLOCK(MDF_CC_ID, CCBLOCK_CONSTANT_SIZE, fixed_link_count) {
  setConversionType(_type);
}

CCBLOCK::CCBLOCK(std::istream& is) : GENERALBLOCK(MDF_CC_ID) {
  detail::BlockBody body;
  if (!body.read(is, *this, ccblock_fields.width(), detail::LengthBits::low_32)) {
    return;
  }
  const auto [reference_count, value_count] = ccblock_fields.take(body.in, *this);
  takeReferences(reference_count);
  takeValues(body.in, value_count);
  links.resize(fixed_link_count);
}

/// The references are the links read behind the fixed ones, as many as the count says. Links beyond
/// it are dropped; deliberate.
void CCBLOCK::takeReferences(UINT64 count) {
  for (std::size_t i = fixed_link_count; i < links.size() && cc_refs.size() < count; ++i) {
    cc_refs.push_back(links[i]);
  }
}

void CCBLOCK::takeValues(detail::Decoder& in, UINT64 count) {
  cc_vals.resize(static_cast<std::size_t>(std::min<UINT64>(count, in.remaining() / sizeof(REAL))));
  for (REAL& value : cc_vals) {
    in.take(value);
  }
}

UINT64 CCBLOCK::getLinkCount() const { return UINT64{fixed_link_count} + cc_refs.size(); }

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
  detail::BlockWriter out(os);
  out.header(ccb.header, ccb.getSize(), ccb.getLinkCount());
  out.numbers(ccb.links);
  out.numbers(ccb.cc_refs);
  out.fields(ccblock_fields, ccb);
  out.numbers(ccb.cc_vals);
  return out.finish();
}

}  // namespace mdf_v4_10
