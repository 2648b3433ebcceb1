#ifndef MDF_READER_BLOCKS_LINK_KINDS_H_
#define MDF_READER_BLOCKS_LINK_KINDS_H_

#include <cstdint>
#include <string_view>

namespace mdf_reader {

/// Which links of a type make up lists and trees, and which only refer to blocks that have their
/// place elsewhere. The former must not lead back to a block that they come from.
struct LinkKinds {
  bool has_next;            ///< link 0 leads to the next block of a chain
  std::uint32_t referring;  ///< bits of the links that only refer, for those up to 31
  bool others_refer;        ///< the same for all links after them

  bool refers(std::uint64_t index) const {
    return index < 32 ? ((referring >> index) & 1U) != 0 : others_refer;
  }
};

/// Nothing is known of other types' links: they refer.
LinkKinds linkKinds(std::string_view letters);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_LINK_KINDS_H_
