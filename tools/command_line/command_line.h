#ifndef MDF_TOOLS_COMMAND_LINE_COMMAND_LINE_H_
#define MDF_TOOLS_COMMAND_LINE_COMMAND_LINE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "option.h"

namespace CLI {
class App;
}

namespace mdf_tools {

/// What is wrong with a command line. Thrown by run(); whatever runs in it may throw one, too.
class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The words that a program understands, or one of its commands. A copy is the same one. The
/// variables that options set must exist when it runs.
///
/// A name has its forms with commas between: "-o,--output". Without dashes it is that of a word
/// which is known by its place.
class CommandLine {
 public:
  CommandLine(const std::string& name, const std::string& description);

  CommandLine addCommand(const std::string& name, const std::string& description);

  Option addOption(const std::string& name, std::string& value, const std::string& description);
  Option addOption(const std::string& name, int& value, const std::string& description);
  /// A std::size_t is a number of 32 or of 64 bits.
  Option addOption(const std::string& name, std::uint32_t& value, const std::string& description);
  Option addOption(const std::string& name, std::uint64_t& value, const std::string& description);
  Option addOption(const std::string& name, double& value, const std::string& description);
  Option addOption(const std::string& name, std::optional<std::string>& value,
                   const std::string& description);
  Option addOption(const std::string& name, std::optional<std::uint64_t>& value,
                   const std::string& description);
  Option addOption(const std::string& name, std::optional<double>& value,
                   const std::string& description);
  Option addOption(const std::string& name, std::vector<std::string>& values,
                   const std::string& description);
  Option addOption(const std::string& name, const std::function<void(const std::string&)>& take,
                   const std::string& description);
  Option addOption(const std::string& name,
                   const std::function<void(const std::vector<std::string>&)>& take,
                   const std::string& description);
  Option addFlag(const std::string& name, bool& is_given, const std::string& description);
  Option addFlag(const std::string& name, const std::function<void()>& take,
                 const std::string& description);
  void addVersion(const std::string& text);

  /// The text below the options in the help.
  void footer(const std::string& text);

  /// Makes one of its commands required.
  void requireCommand();

  /// What is wrong with options that are right each for itself, as a sentence; "" for nothing.
  void check(const std::function<std::string()>& problem);

  /// What the command does; returns the exit code.
  void onRun(const std::function<int()>& work);

  /// Does what the words ask for, help included, and returns the exit code.
  /// @throws Refusal
  int run(int argc, char** argv);

  std::string name() const;
  std::string description() const;
  std::vector<Option> options() const;
  std::vector<CommandLine> commands() const;
  bool requiresCommand() const;
  std::optional<CommandLine> findCommand(const std::string& name) const;

  /// The option of this name, which there must be.
  Option option(const std::string& name) const;

 private:
  CommandLine(const CommandLine& above, CLI::App* command);

  std::shared_ptr<CLI::App> app_;
  std::shared_ptr<int> exit_code_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMAND_LINE_COMMAND_LINE_H_
