#ifndef MDF_TOOLS_COMMANDS_COMMAND_H_
#define MDF_TOOLS_COMMANDS_COMMAND_H_

namespace CLI {
class App;
}

namespace mdf_tools {

/// The program's exit codes.
enum ExitCode : int {
  exit_fine = 0,
  exit_problem = 1,   ///< a file has problems, or the work could not be finished
  exit_unusable = 2,  ///< a wrong command line, or a file that cannot be opened
};

/// Each adds one subcommand to the command line. When the subcommand runs it stores an ExitCode.
void addRecordCommand(CLI::App& app, int& exit_code);
void addInfoCommand(CLI::App& app, int& exit_code);
void addListCommand(CLI::App& app, int& exit_code);
void addTreeCommand(CLI::App& app, int& exit_code);
void addDumpCommand(CLI::App& app, int& exit_code);
void addCheckCommand(CLI::App& app, int& exit_code);
void addGraphCommand(CLI::App& app, int& exit_code);
void addExportCommand(CLI::App& app, int& exit_code);
void addPlotCommand(CLI::App& app, int& exit_code);
void addStatsCommand(CLI::App& app, int& exit_code);
void addFramesCommand(CLI::App& app, int& exit_code);
void addDecodeCommand(CLI::App& app, int& exit_code);
void addDiffCommand(CLI::App& app, int& exit_code);
void addExtractCommand(CLI::App& app, int& exit_code);
void addImportCommand(CLI::App& app, int& exit_code);
void addCopyCommand(CLI::App& app, int& exit_code);
void addJoinCommand(CLI::App& app, int& exit_code);
void addRepairCommand(CLI::App& app, int& exit_code);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_COMMAND_H_
