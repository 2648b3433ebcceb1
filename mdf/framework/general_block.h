#ifndef MDF_FRAMEWORK_GENERAL_BLOCK_H_
#define MDF_FRAMEWORK_GENERAL_BLOCK_H_

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <istream>
#include <ostream>
#include <vector>

#include "export.h"
#include "header_section.h"
#include "link_section.h"
#include "types.h"

namespace mdf_v4_10 {

/// The base of every block class: the common header and the links. Blocks are plain values; they
/// know one another only by file offsets.
class MDF_EXPORT GENERALBLOCK {
 public:
  /// A block without links, its length not known yet.
  explicit GENERALBLOCK(std::uint16_t id) : header(MDF_Block_ID(id)) {}

  /// A block of a stated length with `linkCount` nil links.
  GENERALBLOCK(std::uint16_t id, UINT64 length, UINT64 linkCount);

  /// The number of fill bytes that bring the header's length to the next multiple of 8. It is kept
  /// for the application, which places the blocks: no writer emits fill bytes.
  void set8BytePadding() { m_pad = static_cast<std::uint8_t>((8 - header.length % 8) % 8); }
  void setPadding(std::uint8_t padding) { m_pad = padding; }
  std::uint8_t getPadding() const { return m_pad; }

  HeaderSection& getHeader() { return header; }
  const HeaderSection& getHeader() const { return header; }

  HeaderSection header;
  LinkSection links;
  std::uint8_t m_pad = 0;

 protected:
  /// For a constructor from a stream: a block that says that it has `linkCount` nil links, and that
  /// gets them together with the links that are read, so that memory is taken once.
  struct LinksFollow {};
  GENERALBLOCK(std::uint16_t id, UINT64 length, UINT64 linkCount, LinksFollow);

  /// Positions the stream at an absolute offset and returns the offset. A nil link is no special
  /// case: it leads to offset 0. Success or failure is in the stream's state.
  LINK seekg(std::ifstream& ifs, LINK offs) const;

  /// Extracts `n` bytes. When fewer come, the stream's state becomes exactly bad.
  static void read(std::istream& is, void* pdata, std::size_t n);

  static void writex(std::ostream& os, const void* pdata, std::size_t n);

  /// The link at `index`, or 0 when there are fewer links, as after a failed read.
  LINK linkAt(std::size_t index) const { return entryAt(links, index); }

  /// Stores a link at `index`, with nil links before it if there are fewer.
  void setLinkAt(std::size_t index, LINK link);

  /// The entry at `index` of a list of links, or 0 when there is none. This serves the lists whose
  /// bound lets an index equal to the count through, too: there is no entry there.
  static LINK entryAt(const std::vector<LINK>& list, std::size_t index) {
    return index < list.size() ? list[index] : 0;
  }

  /// Positions the stream at the entry at `index` of a list of links; 0 and no move without one.
  LINK seekgEntryAt(std::ifstream& ifs, const std::vector<LINK>& list, std::size_t index) const {
    return index < list.size() ? seekg(ifs, list[index]) : 0;
  }

  /// Stores the entry at `index` in `entry`; false, and `entry` untouched, when there is none.
  template <class Entry>
  static bool copyEntryAt(const std::vector<Entry>& list, std::size_t index, Entry& entry) {
    if (index >= list.size()) {
      return false;
    }
    entry = list[index];
    return true;
  }

  /// Removes the entry at `index` if there is one; later entries move one place forward.
  template <class Entry>
  static void removeEntryAt(std::vector<Entry>& list, std::size_t index) {
    if (index < list.size()) {
      list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
    }
  }
};

}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_GENERAL_BLOCK_H_
