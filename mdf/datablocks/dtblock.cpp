#include "dtblock.h"

#include "plain_data.h"

namespace mdf_v4_10 {

DTBLOCK::DTBLOCK() : GENERALBLOCK(MDF_DT_ID, DTBLOCK_CONSTANT_SIZE, 0) {}

DTBLOCK::DTBLOCK(const std::uint8_t* _data, std::size_t _ndata) : DTBLOCK() {
  setup(_data, _ndata);
}

DTBLOCK::DTBLOCK(std::istream& is) : DTBLOCK() { detail::readPlainData(is, header, dt_data); }

void DTBLOCK::setup(const std::uint8_t* _data, std::size_t _ndata) {
  dt_data = std::vector<UINT8>(_data, _data + _ndata);
}

void DTBLOCK::print(std::ostream& os) const { detail::printPlainData(os, "DTBLOCK", dt_data); }

std::ostream& operator<<(std::ostream& os, const DTBLOCK& dtb) {
  return detail::writePlainData(os, dtb.header, dtb.dt_data);
}

}  // namespace mdf_v4_10
