#ifndef MDF_FILEBLOCKS_CHBLOCK_H_
#define MDF_FILEBLOCKS_CHBLOCK_H_

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "../framework/export.h"
#include "../framework/general_block.h"
#include "../framework/types.h"

namespace mdf_v4_10 {

/// A channel hierarchy block: one node of a tree over the file's channels that is independent of
/// how they are stored. It has a type, a next sibling, a first child, a name, and a list of
/// elements that each name one channel.
///
/// The four fixed links stand in `links`; the elements are kept apart and become links in the file
/// only, three for each element.
class MDF_EXPORT CHBLOCK : public GENERALBLOCK {
 public:
  /// Size without elements.
  static constexpr std::size_t CHBLOCK_CONSTANT_SIZE = 64;
  static constexpr std::uint16_t MDF_CH_ID = 0x4843;

  enum MDF_CH_TYPE_t : int {
    CH_TYPE_GROUP = 0,
    CH_TYPE_FUNCTION = 1,
    CH_TYPE_STRUCTURE = 2,
    CH_TYPE_MAP_LIST = 3,
    CH_TYPE_IN_MEASUREMENT = 4,
    CH_TYPE_OUT_MEASUREMENT = 5,
    CH_TYPE_LOC_MEASUREMENT = 6,
    CH_TYPE_DEF_CHARACTERISTIC = 7,
    CH_TYPE_REF_CHARACTERISTIC = 8
  };

  /// The four fixed links.
  enum MDF_CH_BLOCK_LINKS {
    ch_ch_next = 0,    ///< next channel hierarchy block on the same level
    ch_ch_first = 1,   ///< first child
    ch_tx_name = 2,    ///< text block with the name
    ch_md_comment = 3  ///< comment, a text or metadata block
  };

  /// One element: a channel, and the groups that it belongs to.
  struct CHBLOCK_CHANNEL_t {
    LINK ch_element_dg = 0;  ///< data group block
    LINK ch_element_cg = 0;  ///< channel group block
    LINK ch_element_cn = 0;  ///< channel block
  };

  explicit CHBLOCK(MDF_CH_TYPE_t type);

  /// Reads the block at the stream's position. The elements overlap: the first is formed from the
  /// file's links 4 to 6, the next one from links 5 to 7 and so on, so that L links give L - 6
  /// elements. With the link count that the writer writes, a block without elements comes back as
  /// it was written; one with a single element comes back without it, and with its type taken from
  /// inside the element. A short stream keeps its own end-of-file and fail bits and leaves the
  /// block without links.
  explicit CHBLOCK(std::istream& is);

  MDF_CH_TYPE_t getType() const { return static_cast<MDF_CH_TYPE_t>(ch_type); }

  /// Also removes what the new type forbids: a function's elements, a map list's first child, the
  /// name of a measurement or characteristic. The next sibling is not checked again.
  void setType(MDF_CH_TYPE_t type);

  /// Stores the next sibling, whose type is `type`; the link becomes nil if such a block may not
  /// follow this one.
  void setNextCHBlock(LINK link, MDF_CH_TYPE_t type);
  LINK getNextCHBlock() const { return linkAt(ch_ch_next); }
  LINK seekgNextCHBlock(std::ifstream& ifs) const { return seekg(ifs, getNextCHBlock()); }

  /// Stores the first child; the link becomes nil in a map list.
  void setFirstCHBlock(LINK link);
  LINK getFirstCHBlock() const { return linkAt(ch_ch_first); }
  LINK seekgFirstCHBlock(std::ifstream& ifs) const { return seekg(ifs, getFirstCHBlock()); }

  /// Stores the name; only groups, functions, structures and map lists have one, in any other block
  /// the link becomes nil.
  void setTXNameBlock(LINK link);
  LINK getTXNameBlock() const { return linkAt(ch_tx_name); }
  LINK seekgTXNameBlock(std::ifstream& ifs) const { return seekg(ifs, getTXNameBlock()); }

  void setMDBlock(LINK link) { setLinkAt(ch_md_comment, link); }
  LINK getMDBlock() const { return linkAt(ch_md_comment); }
  LINK seekgMDBlock(std::ifstream& ifs) const { return seekg(ifs, getMDBlock()); }

  UINT32 getElementCount() const { return static_cast<UINT32>(channels.size()); }

  /// Appends an element, whatever the block's type.
  void addChannelElement(LINK dg, LINK cg, LINK cn) { channels.push_back({dg, cg, cn}); }
  void addChannelElement(CHBLOCK_CHANNEL_t element) { channels.push_back(element); }

  /// Hands out the element at an index; false and untouched outputs when there is none.
  bool getChannelElementAtIndex(UINT32 _index, LINK& dg, LINK& cg, LINK& cn) const;
  bool getChannelElementAtIndex(UINT32 _index, CHBLOCK_CHANNEL_t& element) const;

  /// Removes the element at an index; does nothing when there is none.
  void removeChannelAtIndex(UINT32 _index) { removeEntryAt(channels, _index); }

  /// Bytes that the writer writes.
  std::uint64_t getSize() const;

  /// The XML schema that the comment follows.
  std::string getValidMDXMLSchemaName() const { return "ch_comment.xsd"; }

  /// The line of the first child deliberately shows the comment link.
  void print(std::ostream& os) const;

  UINT8 ch_type = 0;  ///< an MDF_CH_TYPE_t
  detail::Array<UINT8, 3> ch_reserved{};
  std::vector<CHBLOCK_CHANNEL_t> channels;

 private:
  bool mayPrecede(MDF_CH_TYPE_t next) const;
};

/// Writes the block. Its length follows from its elements; the link count is the number of elements
/// and 4, although each element takes three links, and deliberately so.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const CHBLOCK& chb);

}  // namespace mdf_v4_10

#endif  // MDF_FILEBLOCKS_CHBLOCK_H_
