#include "general_block.h"

#include "block_reader.h"

namespace mdf_v4_10 {

GENERALBLOCK::GENERALBLOCK(std::uint16_t id, UINT64 length, UINT64 linkCount)
    : header(MDF_Block_ID(id)), links(detail::hostSize(linkCount), LINK{0}) {
  header.length = length;
  header.link_count = linkCount;
}

GENERALBLOCK::GENERALBLOCK(std::uint16_t id, UINT64 length, UINT64 linkCount,
                           LinksFollow /*no_links_yet*/)
    : header(MDF_Block_ID(id)) {
  header.length = length;
  header.link_count = linkCount;
}

LINK GENERALBLOCK::seekg(std::ifstream& ifs, LINK offs) const {
  ifs.seekg(static_cast<std::streamoff>(offs), std::ios_base::beg);
  return offs;
}

void GENERALBLOCK::read(std::istream& is, void* pdata, std::size_t n) {
  detail::readOrBad(is, static_cast<char*>(pdata), n);
}

void GENERALBLOCK::writex(std::ostream& os, const void* pdata, std::size_t n) {
  os.write(static_cast<const char*>(pdata), static_cast<std::streamsize>(n));
}

void GENERALBLOCK::setLinkAt(std::size_t index, LINK link) {
  if (index >= links.size()) {
    links.resize(index + 1, LINK{0});
  }
  links[index] = link;
}

}  // namespace mdf_v4_10
