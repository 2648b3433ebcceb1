#ifndef MDF_WRITER_STREAM_PLACES_H_
#define MDF_WRITER_STREAM_PLACES_H_

#include <cstddef>
#include <string_view>

#include "../../mdf/layouts.h"

/// Where in a block stand the numbers that a recording writes in place.
namespace mdf_writer {

/// The type's letters, the length and the number of links in a block's header.
inline constexpr std::size_t place_of_letters = 2;
inline constexpr std::size_t place_of_length = 8;
inline constexpr std::size_t place_of_link_count = 16;

constexpr std::size_t placeOfLink(std::size_t index) {
  return mdf_v4_10::HeaderSection::HEADER_SIZE + index * sizeof(mdf_v4_10::LINK);
}

/// Never called, and so not defined: what calls it is no constant.
std::size_t noSuchField();

/// A field of a block with so many links. A name that the block does not have is no constant.
template <class Fields>
constexpr std::size_t placeOfField(std::size_t links, const Fields& list, std::string_view name) {
  for (const mdf_v4_10::detail::Field& field : list.fields()) {
    if (field.name == name) {
      return placeOfLink(links) + field.offset;
    }
  }
  return noSuchField();
}

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_PLACES_H_
