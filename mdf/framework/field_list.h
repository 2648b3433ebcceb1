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

/// What an entry is: a number or an array of bytes that is written and read, reserved bytes, which
/// are written as they stand in the block and passed over on reading, or a list's count.
enum class EntryKind { field, reserved, count };

/// A member of a block as a part of its data section.
template <EntryKind Kind, auto Member>
struct MemberEntry;

template <EntryKind Kind, class Block, class Value, Value Block::*Member>
struct MemberEntry<Kind, Member> {
  const char* name;
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
  static constexpr EntryKind kind = EntryKind::count;
  static constexpr std::size_t width = sizeof(Count);

  template <class Block>
  static void put(char* at, const Block& block) {
    storeLe(at, static_cast<Count>((block.*List).size()));
  }
  static UINT64 take(const char* at) { return loadLe<Count>(at); }
};

/// Members that stand side by side in memory, as they do in the file, are copied in one run. The
/// compiler knows which ones do: nothing of the comparing is left in the program.
template <class... Entries>
class FieldList {
 public:
  constexpr explicit FieldList(Entries... entries) : names_{entries.name...} {}

  /// Bytes of the whole list in the file.
  static constexpr std::size_t width() { return offsetOf(entry_count); }

  /// Puts every field, one behind the other.
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

  /// Calls visit(name, offset in the data section, width) for each entry in file order.
  template <class Visit>
  void forEach(Visit&& visit) const {
    for (std::size_t i = 0; i < entry_count; ++i) {
      visit(names_[i], offsetOf(i), widths[i]);
    }
  }

 private:
  static constexpr std::size_t entry_count = sizeof...(Entries);
  static constexpr std::array<std::size_t, entry_count> widths{Entries::width...};

  template <std::size_t Index>
  using Entry = std::tuple_element_t<Index, std::tuple<Entries...>>;

  static constexpr std::size_t offsetOf(std::size_t index) {
    std::size_t offset = 0;
    for (std::size_t i = 0; i < index; ++i) {
      offset += widths[i];
    }
    return offset;
  }

  /// Whether an entry is copied with the one before it. Entries up to kind `Last` are copied.
  template <EntryKind Last, std::size_t Index, class Block>
  static bool continuesRun(const Block& block) {
    if constexpr (Index > 0 && Index < entry_count) {
      using Before = Entry<Index - 1>;
      using This = Entry<Index>;
      if constexpr (Before::kind <= Last && This::kind <= Last) {
        return This::position(block) - Before::position(block) == std::ptrdiff_t{Before::width};
      }
    }
    return false;
  }

  /// Bytes of an entry and of those that are copied with it.
  template <EntryKind Last, std::size_t Index, class Block>
  static std::size_t runWidth(const Block& block) {
    if constexpr (Index + 1 < entry_count) {
      if (continuesRun<Last, Index + 1>(block)) {
        return widths[Index] + runWidth<Last, Index + 1>(block);
      }
    }
    return widths[Index];
  }

  template <class Block, std::size_t... Index>
  static void putEach(char* at, const Block& block, std::index_sequence<Index...> /*all*/) {
    (putEntry<Index>(at + offsetOf(Index), block), ...);
  }

  template <std::size_t Index, class Block>
  static void putEntry(char* at, const Block& block) {
    constexpr EntryKind last = EntryKind::reserved;
    if constexpr (host_is_big_endian || Entry<Index>::kind > last) {
      Entry<Index>::put(at, block);
    } else if (!continuesRun<last, Index>(block)) {
      const char* const from = reinterpret_cast<const char*>(&block);
      std::memcpy(at, from + Entry<Index>::position(block), runWidth<last, Index>(block));
    }
  }

  template <class Block, std::size_t... Index>
  static void takeEach(const char* at, Block& block, UINT64* counts,
                       std::index_sequence<Index...> /*all*/) {
    (takeEntry<Index>(at + offsetOf(Index), block, counts), ...);
  }

  template <std::size_t Index, class Block>
  static void takeEntry(const char* at, Block& block, UINT64*& counts) {
    constexpr EntryKind last = EntryKind::field;
    if constexpr (Entry<Index>::kind == EntryKind::count) {
      *counts++ = Entry<Index>::take(at);
    } else if constexpr (Entry<Index>::kind == last) {
      if constexpr (host_is_big_endian) {
        Entry<Index>::take(at, block);
      } else if (!continuesRun<last, Index>(block)) {
        char* const to = reinterpret_cast<char*>(&block);
        std::memcpy(to + Entry<Index>::position(block), at, runWidth<last, Index>(block));
      }
    }
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
