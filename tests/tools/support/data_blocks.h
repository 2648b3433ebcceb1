#ifndef MDF_TESTS_TOOLS_SUPPORT_DATA_BLOCKS_H_
#define MDF_TESTS_TOOLS_SUPPORT_DATA_BLOCKS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "file_builder.h"

namespace mdf_tests {

/// A zlib stream that stores bytes as they are (RFC 1950, RFC 1951), in pieces of up to so many.
std::string storedStream(const std::string& bytes, std::size_t piece = 65535);

/// The first bytes of all rows, then the second ones, and so on; an incomplete row stays at
/// their end.
std::string transposed(const std::string& bytes, std::size_t columns);

/// A stream of zeros that are stored.
std::string zippedZeros(std::size_t count);

/// The contents of a zipped data block that says how many bytes come of its stream.
std::string zippedFields(std::uint64_t original_size, const std::string& stream,
                         const std::string& type = "DT", unsigned zip_type = 0,
                         std::uint32_t columns = 0);

/// A zipped data block in the place of one of this type, with bytes that are stored, transposed
/// before when there are columns.
std::uint64_t addZipped(FileBuilder& file, const std::string& type, const std::string& bytes,
                        std::uint32_t columns = 0);

/// A data list that says of each block that it begins the data, and the list that comes next.
std::uint64_t addList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                      std::uint64_t next = 0);

/// A data list whose blocks all hold so many bytes, but for the last one.
std::uint64_t addEqualList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                           std::uint64_t length);

/// A data list with the offset of each block in the data.
std::uint64_t addOffsetList(FileBuilder& file, const std::vector<std::uint64_t>& blocks,
                            const std::vector<std::uint64_t>& offsets);

/// What a list of values says beside its blocks.
struct ValueListSpec {
  std::vector<std::uint64_t> data;
  std::vector<std::uint64_t> invalidation;  ///< as many, or none
  std::vector<std::uint64_t> offsets;       ///< of each block's first sample, or
  std::uint64_t equal_count = 0;            ///< samples in each of them
};
std::uint64_t addValueList(FileBuilder& file, const ValueListSpec& spec);

/// A header of data lists.
std::uint64_t addHeaderList(FileBuilder& file, std::uint64_t list, std::uint16_t flags,
                            std::uint8_t zip_type);

/// Data in blocks of so many bytes, the last one shorter.
std::vector<std::uint64_t> addPieces(FileBuilder& file, const std::string& type,
                                     const std::string& bytes, std::size_t size);
std::vector<std::uint64_t> addZippedPieces(FileBuilder& file, const std::string& type,
                                           const std::string& bytes, std::size_t size,
                                           std::uint32_t columns = 0);

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

#endif  // MDF_TESTS_TOOLS_SUPPORT_DATA_BLOCKS_H_
