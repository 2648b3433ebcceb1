#include "contents.h"

#include <cstring>
#include <iterator>

namespace mdf_fuzz {

namespace {

using mdf_tests::oracle::Links;

template <class List>
void append(Links& links, const List& more) {
  links.insert(links.end(), more.begin(), more.end());
}

template <class Value>
void appendNumber(std::string& bytes, Value value) {
  static_assert(sizeof value == 8);
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof value);
  bytes.resize(bytes.size() + 8);
  mdf_tests::oracle::setNumber(bytes, {bytes.size() - 8, 8}, bits);
}

void holdOnly(const std::vector<UINT8>& data, Contents& contents) {
  contents.links.clear();
  contents.tail.assign(data.begin(), data.end());
}

}  // namespace

Contents frameOf(const GENERALBLOCK& block) {
  Contents contents{block.header.length, block.header.link_count, {}, {}, "", ""};
  append(contents.links, block.links);
  contents.reserved.assign(std::begin(block.header.reserved), std::end(block.header.reserved));
  return contents;
}

void addLists(const TXBLOCK& block, Contents& contents) { holdOnly(block.data, contents); }
void addLists(const MDBLOCK& block, Contents& contents) { holdOnly(block.data, contents); }
void addLists(const DTBLOCK& block, Contents& contents) { holdOnly(block.dt_data, contents); }
void addLists(const RDBLOCK& block, Contents& contents) { holdOnly(block.rd_data, contents); }
void addLists(const SDBLOCK& block, Contents& contents) { holdOnly(block.sd_data, contents); }
void addLists(const DZBLOCK& block, Contents& contents) { holdOnly(block.dz_data, contents); }

void addLists(const ATBLOCK& block, Contents& contents) {
  contents.tail.assign(block.at_embedded_data.begin(), block.at_embedded_data.end());
}

void addLists(const CHBLOCK& block, Contents& contents) {
  for (const CHBLOCK::CHBLOCK_CHANNEL_t& element : block.channels) {
    append(contents.more_links,
           Links{element.ch_element_dg, element.ch_element_cg, element.ch_element_cn});
  }
}

void addLists(const EVBLOCK& block, Contents& contents) {
  append(contents.more_links, block.ev_scope);
  append(contents.more_links, block.ev_at_reference);
}

void addLists(const CNBLOCK& block, Contents& contents) {
  append(contents.more_links, block.cc_attachements);
  if (block.isDefaultXAxis()) {
    append(contents.more_links, Links{block.cn_default_x_dgblock, block.cn_default_x_cgblock,
                                      block.cn_default_x_cnblock});
  }
}

void addLists(const CCBLOCK& block, Contents& contents) {
  append(contents.more_links, block.cc_refs);
  for (const REAL value : block.cc_vals) {
    appendNumber(contents.tail, value);
  }
}

void addLists(const DLBLOCK& block, Contents& contents) {
  for (const auto& [link, offset] : block.dl_data) {
    contents.more_links.push_back(link);
    if (!block.isEqualLengthFlag()) {
      appendNumber(contents.tail, offset);
    }
  }
  if (block.isEqualLengthFlag()) {
    appendNumber(contents.tail, block.dl_equal_length);
  }
}

}  // namespace mdf_fuzz
