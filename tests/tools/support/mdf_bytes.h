#ifndef MDF_TESTS_TOOLS_SUPPORT_MDF_BYTES_H_
#define MDF_TESTS_TOOLS_SUPPORT_MDF_BYTES_H_

#include <cstdint>
#include <initializer_list>
#include <string>

#include "support/bytes.h"

namespace mdf_tests {

/// The first 168 bytes of a file: identification, and header block with six links.
inline std::string fileHead(std::initializer_list<std::int64_t> header_links) {
  return "MDF     4.10    testprog" + zeros(4) + u16(410) + zeros(34) + header("HD", 104, 6) +
         listed(header_links) + zeros(32);
}

/// A block of a type that nobody knows, with links alone.
inline std::string unknownBlock(std::initializer_list<std::int64_t> links) {
  return Bytes().header("XX", 24 + 8 * links.size(), links.size()).links(links);
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_MDF_BYTES_H_
