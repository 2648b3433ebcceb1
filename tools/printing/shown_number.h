#ifndef MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_
#define MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_

#include <cstdint>
#include <string>

#include "reader/data/record_facts.h"

namespace mdf_tools {

/// A number for people, with six digits.
std::string shownNumber(double number);

/// "84,730"
std::string withCommas(std::uint64_t number);

/// How many records a channel group has: "12", or "12 (counted)"; "?" where nobody can tell.
std::string shownRecords(const mdf_reader::RecordCount& count);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_SHOWN_NUMBER_H_
