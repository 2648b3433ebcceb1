#include "chblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

namespace {

constexpr std::size_t fixed_link_count = detail::chblock_links.size();

constexpr auto element_links =
    detail::fieldList(detail::field<&CHBLOCK::CHBLOCK_CHANNEL_t::ch_element_dg>("ch_element_dg"),
                      detail::field<&CHBLOCK::CHBLOCK_CHANNEL_t::ch_element_cg>("ch_element_cg"),
                      detail::field<&CHBLOCK::CHBLOCK_CHANNEL_t::ch_element_cn>("ch_element_cn"));
constexpr std::size_t links_per_element = element_links.width() / sizeof(LINK);

/// Each element starts one link after the one before, not three. This is deliberate.
void takeChannels(CHBLOCK& chb, const detail::FileLinks& file_links) {
  constexpr std::size_t links_before_the_last_start = fixed_link_count + links_per_element - 1;
  if (file_links.size() <= links_before_the_last_start) {
    return;
  }
  std::vector<CHBLOCK::CHBLOCK_CHANNEL_t> elements(file_links.size() - links_before_the_last_start);
  const char* at = file_links.bytes() + fixed_link_count * sizeof(LINK);
  for (CHBLOCK::CHBLOCK_CHANNEL_t& element : elements) {
    element_links.take(at, element);
    at += sizeof(LINK);
  }
  chb.channels.swap(elements);
}

}  // namespace

CHBLOCK::CHBLOCK(MDF_CH_TYPE_t type)
    : GENERALBLOCK(MDF_CH_ID, CHBLOCK_CONSTANT_SIZE, fixed_link_count) {
  setType(type);
}

CHBLOCK::CHBLOCK(std::istream& is) : GENERALBLOCK(MDF_CH_ID) {
  detail::BlockBody body(is, *this, detail::chblock_fields.takenWidth(), detail::BodyForm::low_32);
  if (!body.isReadable()) {
    return;
  }
  // The elements follow from the links; their count in the file is not needed.
  detail::chblock_fields.take(body.in.position(), *this);
  body.links.fill(links, fixed_link_count);
  takeChannels(*this, body.links);
}

void CHBLOCK::setType(MDF_CH_TYPE_t type) {
  ch_type = static_cast<UINT8>(type);
  switch (type) {
    case CH_TYPE_GROUP:
    case CH_TYPE_STRUCTURE:
      break;
    case CH_TYPE_FUNCTION:
      channels.clear();
      break;
    case CH_TYPE_MAP_LIST:
      setLinkAt(ch_ch_first, 0);
      break;
    case CH_TYPE_IN_MEASUREMENT:
    case CH_TYPE_OUT_MEASUREMENT:
    case CH_TYPE_LOC_MEASUREMENT:
    case CH_TYPE_DEF_CHARACTERISTIC:
    case CH_TYPE_REF_CHARACTERISTIC:
      setLinkAt(ch_tx_name, 0);
      break;
  }
}

bool CHBLOCK::mayPrecede(MDF_CH_TYPE_t next) const {
  switch (getType()) {
    case CH_TYPE_GROUP:
      return true;
    case CH_TYPE_FUNCTION:
      return next != CH_TYPE_GROUP;
    case CH_TYPE_STRUCTURE:
    case CH_TYPE_IN_MEASUREMENT:
    case CH_TYPE_OUT_MEASUREMENT:
    case CH_TYPE_LOC_MEASUREMENT:
    case CH_TYPE_DEF_CHARACTERISTIC:
    case CH_TYPE_REF_CHARACTERISTIC:
      return next == CH_TYPE_STRUCTURE || next == CH_TYPE_MAP_LIST;
    case CH_TYPE_MAP_LIST:
      return false;
  }
  return false;
}

void CHBLOCK::setNextCHBlock(LINK link, MDF_CH_TYPE_t type) {
  setLinkAt(ch_ch_next, mayPrecede(type) ? link : 0);
}

void CHBLOCK::setFirstCHBlock(LINK link) {
  setLinkAt(ch_ch_first, ch_type == CH_TYPE_MAP_LIST ? 0 : link);
}

void CHBLOCK::setTXNameBlock(LINK link) {
  setLinkAt(ch_tx_name, ch_type <= CH_TYPE_MAP_LIST ? link : 0);
}

bool CHBLOCK::getChannelElementAtIndex(UINT32 _index, LINK& dg, LINK& cg, LINK& cn) const {
  CHBLOCK_CHANNEL_t element;
  if (!getChannelElementAtIndex(_index, element)) {
    return false;
  }
  dg = element.ch_element_dg;
  cg = element.ch_element_cg;
  cn = element.ch_element_cn;
  return true;
}

bool CHBLOCK::getChannelElementAtIndex(UINT32 _index, CHBLOCK_CHANNEL_t& element) const {
  return copyEntryAt(channels, _index, element);
}

std::uint64_t CHBLOCK::getSize() const {
  return CHBLOCK_CONSTANT_SIZE + links_per_element * sizeof(LINK) * std::uint64_t{channels.size()};
}

void CHBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "CHBLOCK");
  dump.line("block size = ", getSize());
  dump.line("next file ch history block (pointer) = ", getNextCHBlock());
  // The comment link stands here, not the first child; deliberate.
  dump.line("first (sibling) file ch history block (pointer) = ", getMDBlock());
  dump.line("name text (pointer) = ", getTXNameBlock());
  dump.line("file comment (pointer) = ", getMDBlock());
  dump.line("element count = ", channels.size());
  for (const CHBLOCK_CHANNEL_t& element : channels) {
    dump.line("element DG (pointer) = ", element.ch_element_dg);
    dump.line("element CG (pointer) = ", element.ch_element_cg);
    dump.line("element CN (pointer) = ", element.ch_element_cn);
  }
  dump.line("type = ", ch_type);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const CHBLOCK& chb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  // One link is counted for each element, although three are written; deliberate.
  out.header(chb.header, chb.getSize(),
             static_cast<UINT32>(chb.channels.size() + fixed_link_count));
  out.numbers(chb.links);
  out.entries(element_links, chb.channels);
  out.fields(detail::chblock_fields, chb);
  return out.finish();
}

}  // namespace mdf_v4_10
