#include <memory>
#include <string>

#include "command.h"
#include "command_line/command_line.h"
#include "decoding_option.h"
#include "file_command.h"
#include "number_option.h"
#include "sample_options.h"
#include "table_export.h"
#include "time_option.h"

namespace mdf_tools {

namespace {

constexpr const char* footer =
    R"TXT(The samples of each channel group become a table, with a row for each record and a column for each
channel, headed by its name and unit. The master channel (mostly time, in seconds since the recording
began) comes first, even where it belongs to another group (MDF 4.2). Numbers have as many digits as
it takes to read the same number back. Invalid samples are empty fields (null in jsonl), bytes are
written as hexadecimal digits, dates as 2024-05-17T13:45:12.345.

--from and --to look records up by bisection where they stand side by side: times are taken to grow
from record to record, as they do in sound files. Where those looked at do not, all are read.

With --time iso, times are dates with the zone that the file states, 2024-05-17T13:45:12.5+02:00; with
--time ns, integers: nanoseconds since 1970. Both need the time at which the measurement began.

Formats:
  csv    a line "name [unit],..." and a line for each sample, quoted as in RFC 4180. Several tables
         follow one another, with an empty line between them.
  jsonl  a line {"schema":2,"file":...,"group":N,"name":...,"columns":[{"name":...,"unit":...},...]} for each
         table and a line {"schema":2,"file":...,"group":N,"values":{"name":value,...}} for each sample.
  mat    a MATLAB file, for which the library libmatio must be installed; with a folder for OUT,
         FILE.mat there. Each table is a structure with a column for each channel, such as engine.rpm,
         and with the original names and the units, engine.info.names.rpm and engine.info.units.rpm.
         Integers keep their class unless values are missing: then they are double, with NaN. Texts and
         bytes are cell arrays. The file is of version 5, compressed, or of version 7.3 where a
         structure is larger than 2 GB. Each table is in memory while it is written.

Names:
Members of structures are called "structure.member", elements of arrays "name[0][1]", members of
such an element "name[0].member"; the second channel with a name is "name (2)". Channel groups are
numbered from 0 through the whole file. In conversion formulas, log is the logarithm to base 10 and
ln the natural one.

Tables:
With a folder for OUT, each table gets a file there:
FILE.N_NAME.csv for channel group N of FILE, which has that name, and FILE.N.csv for one without.
Characters that some file system has no place for are replaced.

A table without samples is left out, in a folder as in one output, and a note counts those;
--empty writes them all the same, as a line of names.

One table of several channel groups:
--on-time GROUP has a row for each record of that group, at its time, and the wanted channels of all
groups as columns. --on-time RATE has rows at equal distances, from the earliest sample of those
channels (or --from) to the latest (or --to). RATE is a number with Hz, mHz, kHz, MHz, GHz, or with
s, ms, us, ns for the time between rows: 10Hz and 100ms are the same. What reads as a RATE is none
of a GROUP; to name a group "10Hz", give its number or a pattern such as "10H?".

A row shows the latest sample at its time or before. With --linear, numbers lie on the line between
the samples around the row, whatever their type; texts and bytes stay those before. A field is empty
before the first sample of a channel and after the last one, where the sample to be shown is
invalid, and on a line where one of the two is. Groups are left out, with a note, that have no
master channel or one of another kind or unit than the rows (for a RATE: time in seconds), and
records whose time goes backwards or is no finite number. Names that several groups have get the
group's name in front, "engine.speed", or its number. --first, --last and --stride count records of
GROUP, or rows. Groups are read side by side: memory grows with their number, not with the samples.

Array elements that have records of their own become a table each, with the channels that they
share: FILE.N.K_NAME.csv for element K of channel group N, numbered from 0; jsonl has K as "element".

Examples:
  mdf export trip.mf4 > trip.csv
  mdf export trip.mf4 -o tables/                        a file for each channel group
  mdf export trip.mf4 -c 'speed*' -c rpm --from 10 --to 20
  mdf export trip.mf4 --group 0 --format jsonl | jq .values.time
  mdf export trip.mf4 -o trip.mat                       a MATLAB file
  mdf export trip.mf4 --on-time 10Hz -c 'speed*' -c rpm     ten rows a second
  mdf export trip.mf4 --on-time engine --linear             rows where group "engine" has its own

Exit code: 0 fine, 1 problems found in the file, 2 wrong arguments or unreadable file.)TXT";

/// Refuses rates such as "0Hz".
std::string expectUsableRate(const std::string& text) {
  const auto rate = readRate(text);
  return rate && !rate->isUsable()
             ? '"' + text + "\" is not a rate from 1e-9Hz to 1e9Hz, or from 1ns to 1e9s"
             : std::string();
}

/// Adds --on-time and --linear.
void addTimeBaseOptions(CommandLine& command, const std::shared_ptr<TableRequest>& request) {
  const Option on_time =
      command
          .addOption(
              "--on-time",
              [request](const std::string& text) {
                request->on_time = TimeBase{readRate(text), text, Between::held};
              },
              "One table: rows where this channel group has them, or at a rate such as 10Hz")
          .typeName("GROUP|RATE")
          .check(expectUsableRate)
          .excludes(command.option("--raw"));
  command.addFlag("--linear", request->is_linear, "Numbers on the line between two samples")
      .needs(on_time);
}

}  // namespace

void addExportCommand(CommandLine& program) {
  CommandLine command =
      program.addCommand("export", "Write the samples as CSV, JSON lines or a MATLAB file");
  const auto request = std::make_shared<TableRequest>();
  request->paths = addFileArguments(command);
  command
      .addOption("-o,--output", request->output,
                 "A file, a folder with / at its end, or - for standard output")
      .typeName("OUT");
  const Option format = command
                            .addOption("--format", request->format,
                                       "The form of the tables; csv unless OUT ends in .mat")
                            .choice({"csv", "jsonl", "mat"});
  command
      .addFlag(
          "--json", [request] { request->format = "jsonl"; }, "The same as --format jsonl")
      .excludes(format);
  request->query = addSelectionOptions(command, false);
  request->decoding = addDecodingOptions(command);
  addTimeBaseOptions(command, request);
  command.addFlag("--empty", request->with_empty, "Write tables without samples, too");
  addTimeOption(command, request->time);
  command
      .addOption("--digits", request->digits,
                 "Numbers with so many significant digits, in place of as many as it takes")
      .typeName("N")
      .check(expectCount)
      .within(1, 17);
  command
      .addOption("--threads", request->query->threads,
                 "Unzip data and make text on so many cores; on all of them unless said otherwise")
      .typeName("N")
      .check(expectCount)
      .within(1, 256);
  command.footer(footer);
  command.onRun([request] {
    if (request->on_time && request->is_linear) {
      request->on_time->between = Between::linear;
    }
    return exportTables(*request);
  });
}

}  // namespace mdf_tools
