#ifndef MDF_READER_C_API_QUERY_JSON_H_
#define MDF_READER_C_API_QUERY_JSON_H_

#include <string>
#include <string_view>
#include <vector>

#include "../columns/query.h"

namespace mdf_reader {

/// A query, and the form that its times take.
struct QueryText {
  Query query;
  bool has_timestamps = false;
};

/// Reads a query that is a JSON object.
/// @throws Refused when it is none, or a member of it is not as it should be.
QueryText queryFrom(std::string_view json);

/// Reads a query of frames of buses.
/// @throws Refused as above, and for a member that frames have no use for.
QueryText frameQueryFrom(std::string_view json);

/// How frames are to be decoded.
struct DecodingText {
  std::vector<std::string> databases;
  bool is_j1939 = false;
};

/// Reads a query of signals.
/// @throws Refused as above.
DecodingText decodingFrom(std::string_view json);

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_QUERY_JSON_H_
