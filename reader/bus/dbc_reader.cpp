#include "dbc_reader.h"

#include <utility>

#include "dbc_parser.h"
#include "text_faults.h"

namespace mdf_reader {

BusDatabase readDbc(std::string_view text, const TextFaultSink& report) {
  TextFaults faults;
  BusDatabase database = DbcParser(text, faults).parse();
  std::move(faults).report(report);
  return database;
}

}  // namespace mdf_reader
