#ifndef MDF_FRAMEWORK_FIELD_LIST_H_
#define MDF_FRAMEWORK_FIELD_LIST_H_

#include <array>
#include <cstddef>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "field.h"
#include "field_runs.h"
#include "header_section.h"
#include "types.h"
#include "wire.h"

/// A block's data section is stated once, as a constexpr list of its fields in file order:
///
///     inline constexpr auto dgblock_fields = fieldList(
///         field<&DGBLOCK::dg_rec_id_size>("dg_rec_id_size"),
///         reserved<&DGBLOCK::dg_reserved>("dg_reserved"));
///
/// Writer, reader, size and any annotated view of the bytes derive from it.
namespace mdf_v4_10::detail {

template <class Block, class Value>
constexpr FieldKind kindOf(Value Block::* /*member*/) {
  if (std::is_array_v<Value>) {
    return FieldKind::bytes;
  }
  if (std::is_floating_point_v<Value>) {
    return FieldKind::real;
  }
  return std::is_signed_v<Value> ? FieldKind::signed_number : FieldKind::unsigned_number;
}

/// A member of a block as a part of its data section.
template <EntryKind Kind, auto Member>
struct MemberEntry;

template <EntryKind Kind, class Block, class Value, Value Block::*Member>
struct MemberEntry<Kind, Member> {
  const char* name;
  FieldKind shown_as;
  static constexpr EntryKind kind = Kind;
  static constexpr std::size_t width = sizeof(Value);

  /// Where the member stands in the bytes of the block.
  static std::ptrdiff_t position(const Block& block) {
    return reinterpret_cast<const char*>(&(block.*Member)) - reinterpret_cast<const char*>(&block);
  }
  static void put(char* at, const Block& block) { storeLe(at, block.*Member); }
  static void take(const char* at, Block& block) { loadLe(at, block.*Member); }
};

/// The number of entries of one of the block's lists, cut to the width that the format gives it.
/// The block has no member for it; reading hands it to the caller.
template <class Count, auto List>
struct CountEntry {
  const char* name;
  FieldKind shown_as = FieldKind::unsigned_number;
  static constexpr EntryKind kind = EntryKind::count;
  static constexpr std::size_t width = sizeof(Count);

  template <class Block>
  static void put(char* at, const Block& block) {
    storeLe(at, static_cast<Count>((block.*List).size()));
  }
  static UINT64 take(const char* at) { return loadLe<Count>(at); }
};

template <class... Entries>
class FieldList {
 public:
  constexpr explicit FieldList(Entries... entries)
      : fields_{describe(std::index_sequence_for<Entries...>(), entries...)} {}

  /// Every entry in file order.
  constexpr const auto& fields() const { return fields_; }

  /// Bytes of the whole list in the file.
  static constexpr std::size_t width() { return offsetOf(entry_count); }

  /// Bytes of the list up to the end of the last entry that reading takes.
  static constexpr std::size_t takenWidth() {
    std::size_t taken = entry_count;
    while (taken > 0 && kinds[taken - 1] == EntryKind::reserved) {
      --taken;
    }
    return offsetOf(taken);
  }

  /// Puts every field, one after another.
  template <class Block>
  static void put(char* at, const Block& block) {
    putEach(at, block, std::index_sequence_for<Entries...>());
  }

  /// Takes every field; returns the counts on the way, in file order.
  template <class Block>
  static auto take(const char* at, Block& block) {
    std::array<UINT64, ((Entries::kind == EntryKind::count ? 1U : 0U) + ... + 0U)> counts{};
    takeEach(at, block, counts.data(), std::index_sequence_for<Entries...>());
    return counts;
  }

  template <class Block>
  static auto take(Decoder& in, Block& block) {
    const auto counts = take(in.position(), block);
    in.skip(width());
    return counts;
  }

 private:
  static constexpr std::size_t entry_count = sizeof...(Entries);
  static constexpr std::array<std::size_t, entry_count> widths{Entries::width...};
  static constexpr std::array<EntryKind, entry_count> kinds{Entries::kind...};

  template <std::size_t Index>
  using Entry = std::tuple_element_t<Index, std::tuple<Entries...>>;

  static constexpr std::size_t offsetOf(std::size_t index) {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < index; ++i) {
      offset += widths[i];
    }
    return offset;
  }

  template <std::size_t... Index>
  static constexpr std::array<Field, entry_count> describe(std::index_sequence<Index...> /*all*/,
                                                           const Entries&... entries) {
    return {Field{entries.name, entries.shown_as, offsetOf(Index), Entries::width}...};
  }

  template <class Block, std::size_t... Index>
  static void putEach(char* at, const Block& block, std::index_sequence<Index...> /*all*/) {
    (putEntry<Index>(at + offsetOf(Index), block), ...);
  }

  template <std::size_t Index, class Block>
  static void putEntry(char* at, const Block& block) {
    using Runs = FieldRuns<EntryKind::reserved, Entries...>;
    if constexpr (host_is_big_endian || Entry<Index>::kind == EntryKind::count) {
      Entry<Index>::put(at, block);
    } else if (const std::size_t run = Runs::template widthFrom<Index>(block); run > 0) {
      const char* const from = reinterpret_cast<const char*>(&block);
      std::memcpy(at, from + Entry<Index>::position(block), run);
    }
  }

  template <class Block, std::size_t... Index>
  static void takeEach(const char* at, Block& block, UINT64* counts,
                       std::index_sequence<Index...> /*all*/) {
    (takeEntry<Index>(at + offsetOf(Index), block, counts), ...);
  }

  template <std::size_t Index, class Block>
  static void takeEntry(const char* at, Block& block, UINT64*& counts) {
    using Runs = FieldRuns<EntryKind::field, Entries...>;
    if constexpr (Entry<Index>::kind == EntryKind::count) {
      *counts++ = Entry<Index>::take(at);
    } else if constexpr (Entry<Index>::kind == EntryKind::reserved) {
      return;
    } else if constexpr (host_is_big_endian) {
      Entry<Index>::take(at, block);
    } else if (const std::size_t run = Runs::template widthFrom<Index>(block); run > 0) {
      char* const to = reinterpret_cast<char*>(&block);
      std::memcpy(to + Entry<Index>::position(block), at, run);
    }
  }

  std::array<Field, entry_count> fields_;
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

/// A number or an array of bytes that is written and read.
template <auto Member>
constexpr MemberEntry<EntryKind::field, Member> field(const char* name) {
  return {name, kindOf(Member)};
}

/// Reserved bytes: written as they stand in the block, passed over on reading.
template <auto Member>
constexpr MemberEntry<EntryKind::reserved, Member> reserved(const char* name) {
  return {name, FieldKind::reserved};
}

/// Reserved bytes that reading takes, too.
template <auto Member>
constexpr MemberEntry<EntryKind::field, Member> keptReserved(const char* name) {
  return {name, FieldKind::reserved};
}

template <class Count, auto List>
constexpr CountEntry<Count, List> countOf(const char* name) {
  return {name};
}

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_FIELD_LIST_H_
