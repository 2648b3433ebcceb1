#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "changing/difference_output.h"
#include "changing/file_comparison.h"
#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "number_option.h"
#include "printing/text_table.h"
#include "reader/bytes/input_file.h"
#include "sample_options.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"(Compares what two files mean, A and B, not their bytes: start time, properties and comments, channel
groups and channels with their units, conversions, sources and ranges, the physical values, events,
attachments and the hierarchy. How a file stores all that is no difference: sorted or not, zipped or
not, as integers or as real numbers of the same values, in which order, finished or not. Neither is
the file history, to which each program that copies a file adds; --history compares it as well.

Groups belong together by name and source, those of one name by their channels and then in order, and
those left over by their channels; channels by name. Records belong together where the master channel
(mostly time) has the same value. Where it has not, and its values grow, the lesser one is of a record
that the other file lacks. In groups without a master channel, records belong together in order.

NaN is equal to NaN, -0 to 0, an invalid value to an invalid one alone. --tolerance 1e-6 lets numbers
count as equal that are no farther apart, --tolerance 0.1% those no farther apart than that part of the
greater one; given twice, either is enough.

--ignore takes these words, with commas between; "name" is that of channel groups:
  start clock properties comment name source unit conversion ranges precision flags values events
  attachments hierarchy reductions

A line for each difference says where it is, and what A and B have; below it come the first records
that differ. Records are numbered from 0 in their group, and so are groups in the file.

Examples:
  mdf diff trip.mf4 copy.mf4                                  has the copy kept everything?
  mdf diff --quiet trip.mf4 copy.mf4 && rm trip.mf4           for a script
  mdf diff old.mf4 new.mf4 --tolerance 0.1% --ignore comment,source
  mdf diff old.mf4 new.mf4 --time-tolerance 1e-6              clocks that were rounded
  mdf diff old.mf4 new.mf4 --json | jq 'select(.kind == "values") | [.name, .count]'

Exit code: 0 no difference, 1 they differ, 2 wrong arguments, an unreadable file, or no difference in
what could be read of a damaged one; standard error says what could not.)";

struct Request {
  std::string a;
  std::string b;
  std::vector<std::string> tolerances;
  double time_tolerance = 0;
  std::vector<std::string> ignored;
  DiffOptions options;
  bool is_json = false;
  bool is_quiet = false;
};

/// Refuses what is neither a number from 0 on nor a percentage.
std::string expectTolerance(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const std::string rest = end;
  const bool is_tolerance = end != text.c_str() && number >= 0 && (rest.empty() || rest == "%");
  return is_tolerance ? std::string() : '"' + text + "\" is not a tolerance such as 1e-6 or 0.1%";
}

Tolerance toleranceOf(const std::vector<std::string>& texts) {
  Tolerance tolerance;
  for (const std::string& text : texts) {
    const double number = std::strtod(text.c_str(), nullptr);
    if (text.back() == '%') {
      tolerance.relative = number / 100;
    } else {
      tolerance.absolute = number;
    }
  }
  return tolerance;
}

/// An object on each line, which says of which files it is.
void writeJson(const FileContext& a, const FileContext& b, const Json& members) {
  Json line = {{"schema", json_schema}, {"file_a", a.file.name()}, {"file_b", b.file.name()}};
  line.update(members);
  a.out << jsonLine(line) << '\n';
}

void show(const Request& request, const FileContext& a, const FileContext& b,
          const Difference& difference) {
  if (request.is_quiet) {
    return;
  }
  if (request.is_json) {
    writeJson(a, b, differenceAsJson(difference));
  } else {
    printDifference(difference, a.out);
  }
}

DiffSummary compare(const Request& request, const FileContext& a, const FileContext& b) {
  const NoteSink note_a = notesOf(a);
  const NoteSink note_b = notesOf(b);
  ComparedFile file_a(a.file, a.report, note_a);
  ComparedFile file_b(b.file, b.report, note_b);
  const bool is_text = !request.is_quiet && !request.is_json;
  if (is_text) {
    a.out << "A: " << onOneLine(a.file.name()) << "\nB: " << onOneLine(b.file.name()) << "\n\n";
  }
  const DiffSummary summary =
      FileComparison(file_a, file_b, request.options, [&](const Difference& difference) {
        show(request, a, b, difference);
      }).run();
  if (is_text) {
    a.out << (summary.isSame() ? "" : "\n");
    printSummary(summary, a.out);
  } else if (request.is_json) {
    writeJson(a, b, summaryAsJson(summary));
  }
  return summary;
}

int run(Request request) {
  request.options.tolerance = toleranceOf(request.tolerances);
  request.options.time_tolerance.absolute = request.time_tolerance;
  request.options.ignored = {request.ignored.begin(), request.ignored.end()};
  request.options.stops_at_first = request.is_quiet;
  bool is_same = true;
  const int reading = onBoth(request.a, request.b, [&](const FileContext& a, const FileContext& b) {
    is_same = compare(request, a, b).isSame();
  });
  const bool is_all_known = reading == exit_fine;
  return !is_same ? exit_problem : is_all_known ? exit_fine : exit_unusable;
}

void addOptions(CommandLine& command, Request& request) {
  command.addOption("A", request.a, "The one file; - is standard input").required().typeName("");
  command.addOption("B", request.b, "The other file").required().typeName("");
  command
      .addOption("--tolerance", request.tolerances,
                 "Numbers no farther apart are equal: 1e-6, or 0.1%")
      .typeName("NUMBER|PERCENT")
      .oneEachTime()
      .check(expectTolerance);
  command
      .addOption("--time-tolerance", request.time_tolerance,
                 "The same of master channels, in their unit")
      .typeName("NUMBER")
      .check(expectNumber)
      .notNegative()
      .silent();
  command.addOption("--ignore", request.ignored, "Leave parts out of the comparison; see below")
      .delimiter(',')
      .typeName("PART,...")
      .oneEachTime()
      .oneOf(ignorableParts())
      .silent();
  command.addFlag("--history", request.options.compares_history, "Compare the file history too");
  command
      .addOption("--samples", request.options.samples,
                 "Show the first N records that differ in each channel (default 3)")
      .typeName("N")
      .check(expectCount);
  const Option json =
      command.addFlag("--json", request.is_json, "Print a JSON object for each difference");
  command
      .addFlag("-q,--quiet", request.is_quiet,
               "Print nothing and stop at the first difference: the exit code tells")
      .excludes(json);
}

}  // namespace

void addDiffCommand(CommandLine& program) {
  CommandLine command = program.addCommand("diff", "Compare what two files mean");
  const auto request = std::make_shared<Request>();
  addOptions(command, *request);
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
