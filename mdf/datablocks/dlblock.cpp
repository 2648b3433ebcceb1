#include "dlblock.h"

#include <algorithm>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"

namespace mdf_v4_10 {

namespace {

/// The next list's link. The links read stand behind it, the file's next-list link first. That the
/// pairs start at that link, and not at the first data link, is deliberate.
constexpr std::size_t own_link_count = DLBLOCK::dl_dl_next + 1;

void takePairsOfEqualLength(DLBLOCK& dlb, std::istream& is, detail::Decoder& in) {
  if (in.remaining() < dlblock_equal_length_fields.width()) {
    // With the flag the equal length is one of the fixed fields, so without it the block is
    // unreadable, and nothing but the header is taken.
    dlb.links.resize(own_link_count);
    dlb.dl_flags = 0;
    is.clear(std::ios_base::badbit);
    return;
  }
  dlblock_equal_length_fields.take(in, dlb);
  dlb.dl_data.reserve(dlb.links.size() - own_link_count);
  for (std::size_t i = own_link_count; i < dlb.links.size(); ++i) {
    dlb.dl_data.emplace_back(dlb.links[i], dlb.dl_equal_length);
  }
}

void takePairsWithOffsets(DLBLOCK& dlb, detail::Decoder& in, UINT64 count) {
  const UINT64 links = dlb.links.size() - own_link_count;
  const UINT64 offsets = in.remaining() / sizeof(UINT64);
  const auto pairs = static_cast<std::size_t>(std::min({count, links, offsets}));
  dlb.dl_data.reserve(pairs);
  for (std::size_t i = 0; i < pairs; ++i) {
    UINT64 offset = 0;
    in.take(offset);
    dlb.dl_data.emplace_back(dlb.links[own_link_count + i], offset);
  }
}

}  // namespace

DLBLOCK::DLBLOCK(bool _equalLength, LINK _dlNext)
    : GENERALBLOCK(MDF_DL_ID, DLBLOCK_CONSTANT_SIZE, own_link_count) {
  setEqualLengthFlag(_equalLength);
  setNextDlblock(_dlNext);
}

// The nil link stays in front of the links read.
DLBLOCK::DLBLOCK(std::istream& is) : DLBLOCK(false, 0) {
  detail::BlockBody body;
  if (!body.read(is, *this, dlblock_fields.width(), detail::LengthBits::all_64)) {
    return;
  }
  const auto [count] = dlblock_fields.take(body.in, *this);
  if (isEqualLengthFlag()) {
    takePairsOfEqualLength(*this, is, body.in);
  } else {
    takePairsWithOffsets(*this, body.in, count);
  }
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
    return DLBLOCK_CONSTANT_SIZE + dlblock_equal_length_fields.width() + pairs * sizeof(LINK);
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
  detail::BlockWriter out(os);
  out.header(dlb.header, dlb.getSize(), UINT64{dlb.dl_data.size()} + 1);
  out.numbers(dlb.links);
  for (const auto& pair : dlb.dl_data) {
    out.number(pair.first);
  }
  out.fields(dlblock_fields, dlb);
  if (dlb.isEqualLengthFlag()) {
    out.fields(dlblock_equal_length_fields, dlb);
  } else {
    for (const auto& pair : dlb.dl_data) {
      out.number(pair.second);
    }
  }
  return out.finish();
}

}  // namespace mdf_v4_10
