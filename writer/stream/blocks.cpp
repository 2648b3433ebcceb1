#include "blocks.h"

#include "../plan/texts.h"

namespace mdf_writer {

using mdf_v4_10::LINK;
using mdf_v4_10::MDBLOCK;
using mdf_v4_10::TXBLOCK;

LINK Blocks::place() {
  auto used = static_cast<std::uint64_t>(out_.tellp());
  for (; used % 8 != 0; ++used) {
    out_.put('\0');
  }
  return static_cast<LINK>(at_ + used);
}

LINK Blocks::addText(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  const auto known = texts_.find(text);
  if (known != texts_.end()) {
    return known->second;
  }
  const LINK link = add(TXBLOCK(text.data(), text.size()));
  texts_.emplace(text, link);
  return link;
}

LINK Blocks::addXml(const std::string& xml) { return add(MDBLOCK(xml.data(), xml.size())); }

LINK Blocks::addComment(std::string_view element, std::string_view text) {
  return text.empty() ? 0 : addXml(xmlComment(element, xmlElement("TX", text)));
}

}  // namespace mdf_writer
