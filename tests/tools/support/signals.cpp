#include "signals.h"

#include <sstream>

#include "float_bits.h"

namespace mdf_tests {

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::UINT64;

std::string linesOf(const std::vector<mdf_tools::Signal>& signals) {
  std::ostringstream lines;
  for (const mdf_tools::Signal& signal : signals) {
    const bool is_float = signal.data_type == CNBLOCK::CN_DATATYPE_FLOAT_LE;
    const bool is_unsigned = signal.data_type == CNBLOCK::CN_DATATYPE_UINT_LE;
    lines << signal.name << " [" << signal.unit << "] "
          << (is_float ? "float" : (is_unsigned ? "unsigned" : "other")) << signal.bytes << '\n';
  }
  return lines.str();
}

std::string valuesOf(const std::vector<mdf_tools::Signal>& signals,
                     const std::vector<UINT64>& values) {
  std::ostringstream lines;
  for (std::size_t i = 0; i < signals.size(); ++i) {
    lines << signals[i].name << ' ';
    if (signals[i].data_type == CNBLOCK::CN_DATATYPE_FLOAT_LE && signals[i].bytes == 4) {
      lines << floatOf(values[i]) << '\n';
    } else {
      lines << values[i] << '\n';
    }
  }
  return lines.str();
}

}  // namespace mdf_tests
