#include "mdblock.h"

#include "../framework/dump.h"
#include "text.h"

namespace mdf_v4_10 {

MDBLOCK::MDBLOCK() : MDBLOCK(nullptr, 0) {}

MDBLOCK::MDBLOCK(const char* _data, std::size_t _ndata) : GENERALBLOCK(MDF_MD_ID) {
  setup(_data, _ndata);
}

MDBLOCK::MDBLOCK(std::istream& is) : GENERALBLOCK(MDF_MD_ID) { detail::readText(is, header, data); }

void MDBLOCK::setup(const char* _data, std::size_t _ndata) {
  detail::setUpText(_data, _ndata, header, data);
}

void MDBLOCK::print(std::ostream& os) const {
  detail::Dump dump(os, "MDBLOCK");
  detail::printText(dump, data);
  dump.end();
}

std::ostream& operator<<(std::ostream& os, const MDBLOCK& block) {
  return detail::writeText(os, block.header, block.data);
}

}  // namespace mdf_v4_10
