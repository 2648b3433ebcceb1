#include "txblock.h"

#include "../framework/dump.h"
#include "text.h"

namespace mdf_v4_10 {

TXBLOCK::TXBLOCK() : TXBLOCK(nullptr, 0) {}

TXBLOCK::TXBLOCK(const char* _data, std::size_t _ndata) : GENERALBLOCK(MDF_TX_ID) {
  setup(_data, _ndata);
}

TXBLOCK::TXBLOCK(std::istream& is) : GENERALBLOCK(MDF_TX_ID) { detail::readText(is, header, data); }

void TXBLOCK::setup(const char* _data, std::size_t _ndata) {
  detail::setUpText(_data, _ndata, header, data);
}

void TXBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "TXBLOCK");
  if (detail::printText(dump, data) != '\n') {
    dump.endLine();
  }
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const TXBLOCK& block) {
  return detail::writeText(os, block.header, block.data);
}

}  // namespace mdf_v4_10
