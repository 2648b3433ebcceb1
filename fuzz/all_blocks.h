#ifndef MDF_FUZZ_ALL_BLOCKS_H_
#define MDF_FUZZ_ALL_BLOCKS_H_

#include <cstddef>

#include "mdf_v4_10.h"

namespace mdf_fuzz {

using namespace mdf_v4_10;

/// The two letters that name a class.
template <class Block>
constexpr const char* letters_of = nullptr;

template <>
inline constexpr const char* letters_of<IDBLOCK> = "ID";
template <>
inline constexpr const char* letters_of<HDBLOCK> = "HD";
template <>
inline constexpr const char* letters_of<TXBLOCK> = "TX";
template <>
inline constexpr const char* letters_of<MDBLOCK> = "MD";
template <>
inline constexpr const char* letters_of<FHBLOCK> = "FH";
template <>
inline constexpr const char* letters_of<CHBLOCK> = "CH";
template <>
inline constexpr const char* letters_of<ATBLOCK> = "AT";
template <>
inline constexpr const char* letters_of<EVBLOCK> = "EV";
template <>
inline constexpr const char* letters_of<DGBLOCK> = "DG";
template <>
inline constexpr const char* letters_of<CGBLOCK> = "CG";
template <>
inline constexpr const char* letters_of<SIBLOCK> = "SI";
template <>
inline constexpr const char* letters_of<CNBLOCK> = "CN";
template <>
inline constexpr const char* letters_of<CCBLOCK> = "CC";
template <>
inline constexpr const char* letters_of<DTBLOCK> = "DT";
template <>
inline constexpr const char* letters_of<RDBLOCK> = "RD";
template <>
inline constexpr const char* letters_of<SDBLOCK> = "SD";
template <>
inline constexpr const char* letters_of<DLBLOCK> = "DL";
template <>
inline constexpr const char* letters_of<DZBLOCK> = "DZ";
template <>
inline constexpr const char* letters_of<HLBLOCK> = "HL";
template <>
inline constexpr const char* letters_of<SRBLOCK> = "SR";

template <class... Blocks>
struct BlockList {
  static constexpr std::size_t size = sizeof...(Blocks);
};

/// The number that an input chooses a class by is the position in this list.
using AllBlocks = BlockList<IDBLOCK, HDBLOCK, TXBLOCK, MDBLOCK, FHBLOCK, CHBLOCK, ATBLOCK, EVBLOCK,
                            DGBLOCK, CGBLOCK, SIBLOCK, CNBLOCK, CCBLOCK, DTBLOCK, RDBLOCK, SDBLOCK,
                            DLBLOCK, DZBLOCK, HLBLOCK, SRBLOCK>;

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_ALL_BLOCKS_H_
