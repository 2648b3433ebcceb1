#include "names.h"

#include <initializer_list>

#include "fileblocks/hdblock.h"

namespace mdf_reader {

using mdf_v4_10::HDBLOCK;

namespace {

/// The name at an index; "" stands for a value that the format does not use.
std::string named(std::initializer_list<const char*> names, unsigned value) {
  const std::string name = value < names.size() ? names.begin()[value] : "";
  return name.empty() ? "type " + std::to_string(value) : name;
}

}  // namespace

std::string channelTypeName(unsigned type) {
  return named({"fixed", "variable length", "master", "virtual master", "synchronization",
                "maximum length", "virtual"},
               type);
}

std::string syncTypeName(unsigned type) {
  return named({"none", "time", "angle", "distance", "index"}, type);
}

std::string dataTypeName(unsigned type) {
  return named({"uint LE", "uint BE", "int LE", "int BE", "real LE", "real BE", "string Latin-1",
                "string UTF-8", "string UTF-16 LE", "string UTF-16 BE", "byte array", "MIME sample",
                "MIME stream", "CANopen date", "CANopen time", "complex LE", "complex BE"},
               type);
}

std::string conversionTypeName(unsigned type) {
  return named({"identity", "linear", "rational", "formula", "table, interpolated", "table",
                "range table", "value to text", "range to text", "text to value", "text to text"},
               type);
}

std::string sourceTypeName(unsigned type) {
  return named({"other", "ECU", "bus", "I/O", "tool", "user"}, type);
}

std::string busTypeName(unsigned type) {
  return named({"none", "other", "CAN", "LIN", "MOST", "FlexRay", "K-Line", "Ethernet", "USB"},
               type);
}

std::string eventTypeName(unsigned type) {
  return named({"recording", "recording interrupt", "acquisition interrupt",
                "start recording trigger", "stop recording trigger", "trigger", "marker"},
               type);
}

std::string eventSyncTypeName(unsigned type) { return named({"", "s", "rad", "m", "index"}, type); }

std::string eventRangeName(unsigned type) { return named({"point", "begin", "end"}, type); }

std::string eventCauseName(unsigned cause) {
  return named({"other", "error", "tool", "script", "user"}, cause);
}

std::string hierarchyTypeName(unsigned type) {
  return named({"group", "function", "structure", "map list", "input", "output", "local",
                "defined calibration", "referenced calibration"},
               type);
}

std::string timeClassName(unsigned time_class) {
  switch (time_class) {
    case HDBLOCK::TIME_LOCAL_PC:
      return "local PC";
    case HDBLOCK::TIME_EXT_SOURCE:
      return "external source";
    case HDBLOCK::TIME_EXT_ABSOLUTE_SYNC:
      return "external absolute";
    default:
      return "class " + std::to_string(time_class);
  }
}

}  // namespace mdf_reader
