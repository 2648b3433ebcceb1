#ifndef MDF_TOOLS_COMMANDS_COMMAND_H_
#define MDF_TOOLS_COMMANDS_COMMAND_H_

namespace mdf_tools {

class CommandLine;

/// The program's exit codes.
enum ExitCode : int {
  exit_fine = 0,
  exit_problem = 1,   ///< a file has problems, or the work could not be finished
  exit_unusable = 2,  ///< a wrong command line, or a file that cannot be opened
};

/// Each adds one command, which returns an ExitCode when it runs.
void addRecordCommand(CommandLine& program);
void addInfoCommand(CommandLine& program);
void addListCommand(CommandLine& program);
void addTreeCommand(CommandLine& program);
void addDumpCommand(CommandLine& program);
void addCheckCommand(CommandLine& program);
void addGraphCommand(CommandLine& program);
void addExportCommand(CommandLine& program);
void addPlotCommand(CommandLine& program);
void addViewCommand(CommandLine& program);
void addStatsCommand(CommandLine& program);
void addFramesCommand(CommandLine& program);
void addDecodeCommand(CommandLine& program);
void addDiffCommand(CommandLine& program);
void addExtractCommand(CommandLine& program);
void addImportCommand(CommandLine& program);
void addCopyCommand(CommandLine& program);
void addJoinCommand(CommandLine& program);
void addRepairCommand(CommandLine& program);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_COMMAND_H_
