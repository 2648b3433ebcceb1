#ifndef MDF_READER_COLUMNS_TEXT_LOADER_H_
#define MDF_READER_COLUMNS_TEXT_LOADER_H_

#include <string_view>

#include "../values/raw_type.h"
#include "column_data.h"

namespace mdf_reader {

/// Adds a value that is no number to a column of texts or bytes. What makes no text in a column of
/// texts is there as hexadecimal digits.
void addValue(const RawType& type, std::string_view bytes, ColumnData& to);

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_TEXT_LOADER_H_
