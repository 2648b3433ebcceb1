#include "dzblock.h"

#include "../framework/block_reader.h"
#include "../framework/block_writer.h"
#include "../framework/dump.h"
#include "layouts.h"
#include "plain_data.h"

namespace mdf_v4_10 {

DZBLOCK::DZBLOCK(std::uint16_t _org_block_type, DZ_ZIPTYPE_t _zipType, const std::uint8_t* _data,
                 std::size_t _ndata)
    : GENERALBLOCK(MDF_DZ_ID, DZBLOCK_CONSTANT_SIZE, 0) {
  setOriginalBlockType(_org_block_type);
  setZipType(_zipType);
  setupZipData(_data, _ndata);
}

DZBLOCK::DZBLOCK(std::istream& is) : GENERALBLOCK(MDF_DZ_ID, DZBLOCK_CONSTANT_SIZE, 0) {
  detail::BlockBody body(is, *this, detail::dzblock_fields.takenWidth(),
                         detail::BodyForm::without_links);
  if (!body.isReadable()) {
    return;
  }
  const auto [compressed_length] = detail::dzblock_fields.take(body.in.position(), *this);
  // The body holds the compressed bytes, too, but the data is what follows the block; deliberate.
  detail::readSizedData(is, compressed_length, dz_data);
}

void DZBLOCK::setupZipData(const std::uint8_t* _data, std::size_t _ndata) {
  dz_data = std::vector<UINT8>(_data, _data + _ndata);
}

void DZBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "DZBLOCK");
  dump.line("block size = ", getSize());
  dump.line("orig block type = ", dz_org_block_type);
  dump.line("zip type = ", getZipType());
  dump.line("zip parameter = ", dz_zip_parameter);
  dump.line("original size = ", dz_org_data_length);
  dump.line("zipped data size = ", dz_data.size());
  dump.hexDump(dz_data);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const DZBLOCK& dzb) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.header(dzb.header, dzb.getSize(), 0);
  out.fields(detail::dzblock_fields, dzb);
  out.bytes(dzb.dz_data);
  return out.finish();
}

}  // namespace mdf_v4_10
