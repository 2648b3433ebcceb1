#ifndef MDF_READER_BLOCKS_BLOCK_TYPE_H_
#define MDF_READER_BLOCKS_BLOCK_TYPE_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "framework/field.h"

namespace mdf_reader {

using mdf_v4_10::detail::FieldKind;
using FieldLayout = mdf_v4_10::detail::Field;

/// A link of a block.
struct LinkLayout {
  std::string_view role;  ///< the format's name of it, such as "cn_cc_conversion"
  std::string_view
      targets;          ///< letters of the types it may lead to, separated by blanks; "" is any
  bool refers = false;  ///< to a block that has its place elsewhere; others make up lists and
                        ///< trees, and must not lead back to a block that they come from
};

/// In every chain, the link to the next block.
inline constexpr std::size_t next_link = 0;

/// What a block's field must be.
struct FieldCondition {
  std::string_view field;
  std::uint64_t mask;
  std::uint64_t value;
  bool is_equal = true;  ///< or must differ

  bool holdsFor(std::uint64_t number) const { return ((number & mask) == value) == is_equal; }
};

/// How many there are of something that a block may have.
struct Amount {
  enum Kind {
    one,      ///< without an index in its name
    counted,  ///< as many as a field says
    all,      ///< all that are there; the field says how many there should be
  };
  Kind kind;
  std::string_view field = {};            ///< the field with the count, "" for none
  std::vector<FieldCondition> when = {};  ///< otherwise there is none
};

/// Links that may follow those that each block of a type has.
struct MoreLinks {
  std::vector<LinkLayout> links;  ///< those of one element: of several, the roles are its parts
  Amount elements;
  std::string_view element = {};  ///< what an element of several links is called
};

/// Numbers of 8 bytes that may follow the fields.
struct MoreNumbers {
  std::string_view name;
  FieldKind kind;
  Amount amount;
};

/// Types of blocks that are drawn in the same colour.
enum class BlockFamily { file, group, channel, conversion, text, data, other };
inline constexpr std::size_t family_count = 7;

/// What a block is made for.
enum class Contents {
  description,  ///< its links and fields
  text,
  data,          ///< bytes of records or values
  zipped_data,   ///< the same, zipped
  data_apart,    ///< parts of a reduction's data, which is not read
  data_list,     ///< links to blocks with data
  list_of_lists  ///< a link to lists of data
};

/// Whether the stored link count tells how many links a block has.
enum class LinkCount {
  right,
  left_out,    ///< 0 may be stored for the links that each block of the type has
  by_elements  ///< each element counts as one, however many links it has
};

/// What a block of one type is: 24 bytes of header, links, fields, and what follows them up to the
/// block's end. Walking, checking, dumping, drawing and describing know types by this alone.
struct BlockType {
  std::string_view letters;
  std::string_view title;  ///< the block's common name, "channel group"; "" for an unknown type
  BlockFamily family = BlockFamily::other;
  Contents contents = Contents::description;
  std::vector<LinkLayout> links = {};  ///< those that each block of the type has, in order
  std::vector<FieldLayout> fields = {};
  std::vector<MoreLinks> more_links = {};
  std::string_view bytes = {};  ///< what the bytes after the fields are called; or there are
  std::vector<MoreNumbers> numbers = {};
  LinkCount link_count = LinkCount::right;
  unsigned open_flag = 0;  ///< of Identification::StandardFlag: the last one's length is open

  bool isKnown() const { return !title.empty(); }
  bool refers(std::uint64_t link) const {
    return link < links.size() ? links[static_cast<std::size_t>(link)].refers : others_refer;
  }
  /// Whether there is nothing but data after the header.
  bool isData() const {
    return contents == Contents::data || contents == Contents::zipped_data ||
           contents == Contents::data_apart;
  }
  /// Bytes of the fields together.
  std::size_t fieldsWidth() const {
    return fields.empty() ? 0 : fields.back().offset + fields.back().width;
  }

  // The table derives these from the rest.
  bool has_next = false;     ///< its blocks make chains, by next_link
  bool may_refer = true;     ///< some link refers
  bool others_refer = true;  ///< links beyond those that each block has
};

/// The type with these letters; one that is not known and has neither links nor fields for others.
const BlockType& typeOf(std::string_view letters);

/// The fields of the 64 bytes of identification, from the file's first byte on. Those that version
/// 4 reserves are named as the versions before name them, and the flags of unfinished files apart.
/// Bytes are characters here.
const std::vector<FieldLayout>& identificationFields();

/// Whether these letters are among the targets of a link.
bool isAmongTargets(std::string_view targets, std::string_view letters);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_BLOCK_TYPE_H_
