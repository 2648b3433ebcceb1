#ifndef MDF_TESTS_TOOLS_BUS_DESCRIBED_H_
#define MDF_TESTS_TOOLS_BUS_DESCRIBED_H_

#include <string>
#include <string_view>

#include "reader/bus/bus_database.h"

namespace mdf_tests {

/// A line for the database's comment, one for each message and each signal, and one for each fault
/// that was found in the text: "12:5: expected ...".
std::string described(std::string_view dbc);

/// The lines of the faults alone.
std::string faultsOf(std::string_view dbc);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_BUS_DESCRIBED_H_
