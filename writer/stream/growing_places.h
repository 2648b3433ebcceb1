#ifndef MDF_WRITER_STREAM_GROWING_PLACES_H_
#define MDF_WRITER_STREAM_GROWING_PLACES_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "storage.h"

namespace mdf_writer {

/// Where blocks grow that are packed when they are full. They have left their place then, and the
/// next one grows there. Two places take turns: as long as the medium may hold the link to the one,
/// nothing else is written to it.
class GrowingPlaces {
 public:
  /// A place of so many bytes, always the same number, that is not the one to which the file leads.
  std::uint64_t take(Storage& storage, std::size_t bytes, std::uint64_t shown);

  bool has(std::uint64_t at) { return find(at) != nullptr; }

  /// Says that a block has written so many bytes, in a place or elsewhere.
  void wrote(std::uint64_t at, std::size_t bytes);

  /// Leaves a place to the block that is in it for good, of which so many bytes are.
  bool leaveTo(Storage& storage, std::uint64_t at, std::size_t bytes);

  /// Clears what blocks have left, but for those of so many bytes that one place still holds.
  bool clear(Storage& storage, std::uint64_t used, std::size_t bytes);

 private:
  struct Place {
    std::uint64_t at = 0;     ///< 0 for none
    std::size_t written = 0;  ///< by all blocks that were in it
  };

  Place* find(std::uint64_t at);

  std::array<Place, 2> places_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_GROWING_PLACES_H_
