#ifndef MDF_TOOLS_COMMANDS_GROUP_OPTION_H_
#define MDF_TOOLS_COMMANDS_GROUP_OPTION_H_

#include <string>

#include "command_line/command_line.h"

namespace mdf_tools {

/// Adds --group, which every command with channel groups understands alike.
inline void addGroupOption(CommandLine& command, std::string& choice) {
  command
      .addOption("-g,--group", choice,
                 "Only the channel group with this number, or those whose name matches a pattern")
      .typeName("N|GLOB");
}

/// "no channel group with channels matches "7"".
inline std::string noGroupChosen(const std::string& choice) {
  return "no channel group with channels" + (choice.empty() ? "" : " matches \"" + choice + '"');
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_GROUP_OPTION_H_
