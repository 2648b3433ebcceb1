#include "completion.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include "command_line/command_line.h"
#include "reader/blocks/block_type.h"
#include "reader/blocks/codes.h"
#include "reader/bytes/input_file.h"
#include "reader/model/description.h"
#include "reader/summary/names.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// What a word may become, and what people are told of it.
struct Candidate {
  std::string word;
  std::string description{};
};

using Candidates = std::vector<Candidate>;

/// A pattern that fits a name and no other.
std::string patternOf(std::string_view name) {
  std::string pattern;
  for (const char character : name) {
    if (std::string_view("*?[\\").find(character) != std::string_view::npos) {
      pattern += '\\';
    }
    pattern += character;
  }
  return pattern;
}

/// Names of channels or of their groups in the files that are on the command line.
Candidates namesIn(const std::vector<std::string>& words, bool of_groups) {
  constexpr std::size_t most = 10000;
  const FindingSink silent = [](const Finding& /*finding*/) {};
  std::set<std::string> names;
  const auto add = [&](std::string_view name) {
    if (!name.empty() && names.size() < most && name.find_first_of("\n\t") == name.npos) {
      names.insert(patternOf(name));
    }
  };
  for (const std::string& word : words) {
    std::error_code none;
    if (!std::filesystem::is_regular_file(word, none)) {
      continue;
    }
    InputFile file(word);
    const auto description =
        readDescription(file, silent, [&](const ChannelGroup& /*group*/, const Channel& channel) {
          if (!of_groups) {
            add(channel.name);
          }
        });
    for (const DataGroup& data_group : description.data_groups) {
      for (const ChannelGroup& group : data_group.groups) {
        if (of_groups) {
          add(std::to_string(group.index));
          add(group.shownName());
        }
      }
    }
  }
  Candidates candidates;
  for (const std::string& name : names) {
    candidates.push_back({name});
  }
  return candidates;
}

/// The choices in "COLUMN:{offset,length}".
Candidates choicesIn(const std::string& type) {
  Candidates candidates;
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}');
  if (begin != std::string::npos && end != std::string::npos) {
    std::istringstream choices(type.substr(begin + 1, end - begin - 1));
    for (std::string each; std::getline(choices, each, ',');) {
      candidates.push_back({each});
    }
  }
  return candidates;
}

Candidates codes() {
  Candidates candidates;
  for (const CodeText& code : allCodes()) {
    candidates.push_back({std::string(code.word), std::string(code.title)});
  }
  return candidates;
}

Candidates namesOf(std::string (*name)(unsigned), unsigned count) {
  Candidates candidates;
  for (unsigned i = 0; i < count; ++i) {
    candidates.push_back({name(i)});
  }
  return candidates;
}

Candidates blockTypes() {
  Candidates candidates;
  for (char first = 'A'; first <= 'Z'; ++first) {
    for (char second = 'A'; second <= 'Z'; ++second) {
      const std::string letters = {first, second};
      if (typeOf(letters).isKnown()) {
        candidates.push_back({letters, std::string(typeOf(letters).title)});
      }
    }
  }
  return candidates;
}

Candidates typesOf(const std::string& command) {
  if (command == "channels") {
    return namesOf(channelTypeName, 7);
  }
  if (command == "events") {
    return namesOf(eventTypeName, 7);
  }
  return command == "attachments" ? Candidates() : blockTypes();
}

bool beginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// @param before what stands in front of the word and belongs to it
void write(const Candidates& candidates, const std::string& word, const std::string& before,
           std::ostream& out) {
  out << "words\n";
  for (const Candidate& candidate : candidates) {
    if (beginsWith(candidate.word, word)) {
      out << before << candidate.word
          << (candidate.description.empty() ? "" : '\t' + candidate.description) << '\n';
    }
  }
}

Candidates commandsOf(const CommandLine& app) {
  Candidates candidates;
  for (const CommandLine& command : app.commands()) {
    candidates.push_back({command.name(), command.description()});
  }
  return candidates;
}

Candidates optionsOf(const CommandLine& app) {
  Candidates candidates;
  for (const Option& option : app.options()) {
    for (const std::string& name : option.names()) {
      candidates.push_back({name, option.description()});
    }
  }
  return candidates;
}

bool hasName(const Option& option, const std::string& name) {
  const std::vector<std::string> names = option.names();
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// The option with this name that takes a value, if there is one.
std::optional<Option> valueOption(const CommandLine& app, const std::string& name) {
  for (const Option& option : app.options()) {
    if (hasName(option, name) && option.takesValue()) {
      return option;
    }
  }
  return std::nullopt;
}

void completeValue(const CommandLine& command, const Option& option,
                   const std::vector<std::string>& words, const std::string& word,
                   const std::string& before, std::ostream& out) {
  const std::string type = option.type();
  if (type.find("DIR") != std::string::npos) {
    out << "folders\n";
  } else if (type == "OUT" || type == "FILE") {
    out << "files\n";
  } else if (type.find("TYPE,") == 0) {
    const std::size_t last = word.find_last_of(',') + 1;
    write(typesOf(command.name()), word.substr(last), before + word.substr(0, last), out);
  } else if (type == "CODE") {
    write(codes(), word, before, out);
  } else if (type.find("N|GLOB") == 0 || type.find("GROUP|") == 0) {
    write(namesIn(words, true), word, before, out);
  } else if (hasName(option, "--channel") || command.name() == "channels") {
    const Candidates choices = choicesIn(type);
    write(choices.empty() ? namesIn(words, false) : choices, word, before, out);
  } else {
    write(choicesIn(type), word, before, out);
  }
}

}  // namespace

void complete(const CommandLine& app, std::vector<std::string> words, std::ostream& out) {
  std::string word = words.empty() ? "" : words.back();
  if (!words.empty()) {
    words.pop_back();
  }
  CommandLine command = app;
  for (const std::string& each : words) {
    command = command.findCommand(each).value_or(command);
  }
  std::string before;
  std::string previous = words.empty() ? "" : words.back();
  const std::size_t equals = word.find('=');
  if (beginsWith(word, "--") && equals != std::string::npos) {  // "--option=value"
    previous = word.substr(0, equals);
    before = word.substr(0, equals + 1);
    word = word.substr(equals + 1);
  }
  const std::optional<Option> option = valueOption(command, previous);
  if (option) {
    completeValue(command, *option, words, word, before, out);
  } else if (beginsWith(word, "-")) {
    write(optionsOf(command), word, "", out);
  } else if (command.requiresCommand()) {
    write(commandsOf(command), word, "", out);
  } else {
    out << "measurements\n";
  }
}

}  // namespace mdf_tools
