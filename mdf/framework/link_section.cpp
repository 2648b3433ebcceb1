#include "link_section.h"

#include <algorithm>
#include <ostream>

#include "block_writer.h"

namespace mdf_v4_10 {

UINT64 LinkSection::getValidLinkLength() const {
  return static_cast<UINT64>(std::count_if(begin(), end(), [](LINK link) { return link != 0; }));
}

std::ostream& operator<<(std::ostream& os, const LinkSection& links) {
  detail::Frame frame;
  detail::BlockWriter out(os, frame);
  out.numbers(links);
  return out.finish();
}

}  // namespace mdf_v4_10
