#include "dlblock.h"

#include <algorithm>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

namespace {

/// The next list's link.
constexpr std::size_t own_link_count = detail::dlblock_links.size();

/// The file's first link is the next list's. That the pairs start at it, and not at the first data
/// link, is deliberate.
void takePairs(DLBLOCK& dlb, std::istream& is, detail::BlockBody& body, UINT64 count) {
  const char* offset = body.in.position();
  std::size_t offset_width = sizeof(UINT64);
  std::size_t pairs = body.links.size();
  if (dlb.isEqualLengthFlag()) {
    if (body.in.remaining() < detail::dlblock_equal_length_fields.width()) {
      // With the flag the equal length is one of the fixed fields, so without it the block is
      // unreadable, and nothing but the header is taken.
      dlb.dl_flags = 0;
      body.links = {};
      is.clear(std::ios_base::badbit);
      return;
    }
    detail::dlblock_equal_length_fields.take(offset, dlb);
    // Every pair has the one length.
    offset_width = 0;
  } else {
    const std::size_t offsets = body.in.remaining() / offset_width;
    pairs = std::min(std::min(pairs, offsets), detail::hostSize(count));
  }
  std::vector<std::pair<LINK, UINT64>> data(pairs);
  for (std::size_t i = 0; i < pairs; ++i, offset += offset_width) {
    data[i] = {body.links[i], detail::loadLe<UINT64>(offset)};
  }
  dlb.dl_data.swap(data);
}

}  // namespace

DLBLOCK::DLBLOCK(bool _equalLength, LINK _dlNext)
    : GENERALBLOCK(MDF_DL_ID, DLBLOCK_CONSTANT_SIZE, own_link_count) {
  setEqualLengthFlag(_equalLength);
  setNextDlblock(_dlNext);
}

// The nil link stays before the links read.
DLBLOCK::DLBLOCK(std::istream& is)
    : GENERALBLOCK(MDF_DL_ID, DLBLOCK_CONSTANT_SIZE, own_link_count, LinksFollow()) {
  detail::BlockBody body(is, *this, detail::dlblock_fields.takenWidth(), detail::BodyForm::all_64);
  if (body.isReadable()) {
    const auto [count] = detail::dlblock_fields.take(body.in, *this);
    takePairs(*this, is, body, count);
  }
  body.links.appendTo(links, own_link_count);
}

void DLBLOCK::addData(LINK _dt_sd_rd_dzblock, UINT64 _offset) {
  if (_dt_sd_rd_dzblock != 0) {
    dl_data.emplace_back(_dt_sd_rd_dzblock, _offset);
  }
}

bool DLBLOCK::getDataAtIndex(UINT32 _elementIndex, LINK& _dt_sd_rd_dzblock, UINT64& _offset) const {
  if (_elementIndex >= dl_data.size()) {
    return false;
  }
  _dt_sd_rd_dzblock = dl_data[_elementIndex].first;
  _offset = dl_data[_elementIndex].second;
  return true;
}

std::uint64_t DLBLOCK::getSize() const {
  const std::uint64_t pairs = dl_data.size();
  if (isEqualLengthFlag()) {
    return DLBLOCK_CONSTANT_SIZE + detail::dlblock_equal_length_fields.width() +
           pairs * sizeof(LINK);
  }
  return DLBLOCK_CONSTANT_SIZE + pairs * (sizeof(LINK) + sizeof(UINT64));
}

void DLBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "DLBLOCK");
  dump.line("block size = ", getSize());
  dump.line("next DL block = ", getNextDlblock());
  dump.line("equal length flag = ", isEqualLengthFlag());
  dump.line("equal length value = ", dl_equal_length);
  dump.part("data + offset pairs:");
  dump.endLine();
  for (const auto& [link, offset] : dl_data) {
    dump.part("data ptr = ", link);
    dump.line(", offset = ", offset);
  }
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const DLBLOCK& dlb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.header(dlb.header, dlb.getSize(), dlb.dl_data.size() + 1);
  out.numbers(dlb.links);
  out.column(dlb.dl_data, &std::pair<LINK, UINT64>::first);
  out.fields(detail::dlblock_fields, dlb);
  if (dlb.isEqualLengthFlag()) {
    out.fields(detail::dlblock_equal_length_fields, dlb);
  } else {
    out.column(dlb.dl_data, &std::pair<LINK, UINT64>::second);
  }
  return out.finish();
}

}  // namespace mdf_v4_10
