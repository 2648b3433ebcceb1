#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "checking/file_check.h"
#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "printing/json_output.h"
#include "printing/style.h"
#include "reader/blocks/codes.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct CheckOptions {
  bool as_json = false;
  bool lists_codes = false;
  std::string explained;  ///< a code
};

/// How many problems there are of each severity.
struct Counts {
  std::array<std::uint64_t, 3> of{};

  std::uint64_t& operator[](Severity severity) { return of.at(static_cast<std::size_t>(severity)); }
  bool areFine() { return (*this)[Severity::error] + (*this)[Severity::warning] == 0; }
};

std::string counted(std::uint64_t count, std::string_view word) {
  return std::to_string(count) + ' ' + std::string(word) + (count == 1 ? "" : "s");
}

std::string summary(Counts counts, std::uint64_t blocks) {
  std::string text;
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note}) {
    if (counts[severity] > 0) {
      text += counted(counts[severity], severityWord(severity)) + ", ";
    }
  }
  return (text.empty() ? "nothing found, " : text) + counted(blocks, "block");
}

Style styleOf(Severity severity) {
  switch (severity) {
    case Severity::error:
      return Style::error;
    case Severity::warning:
      return Style::warning;
    case Severity::note:
      break;
  }
  return Style::note;
}

void writeLine(const FileContext& context, const Finding& problem) {
  const CodeText& code = textOf(problem.code);
  context.out << context.file.name() << ": " << decimalAndHex(problem.offset) << ": "
              << styleOf(code.severity) << severityWord(code.severity) << Style::plain << ' '
              << Style::strong << code.word << Style::plain << ": " << problem.sentence;
  if (!problem.path.empty()) {
    context.out << Style::faint << " [" << problem.path << ']' << Style::plain;
  }
  context.out << '\n';
}

void writeJson(const FileContext& context, const Finding& problem) {
  const CodeText& code = textOf(problem.code);
  Json line;
  line["schema"] = json_schema;
  line["file"] = context.file.name();
  line["code"] = code.word;
  line["severity"] = severityWord(code.severity);
  line["offset"] = problem.offset;
  line["path"] = problem.path;
  line["text"] = problem.sentence;
  context.out << jsonLine(line) << '\n';
}

int check(const std::vector<std::string>& paths, bool as_json) {
  int worst = exit_fine;
  const auto work = [&](const FileContext& context) {
    Counts counts;
    const std::uint64_t blocks = checkFile(context.file, [&](const Finding& problem) {
      ++counts[textOf(problem.code).severity];
      if (as_json) {
        writeJson(context, problem);
      } else {
        writeLine(context, problem);
      }
    });
    context.out.flush();
    if (refusalOf(context.file)) {
      worst = exit_unusable;
      return;
    }
    context.say(summary(counts, blocks));
    if (!counts.areFine()) {
      worst = std::max<int>(worst, exit_problem);
    }
  };
  const int exit_code = onEachFile(paths, work, Input::anything);
  return std::max(worst, exit_code);
}

int explain(const std::string& word) {
  const CodeText* const code = findCode(word);
  if (code == nullptr) {
    throw Refusal("there is no code \"" + word + "\"; 'mdf check --codes' lists them");
  }
  std::ostringstream text;
  text << code->word << " (" << severityWord(code->severity) << "): " << code->title << ".\n\n"
       << code->meaning << "\n\n"
       << code->advice << '\n';
  return printToOutput(text.str());
}

int listCodes() {
  std::ostringstream text;
  for (const CodeText& code : allCodes()) {
    text << severityWord(code.severity) << ' ' << code.word << '\n';
  }
  return printToOutput(text.str());
}

constexpr const char* footer =
    R"(Checks every block that can be reached: where its links lead, its length, and its counts; then
texts, zipped data, digests of attachments, and the data of each channel group against its number of
records. Takes files of MDF 4.0 to 4.2 by any program, finished or not, and changes nothing.

Each problem is one line on standard output:

  FILE: OFFSET (HEX): SEVERITY CODE: what was expected and what was found [path to the block]

The path names the links that lead to the block from the header block. The check goes on after a
problem. Severities: with an error, programs lose data or read other data than was written; with a
warning, the format is broken or something was left open, but nothing is lost; a note is about
something allowed that is worth knowing. A line on standard error counts them for each file.

Examples:
  mdf check trip.mf4                        check a file
  mdf check *.mf4 | grep ' error '          the errors of many
  mdf check --json trip.mf4 | jq .code      as JSON, an object a line
  mdf check --explain link-outside-file     what a code means, and what to do

Exit code: 0 fine (notes at most), 1 errors or warnings, 2 wrong arguments or unreadable file.)";

}  // namespace

void addCheckCommand(CommandLine& program) {
  CommandLine command = program.addCommand("check", "Find out what is wrong with files");
  const auto options = std::make_shared<CheckOptions>();
  const auto paths = addFileArguments(command);
  command.option("FILE").required(false);
  command.addFlag("--json", options->as_json,
                  "Print an object a line, with schema, file, code, severity, offset, path, text");
  command
      .addOption("--explain", options->explained,
                 "Print what a code means and what to do, and no more")
      .typeName("CODE");
  command.addFlag("--codes", options->lists_codes,
                  "Print all codes with their severities, and no more");
  command.footer(footer);
  command.onRun([options, paths] {
    if (options->lists_codes) {
      return listCodes();
    }
    if (!options->explained.empty()) {
      return explain(options->explained);
    }
    if (paths->empty()) {
      throw Refusal("FILE is required");
    }
    return check(*paths, options->as_json);
  });
}

}  // namespace mdf_tools
