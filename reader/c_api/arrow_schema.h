#ifndef MDF_READER_C_API_ARROW_SCHEMA_H_
#define MDF_READER_C_API_ARROW_SCHEMA_H_

#include <string>
#include <utility>
#include <vector>

#include "../c_api.h"
#include "../columns/column_data.h"

namespace mdf_reader {

/// What Arrow is told of a column.
struct ArrowField {
  std::string name;
  std::string format;
  std::string metadata;  ///< as arrowMetadata() makes it
};

/// Arrow's word for a type.
std::string arrowFormat(ColumnType type);

/// Keys and values as a field's metadata; "" for none.
std::string arrowMetadata(const std::vector<std::pair<std::string, std::string>>& entries);

/// Sets a schema that a structure of these fields has, to be released by whoever takes it.
void exportSchema(const std::vector<ArrowField>& fields, ArrowSchema& out);

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_ARROW_SCHEMA_H_
