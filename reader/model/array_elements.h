#ifndef MDF_READER_MODEL_ARRAY_ELEMENTS_H_
#define MDF_READER_MODEL_ARRAY_ELEMENTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "../blocks/block_fields.h"

namespace mdf_reader {

class InputFile;

/// Nobody wants a column for each of more elements than this.
inline constexpr std::uint64_t most_array_elements = 65536;
inline constexpr std::size_t most_array_dimensions = 16;

/// Where the elements of a channel array have their values.
enum class ArrayStorage : std::uint8_t {
  record = 0,     ///< side by side in each record
  channel_group,  ///< each has records of its own, with a record id that goes up by one
  data_group,     ///< each has records of its own, with data of their own
  unknown,
};
ArrayStorage arrayStorage(const BlockFields& array);

/// An element that has records of its own. They are laid out like those of the array's channel
/// group, the master and all.
struct ArrayElement {
  std::uint64_t cycles = 0;  ///< how many records
  std::uint64_t data = 0;    ///< link to them, where they are data of their own
};

/// The elements of such an array, and what is wrong where they cannot be had.
struct ArrayElements {
  std::vector<ArrayElement> elements;
  std::string problem;  ///< a sentence, "" for none
};

/// Reads what an array block says of them, if there are not more than the most that are wanted.
ArrayElements readArrayElements(InputFile& file, const BlockFields& array, std::uint64_t most);

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_ARRAY_ELEMENTS_H_
