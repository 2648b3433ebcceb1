#ifndef MDF_FRAMEWORK_FIELD_LIST_H_
#define MDF_FRAMEWORK_FIELD_LIST_H_

#include <array>
#include <cstddef>
#include <cstring>
#include <tuple>
#include <utility>

#include "header_section.h"
#include "types.h"
#include "wire.h"

/// A block's data section is stated once, as a constexpr list of its fields in file order:
///
///     inline constexpr auto dgblock_fields = detail::fieldList(
///         detail::field<&DGBLOCK::dg_rec_id_size>("dg_rec_id_size"),
///         detail::reserved<&DGBLOCK::dg_reserved>("dg_reserved"));
///
/// Writer, reader, size and any annotated view of the bytes derive from it.
namespace mdf_v4_10::detail {

/// What an entry is for.
enum class EntryKind {
  field,     ///< a number, or an array of bytes, that is written and read
  reserved,  ///< reserved bytes: written as they stand in the block, passed over on reading
  count      ///< the number of entries of one of the block's lists
};

/// A member of a block as a part of its data section.
template <EntryKind Kind, auto Member>
struct MemberEntry;

template <EntryKind Kind, class Block, class Value, Value Block::*Member>
struct MemberEntry<Kind, Member> {
  const char* name;
  static constexpr EntryKind kind = Kind;
  static constexpr std::size_t width = sizeof(Value);
  static constexpr std::size_t alignment = alignof(Value);

  /// Where the member stands in the bytes of the block.
  static std::ptrdiff_t position(const Block& block) {
    return reinterpret_cast<const char*>(&(block.*Member)) - reinterpret_cast<const char*>(&block);
  }
  static void put(char* at, const Block& block) { storeLe(at, block.*Member); }
  static void take(const char* at, Block& block) { loadLe(at, block.*Member); }
};

/// The number of entries of a list, cut to the width that the format gives it. The block has no
/// member for it; reading hands it to the caller.
template <class Count, auto List>
struct CountEntry {
  const char* name;
  static constexpr EntryKind kind = EntryKind::count;
  static constexpr std::size_t width = sizeof(Count);
  static constexpr std::size_t alignment = 1;

  template <class Block>
  static void put(char* at, const Block& block) {
    storeLe(at, static_cast<Count>((block.*List).size()));
  }
  static UINT64 take(const char* at) { return loadLe<Count>(at); }
};

/// Neighbours in the file that are neighbours in memory, too, are copied in one piece.
template <class... Entries>
class FieldList {
 public:
  constexpr explicit FieldList(Entries... entries) : names_{entries.name...} {}

  /// Bytes of the whole list in the file.
  static constexpr std::size_t width() { return (Entries::width + ... + 0U); }

  /// Puts every field, one behind the other.
  template <class Block>
  static void put(char* at, const Block& block) {
    putFrom<0>(at, block);
  }

  /// Takes every field; returns the counts on the way, in file order.
  template <class Block>
  static auto take(const char* at, Block& block) {
    std::array<UINT64, ((Entries::kind == EntryKind::count ? 1U : 0U) + ... + 0U)> counts{};
    takeFrom<0>(at, block, counts.data());
    return counts;
  }

  template <class Block>
  static auto take(Decoder& in, Block& block) {
    const auto counts = take(in.position(), block);
    in.skip(width());
    return counts;
  }

  /// Calls visit(name, offset in the data section, width) for each entry in file order.
  template <class Visit>
  void forEach(Visit&& visit) const {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < entry_count; ++i) {
      visit(names_[i], offset, shapes[i].width);
      offset += shapes[i].width;
    }
  }

 private:
  struct Shape {
    EntryKind kind;
    std::size_t width;
    std::size_t alignment;
  };

  static constexpr std::size_t entry_count = sizeof...(Entries);
  static constexpr std::array<Shape, entry_count> shapes{
      Shape{Entries::kind, Entries::width, Entries::alignment}...};

  template <std::size_t Index>
  using Entry = std::tuple_element_t<Index, std::tuple<Entries...>>;

