#ifndef MDF_FUZZ_LAYOUT_H_
#define MDF_FUZZ_LAYOUT_H_

#include <array>
#include <cstddef>
#include <ios>
#include <string_view>
#include <tuple>

#include "mdf_v4_10.h"

/// How the blocks stand in a file and how their classes read them, stated a second time and without
/// the library's own field lists.
namespace mdf_fuzz {

using namespace mdf_v4_10;

constexpr auto state_good = std::ios_base::goodbit;
constexpr auto state_bad = std::ios_base::badbit;
constexpr auto state_eof_fail = std::ios_base::eofbit | std::ios_base::failbit;

constexpr std::size_t header_size = 24;
constexpr std::size_t link_size = 8;

/// How a class finds out how many bytes to read, and what it makes of them.
enum class Reading {
  identification,  ///< 64 bytes without a header
  fixed_size,      ///< header, the format's links and fields, whatever the length says
  low_32,          ///< by the low 32 bits of the length; only the format's links stay in `links`
  all_64,          ///< by the length
  zipped,          ///< by the length, without links; then as many bytes as the last field says
  text,            ///< identifier and length; all the rest is text, the link count included
  plain            ///< the header; all the rest is data
};

/// Bytes of a block's data section.
struct Range {
  std::size_t offset;
  std::size_t width;
};

struct Layout {
  std::string_view letters;
  Reading reading;
  std::size_t fixed_links;                ///< that the format gives every block of the type
  std::size_t fields;                     ///< bytes of the data section's fixed fields
  std::size_t nil_links;                  ///< that the reader starts with
  UINT64 length;                          ///< that the reader starts with
  std::array<Range, 2> not_taken;         ///< reserved fields and counts of lists
  std::ios_base::iostate when_too_short;  ///< what a fixed-size reader leaves of a short stream
};

template <class Block>
constexpr Layout layout_of{};

template <>
inline constexpr Layout layout_of<IDBLOCK>{
    "ID", Reading::identification, 0, 64, 0, 64, {{{24, 4}}}, state_bad};

template <>
inline constexpr Layout layout_of<HDBLOCK>{"HD",        Reading::fixed_size, 6, 32, 0, 0,
                                           {{{15, 1}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<FHBLOCK>{"FH",        Reading::fixed_size, 2, 16, 0, 0,
                                           {{{13, 3}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<DGBLOCK>{"DG", Reading::fixed_size, 4,        8, 4,
                                           64,   {{{1, 7}}},          state_bad};
template <>
inline constexpr Layout layout_of<CGBLOCK>{"CG", Reading::fixed_size, 6,        32, 6,
                                           104,  {{{20, 4}}},         state_bad};
template <>
inline constexpr Layout layout_of<SIBLOCK>{"SI", Reading::fixed_size, 3,        8, 3,
                                           56,   {{{3, 5}}},          state_bad};
template <>
inline constexpr Layout layout_of<SRBLOCK>{"SR",        Reading::fixed_size, 2, 24, 2, 64,
                                           {{{18, 6}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<HLBLOCK>{"HL",       Reading::fixed_size, 1, 8, 0, 40,
                                           {{{3, 5}}}, state_eof_fail};

template <>
inline constexpr Layout layout_of<CHBLOCK>{
    "CH", Reading::low_32, 4, 8, 0, 0, {{{0, 4}, {5, 3}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<EVBLOCK>{"EV",       Reading::low_32, 5, 32, 5, 0,
                                           {{{5, 9}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<CNBLOCK>{"CN",        Reading::low_32, 8, 72, 8, 160,
                                           {{{21, 3}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<CCBLOCK>{"CC",       Reading::low_32, 4, 24, 0, 0,
                                           {{{4, 4}}}, state_eof_fail};

template <>
inline constexpr Layout layout_of<ATBLOCK>{
    "AT", Reading::all_64, 4, 40, 0, 0, {{{4, 4}, {32, 8}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<DLBLOCK>{"DL",       Reading::all_64, 1, 8, 1, 40,
                                           {{{1, 7}}}, state_eof_fail};
template <>
inline constexpr Layout layout_of<DZBLOCK>{
    "DZ", Reading::zipped, 0, 24, 0, 48, {{{3, 1}, {16, 8}}}, state_eof_fail};

template <>
inline constexpr Layout layout_of<TXBLOCK>{"TX", Reading::text, 0, 0, 0, 0, {}, state_bad};
template <>
inline constexpr Layout layout_of<MDBLOCK>{"MD", Reading::text, 0, 0, 0, 0, {}, state_bad};

template <>
inline constexpr Layout layout_of<DTBLOCK>{"DT", Reading::plain, 0, 0, 0, 24, {}, state_eof_fail};
template <>
inline constexpr Layout layout_of<RDBLOCK>{"RD", Reading::plain, 0, 0, 0, 24, {}, state_eof_fail};
template <>
inline constexpr Layout layout_of<SDBLOCK>{"SD", Reading::plain, 0, 0, 0, 24, {}, state_eof_fail};

template <class... Blocks>
struct BlockList {
  static constexpr std::size_t size = sizeof...(Blocks);
};

/// The number that an input chooses a class by is the position in this list.
using AllBlocks = BlockList<IDBLOCK, HDBLOCK, TXBLOCK, MDBLOCK, FHBLOCK, CHBLOCK, ATBLOCK, EVBLOCK,
                            DGBLOCK, CGBLOCK, SIBLOCK, CNBLOCK, CCBLOCK, DTBLOCK, RDBLOCK, SDBLOCK,
                            DLBLOCK, DZBLOCK, HLBLOCK, SRBLOCK>;

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_LAYOUT_H_
