#include "attachment.h"

#include "../../mdf/mdf_v4_10.h"
#include "texts.h"

namespace mdf_writer {

std::string Attachment::fault() const {
  if (name.empty() || !isUtf8(name)) {
    return "an attachment's name is missing or no text";
  }
  const std::string who = "attachment \"" + name + "\" ";
  if (!isUtf8(mime_type) || !isUtf8(comment)) {
    return who + "has a text that is not UTF-8";
  }
  if (is_external && !bytes.empty()) {
    return who + "is external and has bytes";
  }
  if (!md5.empty() && md5.size() != mdf_v4_10::ATBLOCK::MDF_AT_MD5) {
    return who + "has a digest that is not 16 bytes long";
  }
  return "";
}

}  // namespace mdf_writer
