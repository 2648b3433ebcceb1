#ifndef MDF_TESTS_SUPPORT_FIELDS_H_
#define MDF_TESTS_SUPPORT_FIELDS_H_

#include <cstddef>
#include <string>

#include "layouts.h"

namespace mdf_tests {

/// A block's field list as text, one "offset width name" a line, offsets from the block's start,
/// for comparison with a layout written down by hand. `data_offset` is where the block's data
/// section begins.
template <class Fields>
std::string layoutOf(const Fields& fields, std::size_t data_offset) {
  std::string layout;
  for (const mdf_v4_10::detail::Field& field : fields.fields()) {
    layout
        .append(std::to_string(data_offset + field.offset) + " " + std::to_string(field.width) +
                " ")
        .append(field.name)
        .append("\n");
  }
  return layout;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_FIELDS_H_