  /// The bytes of so many entries from one on.
  static constexpr std::size_t widthOf(std::size_t first, std::size_t count) {
    std::size_t sum = 0;
    for (std::size_t i = first; i < first + count; ++i) {
      sum += shapes[i].width;
    }
    return sum;
  }

  /// How many entries from one on stand in memory without a gap, unless the compiler has reasons of
  /// its own: none needs to be aligned better than its place behind the first one is.
  static constexpr std::size_t runLength(std::size_t first, bool reserved_too) {
    std::size_t end = first + 1;
    while (end < entry_count && shapes[end].kind != EntryKind::count &&
           (reserved_too || shapes[end].kind == EntryKind::field) &&
           shapes[end].alignment <= shapes[first].alignment &&
           widthOf(first, end - first) % shapes[end].alignment == 0) {
      ++end;
    }
    return end - first;
  }

  /// Whether the bytes of a run in memory are those in the file. Compilers know at compile time.
  template <std::size_t First, class Block, std::size_t... Next>
  static bool isOnePiece(const Block& block, std::index_sequence<Next...> /*but_the_last*/) {
    return !host_is_big_endian && ((Entry<First + Next>::position(block) +
                                        static_cast<std::ptrdiff_t>(Entry<First + Next>::width) ==
                                    Entry<First + Next + 1>::position(block)) &&
                                   ...);
  }

  template <std::size_t First, class Block>
  static void putFrom(char* at, const Block& block) {
    if constexpr (First < entry_count) {
      constexpr std::size_t length =
          shapes[First].kind == EntryKind::count ? 1 : runLength(First, true);
      putRun<First>(at, block, std::make_index_sequence<length>());
      putFrom<First + length>(at + widthOf(First, length), block);
    }
  }

  template <std::size_t First, class Block, std::size_t... Next>
  static void putRun(char* at, const Block& block, std::index_sequence<Next...> /*run*/) {
    if constexpr (sizeof...(Next) > 1) {
      if (isOnePiece<First>(block, std::make_index_sequence<sizeof...(Next) - 1>())) {
        std::memcpy(at, reinterpret_cast<const char*>(&block) + Entry<First>::position(block),
                    widthOf(First, sizeof...(Next)));
        return;
      }
    }
    (Entry<First + Next>::put(at + widthOf(First, Next), block), ...);
  }

  template <std::size_t First, class Block>
  static void takeFrom(const char* at, Block& block, UINT64* counts) {
    if constexpr (First < entry_count) {
      constexpr EntryKind kind = shapes[First].kind;
      constexpr std::size_t length = kind == EntryKind::field ? runLength(First, false) : 1;
      if constexpr (kind == EntryKind::field) {
        takeRun<First>(at, block, std::make_index_sequence<length>());
      } else if constexpr (kind == EntryKind::count) {
        *counts++ = Entry<First>::take(at);
      }
      takeFrom<First + length>(at + widthOf(First, length), block, counts);
    }
  }

  template <std::size_t First, class Block, std::size_t... Next>
  static void takeRun(const char* at, Block& block, std::index_sequence<Next...> /*run*/) {
    if constexpr (sizeof...(Next) > 1) {
      if (isOnePiece<First>(block, std::make_index_sequence<sizeof...(Next) - 1>())) {
        std::memcpy(reinterpret_cast<char*>(&block) + Entry<First>::position(block), at,
                    widthOf(First, sizeof...(Next)));
        return;
      }
    }
    (Entry<First + Next>::take(at + widthOf(First, Next), block), ...);
  }

  std::array<const char*, entry_count> names_;
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

template <auto Member>
constexpr MemberEntry<EntryKind::field, Member> field(const char* name) {
  return {name};
}

template <auto Member>
constexpr MemberEntry<EntryKind::reserved, Member> reserved(const char* name) {
  return {name};
}

template <class Count, auto List>
constexpr CountEntry<Count, List> countOf(const char* name) {
  return {name};
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_FIELD_LIST_H_
