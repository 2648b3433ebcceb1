#ifndef MDF_READER_BLOCKS_BLOCK_LAYOUT_H_
#define MDF_READER_BLOCKS_BLOCK_LAYOUT_H_

#include <cstddef>
#include <cstdint>
#include <string>
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
      targets;  ///< letters of the types it may lead to, separated by blanks; "" is any
};

/// What follows the fields, up to the block's end.
struct TailLayout {
  std::string_view name;  ///< "" for nothing
  FieldKind kind = FieldKind::bytes;
  std::size_t width = 1;  ///< bytes of one element
};

/// How a block of one type is laid out: 24 bytes of header, links, fields, tail.
struct BlockLayout {
  std::string_view letters;
  std::string_view title;         ///< the block's common name: "channel group"
  std::vector<LinkLayout> links;  ///< those that each block of the type has, in order
  std::vector<FieldLayout> fields;
  TailLayout tail;

  /// Bytes of the fields together.
  std::size_t fieldsWidth() const;
};

/// The layout of the type with these letters: those of the library's classes, and the channel array
/// block ("CA") and the blocks of version 4.2, which it has no classes for. Null for any other.
const BlockLayout* findLayout(std::string_view letters);

/// The fields of the 64 bytes of identification, from the file's first byte on. Those that version
/// 4 reserves are named as the versions before name them, and the flags of unfinished files apart.
/// Bytes are characters here.
const std::vector<FieldLayout>& identificationFields();

/// Whether a link with these targets may lead to a block with these letters.
bool mayLeadTo(const LinkLayout& link, std::string_view letters);
bool isAmongTargets(std::string_view targets, std::string_view letters);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_BLOCK_LAYOUT_H_
