#ifndef MDF_READER_SUMMARY_JSON_TYPE_H_
#define MDF_READER_SUMMARY_JSON_TYPE_H_

#include <nlohmann/json_fwd.hpp>

namespace mdf_reader {

/// An object whose members stay in the order in which they were added. A value of an enumeration
/// is its name, and "..._number" beside it the number that the file has. What is not known is null.
/// Sources that make one include json.h, which takes seconds to compile.
using Json = nlohmann::ordered_json;

/// What "schema" says in every document and every line. It grows when members are renamed or
/// removed, or change their meaning; new members may come at any time.
inline constexpr int json_schema = 2;

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_JSON_TYPE_H_
