#ifndef MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_
#define MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_

#include <string>
#include <vector>

#include "recording/signal_source.h"

namespace mdf_tests {

/// Names, units, data types and widths, one signal a line.
std::string linesOf(const std::vector<mdf_tools::Signal>& signals);

/// Names and values, one signal a line.
std::string valuesOf(const std::vector<mdf_tools::Signal>& signals,
                     const std::vector<mdf_v4_10::UINT64>& values);

inline std::string valuesOf(const mdf_tools::SignalSource& source) {
  return valuesOf(source.signals(), source.values());
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_SIGNALS_H_
