#include "atblock.h"

#include <algorithm>
#include <cstring>

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"

namespace mdf_v4_10 {

ATBLOCK::ATBLOCK() : GENERALBLOCK(MDF_AT_ID, ATBLOCK_CONSTANT_SIZE, 0) {}

ATBLOCK::ATBLOCK(const char* _data, std::size_t _ndata) : GENERALBLOCK(MDF_AT_ID) {
  setup(_data, _ndata);
  setEmbeddedDataFlag(true);
}

ATBLOCK::ATBLOCK(std::istream& is) : ATBLOCK() {
  header.setLength(0);
  detail::BlockBody body(is, *this, detail::atblock_fields.takenWidth(), detail::BodyForm::all_64);
  if (!body.isReadable()) {
    return;
  }
  const auto [embedded_size] = detail::atblock_fields.take(body.in, *this);
  body.links.appendTo(links, 0);
  body.takeList(detail::hostSize(embedded_size), at_embedded_data);
}

void ATBLOCK::setup(const char* _data, std::size_t _ndata) {
  at_embedded_data = std::vector<UINT8>(_data, _data + _ndata);
  header.setLength(getSize());
}

void ATBLOCK::setMD5Checksum(const char* checksum) {
  if (std::strlen(checksum) == MDF_AT_MD5 && at_embedded_data.size() >= MDF_AT_MD5) {
    std::copy_n(checksum, MDF_AT_MD5, at_embedded_data.begin());
  }
}

void ATBLOCK::storeLink(MDF_AT_BLOCK_LINKS index, LINK link) {
  if (links.size() < AT_BLOCK_LINKS_NUM) {
    links.resize(AT_BLOCK_LINKS_NUM);
    header.setLinkCount(AT_BLOCK_LINKS_NUM);
  }
  links[index] = link;
}

void ATBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "ATBLOCK");
  dump.line("block size = ", getSize());
  dump.line("next attached block (pointer) = ", getNextATBlock());
  dump.line("filename text (pointer) = ", getTXFilenameBlock());
  dump.line("mimetype text (pointer) = ", getTXMimetypeBlock());
  dump.line("comment md (pointer) = ", getMDBlock());
  dump.part("flags = embedded(", isEmbeddedData());
  dump.part("), compressed(", isCompressedEmbeddedData());
  dump.part("), md5(", isMD5Checksum());
  dump.part(")");
  dump.endLine();
  dump.line("creator index = ", at_creator_index);
  if (isMD5Checksum()) {
    dump.part("md5 checksum = ");
    dump.raw(at_md5_checksum, sizeof at_md5_checksum);
    dump.endLine();
  }
  dump.line("original size = ", at_original_size);
  dump.line("embedded size = ", at_embedded_data.size());
  dump.part("embedded text data = ");
  dump.endLine();
  dump.raw(at_embedded_data.data(), at_embedded_data.size());
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const ATBLOCK& atb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.header(atb.header, atb.getSize());
  out.numbers(atb.links);
  out.fields(detail::atblock_fields, atb);
  out.bytes(atb.at_embedded_data);
  return out.finish();
}

}  // namespace mdf_v4_10
