#ifndef MDF_TESTS_TOOLS_SUPPORT_ATTACHMENT_BLOCKS_H_
#define MDF_TESTS_TOOLS_SUPPORT_ATTACHMENT_BLOCKS_H_

#include <cstdint>
#include <string>

#include "file_builder.h"

namespace mdf_tests {

/// An attachment block in the making.
struct AttachmentSpec {
  std::string name;
  std::string mime_type;
  std::uint16_t flags = 1;  ///< embedded
  std::string digest = std::string(16, '\0');
  std::uint64_t original_size = 0;
  std::string data;  ///< as it is stored
};

std::uint64_t addAttachment(FileBuilder& file, const AttachmentSpec& spec);

/// "abc" as a zlib stream, and the MD5 digest of it (RFC 1321, A.5).
std::string zippedAbc();
std::string digestOfAbc();

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_ATTACHMENT_BLOCKS_H_
