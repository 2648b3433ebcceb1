#ifndef MDF_FRAMEWORK_FIELD_H_
#define MDF_FRAMEWORK_FIELD_H_

#include <cstddef>
#include <string_view>

namespace mdf_v4_10::detail {

/// How the bytes of a field are to be understood.
enum class FieldKind { unsigned_number, signed_number, real, bytes, reserved };

/// A field of a data section.
struct Field {
  std::string_view name;
  FieldKind kind;
  std::size_t offset;  ///< from the first byte after the links
  std::size_t width;   ///< bytes
};

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_FIELD_H_
