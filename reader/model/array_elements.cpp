#include "array_elements.h"

#include <algorithm>

#include "../blocks/later_types.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

/// The sizes of an array, from what follows its fields.
struct Sizes {
  std::uint64_t dimensions = 0;
  std::uint64_t elements = 1;     ///< limited to one more than there may be
  std::uint64_t axis_values = 0;  ///< that stand in the block, limited likewise
};

Sizes sizesOf(InputFile& file, const BlockFields& array) {
  constexpr std::uint64_t too_many = most_array_elements + 1;
  Sizes sizes;
  sizes.dimensions = array.number("ca_ndim");
  const std::uint64_t there =
      std::min<std::uint64_t>({sizes.dimensions, array.tailBytes() / 8, most_array_dimensions});
  for (std::uint64_t i = 0; i < there; ++i) {
    const std::uint64_t size = std::min(numberAt(file, array.tailAt() + 8 * i), too_many);
    sizes.elements = std::min(sizes.elements * size, too_many);
    sizes.axis_values += array.hasFlag("ca_flags", CABLOCK::fixed_axis) ? size : 0;
  }
  return sizes;
}

}  // namespace

ArrayStorage arrayStorage(const BlockFields& array) {
  const std::uint64_t storage = array.number("ca_storage");
  return storage < static_cast<std::uint64_t>(ArrayStorage::unknown)
             ? static_cast<ArrayStorage>(storage)
             : ArrayStorage::unknown;
}

ArrayElements readArrayElements(InputFile& file, const BlockFields& array, std::uint64_t most) {
  const Sizes sizes = sizesOf(file, array);
  const std::uint64_t in_front = sizes.dimensions + sizes.axis_values;
  const bool has_data = arrayStorage(array) == ArrayStorage::data_group;
  const std::uint64_t links = linksThere(file, array.raw());
  const std::string wanted =
      "for each of the array's " + std::to_string(sizes.elements) + " elements, found ";
  ArrayElements result;
  if (sizes.elements == 0 || sizes.elements > most || sizes.dimensions > most_array_dimensions) {
    result.problem = "expected an array of 1 to " + std::to_string(most) + " elements in up to " +
                     std::to_string(most_array_dimensions) +
                     " dimensions, found another number of elements or dimensions";
  } else if (array.tailBytes() / 8 < in_front + sizes.elements) {
    result.problem = "expected a cycle count " + wanted + "fewer";
  } else if (has_data && links < 1 + sizes.elements) {
    result.problem = "expected a link to data " + wanted + "fewer";
  } else if (sizes.dimensions > 1 && array.hasFlag("ca_flags", CABLOCK::inverse_layout)) {
    result.problem =
        "expected elements with records of their own to be counted by rows, found an array that is "
        "counted by columns";
  } else {
    for (std::uint64_t i = 0; i < sizes.elements; ++i) {
      result.elements.push_back({numberAt(file, array.tailAt() + 8 * (in_front + i)),
                                 has_data ? linkAt(file, array.raw(), 1 + i) : 0});
    }
  }
  return result;
}

}  // namespace mdf_reader
