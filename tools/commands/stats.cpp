#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "decoding_option.h"
#include "file_command.h"
#include "measuring/table_meter.h"
#include "printing/json_output.h"
#include "printing/statistics.h"
#include "printing/style.h"
#include "printing/text_table.h"
#include "reader/bytes/input_file.h"
#include "sample_options.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(Reads all samples, or those you choose, and says of each channel group:
  records      how many there are
  bytes        records times the bytes of one, record id and invalidation bytes included, before
               compression; values of variable length that stand elsewhere are not counted
  rate         records for each unit of the master channel (mostly time), from its first value to
               the last one
  longest gap  between two master values that follow one another, and after which value and record
  backwards    how many master values are less than the one before, and after which it is so first

And of each channel, in its physical unit:
  values       how many there are, those below aside
  invalid      records without a value
  not finite   NaN and infinite values; what follows is without these
  first, last, minimum, maximum, mean
  deviation    the sample standard deviation: the root of the sum of squared differences from the
               mean, divided by the number of values less one

Texts, and bytes as hexadecimal digits, have only a first and a last value, cut after 1000 bytes.
What is not known is empty, or null with --json. Records are numbered from 0 in their group, and so
are groups in the file; after a point comes the number of an array's element that has records of its
own.

Examples:
  mdf stats trip.mf4                                      every channel
  mdf stats trip.mf4 -c 'speed*' --from 10 --to 20        ten seconds of some
  mdf stats trip.mf4 --du                                 what takes most of the file comes first
  mdf stats *.mf4 --json | jq 'select(.backwards > 0) | [.file, .group]'
                                                          where times go backwards
  mdf stats trip.mf4 --json | jq '.channels[] | select(.minimum == .maximum) | .name'
                                                          channels that never change

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::shared_ptr<std::vector<std::string>> paths;
  std::shared_ptr<Query> query;
  std::shared_ptr<DecodingRequest> decoding;
  bool is_json = false;
  bool by_bytes = false;
};

TableStatistics measure(Table& table) {
  TableMeter meter(table.head());
  while (const Batch* const batch = table.next()) {
    meter.add(*batch);
  }
  return meter.statistics();
}

void print(const std::vector<TableStatistics>& tables, const Request& request,
           const FileContext& context) {
  const std::string& file = context.file.name();
  if (request.is_json) {
    for (const TableStatistics& table : tables) {
      context.out << jsonLine(statisticsAsJson(file, table)) << '\n';
    }
    return;
  }
  if (context.is_one_of_several) {
    context.out << Style::strong << onOneLine(file) << ':' << Style::plain << '\n';
  }
  printStatistics(tables, context.out);
}

/// Prints the statistics of one file; returns the exit code.
int printFile(const Request& request, const FileContext& context, bool is_first) {
  const NoteSink note = notesOf(context);
  Tables tables(context.file, *request.query, context.report, note);
  std::vector<TableStatistics> statistics;
  while (Table* const table = tables.next()) {
    statistics.push_back(measure(*table));
  }
  if (statistics.empty()) {
    if (request.query->channels.empty() && request.query->group.empty()) {
      return exit_fine;
    }
    note(nothingChosen(*request.query));
    return exit_problem;
  }
  if (request.by_bytes) {
    std::stable_sort(statistics.begin(), statistics.end(),
                     [](const TableStatistics& left, const TableStatistics& right) {
                       return left.bytes() > right.bytes();
                     });
  }
  if (!is_first && !request.is_json) {
    context.out << '\n';
  }
  print(statistics, request, context);
  return exit_fine;
}

int run(const Request& request) {
  int exit_code = exit_fine;
  bool is_first = true;
  const int reading =
      onEachFile(*request.paths, *request.decoding, [&](const FileContext& context) {
        exit_code = std::max(exit_code, printFile(request, context, is_first));
        is_first = false;
      });
  return std::max(exit_code, reading);
}

}  // namespace

void addStatsCommand(CommandLine& program) {
  CommandLine command =
      program.addCommand("stats", "Measure the samples: extremes, means, rates, gaps, bytes");
  const auto request = std::make_shared<Request>();
  request->paths = addFileArguments(command);
  request->query = addSelectionOptions(command, false);
  request->decoding = addDecodingOptions(command);
  command.addFlag("--du", request->by_bytes, "Sort the groups by their bytes, largest first");
  command.addFlag("--json", request->is_json, "Print a JSON object for each channel group");
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
