#ifndef MDF_READER_SUMMARY_JSON_H_
#define MDF_READER_SUMMARY_JSON_H_

#include <nlohmann/json.hpp>
#include <string>

#include "json_type.h"

namespace mdf_reader {

/// A text that is "" where it is not known.
inline Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

/// One line without its end. Bytes that are not UTF-8 become U+FFFD, since JSON holds nothing else.
inline std::string jsonLine(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// A document over several lines.
inline std::string jsonDocument(const Json& value) {
  return value.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_JSON_H_
