#include "command_line.h"

#include <CLI/CLI.hpp>

namespace mdf_tools {

CommandLine::CommandLine(const std::string& name, const std::string& description)
    : app_(std::make_shared<CLI::App>(description, name)), exit_code_(std::make_shared<int>(0)) {}

CommandLine::CommandLine(const CommandLine& above, CLI::App* command)
    : app_(above.app_, command), exit_code_(above.exit_code_) {}

CommandLine CommandLine::addCommand(const std::string& name, const std::string& description) {
  return {*this, app_->add_subcommand(name, description)};
}

Option CommandLine::addOption(const std::string& name, std::string& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, int& value, const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::uint32_t& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::uint64_t& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, double& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::optional<std::string>& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::optional<std::uint64_t>& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::optional<double>& value,
                              const std::string& description) {
  return Option(app_->add_option(name, value, description));
}

Option CommandLine::addOption(const std::string& name, std::vector<std::string>& values,
                              const std::string& description) {
  return Option(app_->add_option(name, values, description));
}

Option CommandLine::addOption(const std::string& name,
                              const std::function<void(const std::string&)>& take,
                              const std::string& description) {
  return Option(app_->add_option_function(name, take, description));
}

Option CommandLine::addOption(const std::string& name,
                              const std::function<void(const std::vector<std::string>&)>& take,
                              const std::string& description) {
  return Option(app_->add_option_function(name, take, description));
}

Option CommandLine::addFlag(const std::string& name, bool& is_given,
                            const std::string& description) {
  return Option(app_->add_flag(name, is_given, description));
}

Option CommandLine::addFlag(const std::string& name, const std::function<void()>& take,
                            const std::string& description) {
  return Option(app_->add_flag_callback(name, take, description));
}

void CommandLine::addVersion(const std::string& text) { app_->set_version_flag("--version", text); }

void CommandLine::footer(const std::string& text) { app_->footer(text); }

void CommandLine::requireCommand() { app_->require_subcommand(1); }

void CommandLine::check(const std::function<std::string()>& problem) {
  app_->parse_complete_callback([problem] {
    const std::string sentence = problem();
    if (!sentence.empty()) {
      throw Refusal(sentence);
    }
  });
}

void CommandLine::onRun(const std::function<int()>& work) {
  app_->callback([work, code = exit_code_] { *code = work(); });
}

int CommandLine::run(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help, --version
    return app_->exit(request);
  } catch (const CLI::ParseError& error) {
    throw Refusal(error.what());
  }
  return *exit_code_;
}

std::string CommandLine::name() const { return app_->get_name(); }

std::string CommandLine::description() const { return app_->get_description(); }

std::vector<Option> CommandLine::options() const {
  std::vector<Option> options;
  for (CLI::Option* const option : app_->get_options()) {
    options.emplace_back(option);
  }
  return options;
}

std::vector<CommandLine> CommandLine::commands() const {
  std::vector<CommandLine> commands;
  for (CLI::App* const command : app_->get_subcommands({})) {
    commands.push_back({*this, command});
  }
  return commands;
}

bool CommandLine::requiresCommand() const { return app_->get_require_subcommand_min() > 0; }

std::optional<CommandLine> CommandLine::findCommand(const std::string& name) const {
  for (const CommandLine& command : commands()) {
    if (command.name() == name) {
      return command;
    }
  }
  return std::nullopt;
}

Option CommandLine::option(const std::string& name) const { return Option(app_->get_option(name)); }

}  // namespace mdf_tools
