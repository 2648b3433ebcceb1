#ifndef MDF_TOOLS_COMMANDS_COMPLETION_H_
#define MDF_TOOLS_COMMANDS_COMPLETION_H_

#include <ostream>
#include <string>
#include <vector>

namespace mdf_tools {

class CommandLine;

/// Writes what the last word of a command line may become, for the scripts that complete it in
/// shells. The first line says what that is: "words", which follow, one on each line, with a tab
/// and a description where there is one, or "measurements", "files" or "folders", which the shell
/// knows to find.
/// @param words those after the program's name; the last one is being typed and may be "".
void complete(const CommandLine& app, std::vector<std::string> words, std::ostream& out);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_COMPLETION_H_
