#ifndef MDF_FRAMEWORK_HEADER_SECTION_H_
#define MDF_FRAMEWORK_HEADER_SECTION_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include "block_id.h"
#include "export.h"
#include "types.h"

namespace mdf_v4_10 {

/// The 24 bytes that every block but the identification block begins with.
///
/// | Offset | Width | Field        |
/// |--------|-------|--------------|
/// | 0      | 4     | `mdfID`      |
/// | 4      | 4     | `reserved`   |
/// | 8      | 8     | `length`     |
/// | 16     | 8     | `link_count` |
class MDF_EXPORT HeaderSection {
 public:
  static constexpr std::size_t HEADER_SIZE = 24;

  explicit HeaderSection(MDF_Block_ID id) : mdfID(id) {}

  /// Bytes of the block, header included, fill bytes excluded.
  UINT64 getLength() const { return length; }
  void setLength(UINT64 _length) { length = _length; }

  /// Number of links that follow the header.
  UINT64 getLinkCount() const { return link_count; }
  void setLinkCount(UINT64 count) { link_count = count; }

  /// Takes length and link count from the 24 bytes of a header as they stand in a file. The
  /// identifier and the reserved bytes stay: an object keeps the identifier of its own class,
  /// whatever the file held.
  void readFromByteArray(const std::uint8_t* pdata);

  void print(std::ostream& os) const;

  MDF_Block_ID mdfID;
  detail::Array<UINT8, 4> reserved{};
  UINT64 length = 0;
  UINT64 link_count = 0;
};

/// Writes the 24 bytes of the header as they are stored.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const HeaderSection& header);

}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_HEADER_SECTION_H_
