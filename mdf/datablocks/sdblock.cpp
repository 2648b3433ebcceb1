#include "sdblock.h"

#include "plain_data.h"

namespace mdf_v4_10 {

SDBLOCK::SDBLOCK() : GENERALBLOCK(MDF_SD_ID, SDBLOCK_CONSTANT_SIZE, 0) {}

SDBLOCK::SDBLOCK(const std::uint8_t* _data, std::size_t _ndata) : SDBLOCK() {
  setup(_data, _ndata);
}

SDBLOCK::SDBLOCK(std::istream& is) : SDBLOCK() { detail::readPlainData(is, header, sd_data); }

void SDBLOCK::setup(const std::uint8_t* _data, std::size_t _ndata) {
  sd_data = std::vector<UINT8>(_data, _data + _ndata);
}

void SDBLOCK::print(std::ostream& os) const { detail::printPlainData(os, "SDBLOCK", sd_data); }

std::ostream& operator<<(std::ostream& os, const SDBLOCK& sdb) {
  return detail::writePlainData(os, sdb.header, sdb.sd_data);
}

}  // namespace mdf_v4_10
