#include "lists.h"

#include <algorithm>
#include <cstring>

#include "expect.h"

namespace mdf_fuzz {

namespace {

bool isZero(std::string_view bytes) {
  return bytes.empty() || (bytes[0] == 0 && bytes.substr(1) == bytes.substr(0, bytes.size() - 1));
}

/// The bytes that came, and zeros for those that did not.
void expectSized(const std::vector<UINT8>& data, const FileBlock& file) {
  const std::string_view bytes = textOf(data);
  const std::size_t came = file.rest.size();
  expect(bytes.size() == file.sized, "data to have the size that the file says");
  expect(bytes.substr(0, came) == file.rest, "data to be what came");
  expect(isZero(bytes.substr(came)), "zeros behind the data that came");
}

std::vector<LINK> slice(const std::vector<LINK>& links, UINT64 first, UINT64 count) {
  std::vector<LINK> taken;
  for (UINT64 i = first; i < links.size() && i - first < count; ++i) {
    taken.push_back(links[static_cast<std::size_t>(i)]);
  }
  return taken;
}

UINT64 field(const FileBlock& file, std::size_t offset, std::size_t width) {
  return file.is_whole ? number(file.fields, offset, width) : 0;
}

template <class List>
void append(std::vector<LINK>& links, const List& more) {
  links.insert(links.end(), more.begin(), more.end());
}

template <class Value>
void appendBytes(std::vector<UINT8>& bytes, Value value) {
  UINT64 bits = 0;
  std::memcpy(&bits, &value, sizeof value);
  for (std::size_t i = 0; i < sizeof value; ++i) {
    bytes.push_back(static_cast<UINT8>(bits >> (8 * i)));
  }
}

Written plainly(const GENERALBLOCK& block, const std::vector<UINT8>& data) {
  return {header_size + data.size(), block.header.link_count, {}, data};
}

/// A block whose length and link count follow from what is written, as most do.
Written counted(const GENERALBLOCK& block, const Layout& layout,
                const std::vector<LINK>& more_links, std::vector<UINT8> rest) {
  const UINT64 links = layout.fixed_links + more_links.size();
  Written form{header_size + links * link_size + layout.fields + rest.size(), links, block.links,
               std::move(rest)};
  append(form.links, more_links);
  return form;
}

}  // namespace

void expectLists(const TXBLOCK& block, const FileBlock& file) { expectSized(block.data, file); }
void expectLists(const MDBLOCK& block, const FileBlock& file) { expectSized(block.data, file); }
void expectLists(const DTBLOCK& block, const FileBlock& file) { expectSized(block.dt_data, file); }
void expectLists(const RDBLOCK& block, const FileBlock& file) { expectSized(block.rd_data, file); }
void expectLists(const SDBLOCK& block, const FileBlock& file) { expectSized(block.sd_data, file); }
void expectLists(const DZBLOCK& block, const FileBlock& file) { expectSized(block.dz_data, file); }

void expectLists(const ATBLOCK& block, const FileBlock& file) {
  const std::string_view rest = file.rest.substr(
      0, static_cast<std::size_t>(std::min<UINT64>(field(file, 32, 8), file.rest.size())));
  expect(textOf(block.at_embedded_data) == rest,
         "embedded bytes up to their size or the block's end");
}

void expectLists(const CHBLOCK& block, const FileBlock& file) {
  const std::size_t count = file.links.size() < 7 ? 0 : file.links.size() - 6;
  expect(block.channels.size() == count, "an element at each link that two others follow");
  for (std::size_t i = 0; i < count; ++i) {
    const CHBLOCK::CHBLOCK_CHANNEL_t& element = block.channels[i];
    expect(element.ch_element_dg == file.links[4 + i] &&
               element.ch_element_cg == file.links[5 + i] &&
               element.ch_element_cn == file.links[6 + i],
           "elements that overlap");
  }
}

void expectLists(const EVBLOCK& block, const FileBlock& file) {
  const UINT64 scopes = field(file, 8, 4);
  expect(same(block.ev_scope, slice(file.links, 0, scopes)), "the file's first links as scope");
  expect(same(block.ev_at_reference, slice(file.links, scopes, field(file, 12, 2))),
         "the links behind the scope as attachments");
}

void expectLists(const CNBLOCK& block, const FileBlock& file) {
  const UINT64 attachments = file.is_whole ? field(file, 22, 2) + 1 : 0;
  expect(same(block.cc_attachements, slice(file.links, 0, attachments)),
         "one of the file's first links more than there are attachments");
  std::vector<LINK> x_axis(3, 0);
  if ((field(file, 12, 4) & CNBLOCK::default_x_axis) != 0) {
    append(x_axis, file.links);
  }
  expect(same({block.cn_default_x_dgblock, block.cn_default_x_cgblock, block.cn_default_x_cnblock},
              std::vector<LINK>(x_axis.end() - 3, x_axis.end())),
         "the last three links as default X axis");
}

void expectLists(const CCBLOCK& block, const FileBlock& file) {
  expect(same(block.cc_refs, slice(file.links, 4, field(file, 4, 2))),
         "as many references as the count and the links allow");
  const std::size_t values =
      std::min(static_cast<std::size_t>(field(file, 6, 2)), file.rest.size() / sizeof(REAL));
  expect(block.cc_vals.size() == values, "as many values as the count and the bytes allow");
  for (std::size_t i = 0; i < values; ++i) {
    REAL value = 0;
    const UINT64 bits = number(file.rest, i * sizeof value, sizeof value);
    std::memcpy(&value, &bits, sizeof value);
    expect(same(block.cc_vals[i], value), "the file's values");
  }
}

void expectLists(const DLBLOCK& block, const FileBlock& file) {
  const bool equal_length = (field(file, 0, 1) & 1) != 0;
  const UINT64 length = equal_length ? number(file.rest, 0, 8) : 0;
  const UINT64 offsets = std::min<UINT64>(field(file, 4, 4), file.rest.size() / 8);
  const std::size_t count = equal_length ? file.links.size()
                                         : static_cast<std::size_t>(std::min<UINT64>(
                                               offsets, file.is_whole ? file.links.size() : 0));
  expect(block.dl_equal_length == length, "the equal length where there is one");
  expect(block.dl_data.size() == count, "as many pairs as count, links and offsets allow");
  for (std::size_t i = 0; i < count; ++i) {
    expect(block.dl_data[i].first == file.links[i], "pairs from the link to the next list on");
    expect(block.dl_data[i].second == (equal_length ? length : number(file.rest, i * 8, 8)),
           "the offset of each pair");
  }
}

Written written(const TXBLOCK& block) { return plainly(block, block.data); }
Written written(const MDBLOCK& block) { return plainly(block, block.data); }
Written written(const DTBLOCK& block) { return plainly(block, block.dt_data); }
Written written(const RDBLOCK& block) { return plainly(block, block.rd_data); }
Written written(const SDBLOCK& block) { return plainly(block, block.sd_data); }

Written written(const DZBLOCK& block) {
  Written form = counted(block, layout_of<DZBLOCK>, {}, block.dz_data);
  form.links.clear();
  return form;
}

Written written(const HLBLOCK& block) { return {40, 0, block.links, {}}; }

Written written(const ATBLOCK& block) {
  Written form = counted(block, layout_of<ATBLOCK>, {}, block.at_embedded_data);
  form.link_count = block.header.link_count;
  return form;
}

Written written(const CHBLOCK& block) {
  std::vector<LINK> links;
  for (const CHBLOCK::CHBLOCK_CHANNEL_t& element : block.channels) {
    links.insert(links.end(),
                 {element.ch_element_dg, element.ch_element_cg, element.ch_element_cn});
  }
  Written form = counted(block, layout_of<CHBLOCK>, links, {});
  form.link_count = 4 + block.channels.size();
  return form;
}

Written written(const EVBLOCK& block) {
  std::vector<LINK> links = block.ev_scope;
  append(links, block.ev_at_reference);
  return counted(block, layout_of<EVBLOCK>, links, {});
}

Written written(const CNBLOCK& block) {
  std::vector<LINK> links = block.cc_attachements;
  if (block.isDefaultXAxis()) {
    links.insert(links.end(), {block.cn_default_x_dgblock, block.cn_default_x_cgblock,
                               block.cn_default_x_cnblock});
  }
  return counted(block, layout_of<CNBLOCK>, links, {});
}

Written written(const CCBLOCK& block) {
  std::vector<UINT8> values;
  for (const REAL value : block.cc_vals) {
    appendBytes(values, value);
  }
  return counted(block, layout_of<CCBLOCK>, block.cc_refs, std::move(values));
}

Written written(const DLBLOCK& block) {
  std::vector<LINK> links;
  std::vector<UINT8> rest;
  for (const auto& [link, offset] : block.dl_data) {
    links.push_back(link);
    if (!block.isEqualLengthFlag()) {
      appendBytes(rest, offset);
    }
  }
  if (block.isEqualLengthFlag()) {
    appendBytes(rest, block.dl_equal_length);
  }
  return counted(block, layout_of<DLBLOCK>, links, std::move(rest));
}

}  // namespace mdf_fuzz
