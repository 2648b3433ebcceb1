#ifndef MDF_TOOLS_COMMANDS_FILE_COMMAND_H_
#define MDF_TOOLS_COMMANDS_FILE_COMMAND_H_

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

class CommandLine;

class Progress;

using namespace mdf_reader;

/// What a command gets for each file.
struct FileContext {
  InputFile& file;
  std::ostream& out;          ///< data, on its way to standard output
  const FindingSink& report;  ///< problems, on their way to standard error
  const std::function<void(const std::string& sentence)>& say;  ///< the same of other things
  const std::string& path;  ///< the file as it was named, "-" for standard input
  bool is_one_of_several;   ///< several files were named: say which one is shown
  Progress* progress;       ///< the line on a terminal; null for none
};

/// Adds the argument FILE... to a command.
std::shared_ptr<std::vector<std::string>> addFileArguments(CommandLine& command);

/// Whether an output is one of the files to read, whatever it is called there.
bool isOneOf(const std::vector<std::string>& paths, const std::string& output);

/// What the work of a command is done on.
enum class Input {
  mdf4,     ///< other files are refused with a sentence
  anything  ///< the work tells what is wrong with a file that is none of MDF 4
};

/// Does a command's work on each file in turn, and returns the exit code for all: problems that are
/// reported, files that cannot be opened or read and failing output count. Work on a file goes on
/// after a finding, and on the other files after an unreadable one.
int onEachFile(const std::vector<std::string>& paths,
               const std::function<void(const FileContext&)>& work, Input input = Input::mdf4);

/// Does work on two files at a time, in the same way.
int onBoth(const std::string& first, const std::string& second,
           const std::function<void(const FileContext&, const FileContext&)>& work);

/// Does work on all files at a time, in the same way.
int onAll(const std::vector<std::string>& paths,
          const std::function<void(const std::vector<const FileContext*>&)>& work);

/// Prints what was gathered from all files to standard output; returns the exit code.
int printToOutput(const std::string& text);

/// Whether standard output is a terminal.
bool outputIsTerminal();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_FILE_COMMAND_H_
