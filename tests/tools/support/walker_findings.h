#ifndef MDF_TESTS_TOOLS_SUPPORT_WALKER_FINDINGS_H_
#define MDF_TESTS_TOOLS_SUPPORT_WALKER_FINDINGS_H_

#include <cstdint>
#include <string>

#include "reader/blocks/finding.h"

namespace mdf_tests {

/// The lines of what a walk and a dump find wrong, each sentence in this one place. `offset` and
/// `type` are those of the block.

inline std::string foundAt(std::uint64_t offset, const std::string& sentence) {
  return std::to_string(offset) + ": expected " + sentence + '\n';
}

inline std::string identificationCut(std::uint64_t bytes) {
  return foundAt(
      0, "64 bytes of identification, found " + std::to_string(bytes) + " up to the file's end");
}

inline std::string notMdf(const std::string& bytes) {
  return foundAt(0, R"(the file identifier "MDF     " or "UnFinMF ", found ")" + bytes + '"');
}

inline std::string headerBlockCut(std::uint64_t bytes) {
  return foundAt(64, "the header block's 24 bytes of common header, found " +
                         std::to_string(bytes) + " up to the file's end");
}

inline std::string noHeaderBlock(const std::string& bytes) {
  return foundAt(64, R"(the header block "##HD", found ")" + bytes + '"');
}

inline std::string blockCut(std::uint64_t offset, const std::string& type, std::uint64_t length,
                            std::uint64_t bytes) {
  return foundAt(offset, "the " + std::to_string(length) + " bytes of ##" + type + ", found " +
                             std::to_string(bytes) + " up to the file's end");
}

inline std::string lengthTooSmall(std::uint64_t offset, const std::string& type,
                                  std::uint64_t links, std::uint64_t length) {
  return foundAt(offset, "the length of ##" + type + " to hold its header and " +
                             std::to_string(links) + " links, found " + std::to_string(length));
}

inline std::string doesNotFit(std::uint64_t offset, const std::string& type, std::uint64_t length,
                              std::uint64_t links) {
  return foundAt(offset, "length and link count to fit ##" + type + ", found length " +
                             std::to_string(length) + " and " + std::to_string(links) + " links");
}

inline std::string linkOutside(std::uint64_t offset, const std::string& type, std::uint64_t link,
                               std::uint64_t file_size, std::int64_t target) {
  const std::string found = target < 0
                                ? std::to_string(target)
                                : mdf_reader::decimalAndHex(static_cast<std::uint64_t>(target));
  return foundAt(offset, "link " + std::to_string(link) + " of ##" + type +
                             " to lead into the file of " + std::to_string(file_size) +
                             " bytes, found " + found);
}

inline std::string linkToCutHeader(std::uint64_t offset, const std::string& type,
                                   std::uint64_t link, std::uint64_t bytes, std::uint64_t target) {
  return foundAt(offset, "link " + std::to_string(link) + " of ##" + type +
                             " to lead to the 24 bytes of a block header, found only " +
                             std::to_string(bytes) + " at " + mdf_reader::decimalAndHex(target));
}

inline std::string linkToNoBlock(std::uint64_t offset, const std::string& type, std::uint64_t link,
                                 const std::string& bytes, std::uint64_t target) {
  return foundAt(offset, "link " + std::to_string(link) + " of ##" + type +
                             R"( to lead to a block "##", found ")" + bytes + "\" at " +
                             mdf_reader::decimalAndHex(target));
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_WALKER_FINDINGS_H_
