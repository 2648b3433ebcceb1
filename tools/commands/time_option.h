#ifndef MDF_TOOLS_COMMANDS_TIME_OPTION_H_
#define MDF_TOOLS_COMMANDS_TIME_OPTION_H_

#include <string>

#include "printing/value_form.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

class CommandLine;

using namespace mdf_reader;

/// Adds the option --time, which says how times are written: "seconds", "iso" or "ns".
void addTimeOption(CommandLine& command, std::string& time);

/// How the times of a file are written then. Where the file does not say when it was begun, they
/// are seconds, and a note says so.
ValueForm timeFormOf(const std::string& time, const Header& header, const NoteSink& note);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_TIME_OPTION_H_
