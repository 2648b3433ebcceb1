#include "rdblock.h"

#include "plain_data.h"

namespace mdf_v4_10 {

RDBLOCK::RDBLOCK(const std::uint8_t* _data, std::size_t _ndata)
    : GENERALBLOCK(MDF_RD_ID, RDBLOCK_CONSTANT_SIZE, 0) {
  setup(_data, _ndata);
}

RDBLOCK::RDBLOCK(std::istream& is) : GENERALBLOCK(MDF_RD_ID, RDBLOCK_CONSTANT_SIZE, 0) {
  detail::readPlainData(is, header, rd_data);
}

void RDBLOCK::setup(const std::uint8_t* _data, std::size_t _ndata) {
  rd_data = std::vector<UINT8>(_data, _data + _ndata);
}

void RDBLOCK::print(std::ostream& os) const { detail::printPlainData(os, "RDBLOCK", rd_data); }

std::ostream& operator<<(std::ostream& os, const RDBLOCK& rdb) {
  return detail::writePlainData(os, rdb.header, rdb.rd_data);
}

}  // namespace mdf_v4_10
