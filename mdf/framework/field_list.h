#ifndef MDF_FRAMEWORK_FIELD_LIST_H_
#define MDF_FRAMEWORK_FIELD_LIST_H_

#include <array>
#include <cstddef>
#include <tuple>
#include <utility>

#include "header_section.h"
#include "types.h"
#include "wire.h"

/// A block's data section is stated once, as a constexpr list of its fields in file order:
///
///     inline constexpr auto dgblock_fields = detail::fieldList(
///         detail::field("dg_rec_id_size", &DGBLOCK::dg_rec_id_size),
///         detail::reserved("dg_reserved", &DGBLOCK::dg_reserved));
///
/// Writer, reader, size and any annotated view of the bytes derive from it.
namespace mdf_v4_10::detail {

/// A number, or an array of bytes, that is written and read.
template <class Block, class Value>
struct Field {
  const char* name;
  Value Block::*member;
  static constexpr std::size_t width = sizeof(Value);
  static constexpr std::size_t counts = 0;

  void put(Encoder& out, const Block& block) const { out.put(block.*member); }
  void take(Decoder& in, Block& block, UINT64*& /*counts*/) const { in.take(block.*member); }
};

/// Reserved bytes: written as they stand in the block, passed over on reading.
template <class Block, class Value>
struct ReservedField {
  const char* name;
  Value Block::*member;
  static constexpr std::size_t width = sizeof(Value);
  static constexpr std::size_t counts = 0;

  void put(Encoder& out, const Block& block) const { out.put(block.*member); }
  void take(Decoder& in, Block& /*block*/, UINT64*& /*counts*/) const { in.skip(width); }
};

/// The number of entries of one of the block's lists, cut to the width that the format gives it.
/// The block has no member for it; reading hands it to the caller.
template <class Count, class Block, class List>
struct CountField {
  const char* name;
  List Block::*list;
  static constexpr std::size_t width = sizeof(Count);
  static constexpr std::size_t counts = 1;

  void put(Encoder& out, const Block& block) const {
    out.put(static_cast<Count>((block.*list).size()));
  }
  void take(Decoder& in, Block& /*block*/, UINT64*& counts_taken) const {
    Count count = 0;
    in.take(count);
    *counts_taken++ = count;
  }
};

template <class... Entries>
class FieldList {
 public:
  constexpr explicit FieldList(Entries... entries) : entries_(entries...) {}

  /// Bytes of the whole list in the file.
  static constexpr std::size_t width() { return (Entries::width + ... + 0U); }

  template <class Block>
  void put(Encoder out, const Block& block) const {
    std::apply([&](const auto&... entry) { (entry.put(out, block), ...); }, entries_);
  }

  /// Takes every field; returns the counts on the way, in file order.
  template <class Block>
  std::array<UINT64, (Entries::counts + ... + 0U)> take(Decoder& in, Block& block) const {
    std::array<UINT64, (Entries::counts + ... + 0U)> counts_taken{};
    UINT64* next = counts_taken.data();
    std::apply([&](const auto&... entry) { (entry.take(in, block, next), ...); }, entries_);
    return counts_taken;
  }

  /// Calls visit(name, offset in the data section, width) for each entry in file order.
  template <class Visit>
  void forEach(Visit&& visit) const {
    std::size_t offset = 0;
    const auto show = [&](const auto& entry) {
      visit(entry.name, offset, entry.width);
      offset += entry.width;
    };
    std::apply([&](const auto&... entry) { (show(entry), ...); }, entries_);
  }

 private:
  std::tuple<Entries...> entries_;
};

template <class... Entries>
constexpr FieldList<Entries...> fieldList(Entries... entries) {
  return FieldList<Entries...>(entries...);
}

/// Bytes of a block with so many links and this data section, variable parts aside.
template <class... Entries>
constexpr std::size_t sizeWithLinks(std::size_t link_count, const FieldList<Entries...>& fields) {
  return HeaderSection::HEADER_SIZE + link_count * sizeof(LINK) + fields.width();
}

template <class Block, class Value>
constexpr Field<Block, Value> field(const char* name, Value Block::*member) {
  return {name, member};
}

template <class Block, class Value>
constexpr ReservedField<Block, Value> reserved(const char* name, Value Block::*member) {
  return {name, member};
}

template <class Count, class Block, class List>
constexpr CountField<Count, Block, List> countOf(const char* name, List Block::*list) {
  return {name, list};
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_FIELD_LIST_H_
