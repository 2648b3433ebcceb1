#ifndef MDF_READER_BUS_DBC_READER_H_
#define MDF_READER_BUS_DBC_READER_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "bus_database.h"

namespace mdf_reader {

/// A fault in a text.
struct TextFault {
  std::size_t line = 0;    ///< from 1
  std::size_t column = 0;  ///< from 1, in bytes
  std::string sentence;    ///< "expected a start bit, found 'x'"
};

using TextFaultSink = std::function<void(const TextFault&)>;

/// Reads a DBC. What is understood is used; what is not, is reported and left out.
BusDatabase readDbc(std::string_view text, const TextFaultSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_READER_H_
