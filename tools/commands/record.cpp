#include <mdf_writer_zip/zipper.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "recording/candump_source.h"
#include "recording/line_recording.h"
#include "recording/line_source.h"
#include "recording/machine_recording.h"
#include "recording/quantity.h"
#include "recording/stop_request.h"

namespace mdf_tools {

namespace {

constexpr const char* footer = R"(Records these signals from /proc and /sys:
  cpu_total, cpu0, ...                 utilisation in %
  load_1min, load_5min, load_15min     load average
  mem_total, mem_free, mem_available, mem_buffers, mem_cached, swap_free   in KiB
  net_<interface>_rx_bytes, _rx_packets, _tx_bytes, _tx_packets            counters
  temp_<chip>_<sensor>                 in degrees Celsius, where there are sensors
and the channel time, in seconds since the start.

Sources are cpu, load, memory, network and temperature; --rate cpu=50 gives one of them a rate and a
channel group of its own. All others share a group.

While it runs, each line on standard input becomes a marker with that text, an event of the file, and
so does each SIGUSR1. Samples that come too late for the rate are left out, counted as missed, and
noted as events with their number, one a second at most.

With --stdin csv, the first line has the names of the channels, with units in brackets as mdf export
writes them; with --stdin json each line is an object. What is a number in the first sample is recorded
as one, what is not as text. Times are in seconds unless the unit says ms, us or ns; those from 2001
on in seconds since 1970 are moments. Empty fields are invalid values. Lines that do not fit are left
out and counted, the first of them is reported.

Ctrl-C and SIGTERM end a recording at once; the file is complete. A recording that is cut off leaves
a file that says that it is unfinished (UnFinMF in place of MDF); it can be opened at any moment and
has everything but the last second. To survive a power failure it takes --sync.

With --stdin candump, each line is a frame as candump -L prints it. Each kind of frame on each bus becomes
a channel group with the bus's name when the first one comes; 'mdf frames' lists them, --trigger knows
them not. To a pipe, buses that come after the first second are left out.

With --rotate the files are OUT_001.mf4, OUT_002.mf4 and so on, with no sample between them missing;
each says in its header when it begins. With --zip, blocks that fill are deflated; the last one of a
file stays as it is.

With --ring, samples stay in memory, and the file has the last of them when the recording ends. With
--trigger, the file begins when the condition becomes true, or is with the first sample. It has what
came in the time of --pre-trigger before (by default all that --ring keeps) and goes on for that of
--post-trigger, or until the end. The trigger is an event in it. With --rotate, the next trigger after
that time begins another file; no sample is in two. Without --duration, either goes on until Ctrl-C.

Memory holds 256 MiB of samples, an hour or two of a machine's at 100 Hz; the oldest give way, and are
counted. What is in memory is lost when the program is killed or the power fails. Once a trigger has
fired, the file has everything but the last second, as any other. When none fires there is no file.

On standard output that is a pipe, a recording is one that stays unfinished, without events.

Examples:
  mdf record drive.mf4                            ten seconds, 100 samples a second
  mdf record drive.mf4 --duration 1.5h --rate 10Hz
  mdf record drive.mf4 --duration 0 --sync        until Ctrl-C, or until the power fails
  mdf record drive.mf4 --rate 10 --rate cpu=50 -c 'cpu*' -c 'mem_*'
  sensor-program | mdf record drive.mf4 --stdin csv
  candump -L can0,can1 | mdf record drive.mf4 --stdin candump --rotate 1GB
  mdf record drive.mf4 --duration 0 --zip --rotate 1GB
  mdf record drive.mf4 --ring 5min                the last five minutes before Ctrl-C
  mdf record drive.mf4 --trigger 'cpu_total > 90' --pre-trigger 5min --post-trigger 1min
  mdf record - | ssh host 'cat > drive.mf4'

Exit code: 0 recorded, 1 the file could not be written to the end, lines were left out or no trigger
fired, 2 the recording could not start.)";

struct Request {
  RecorderOptions to;
  std::string duration;
  std::vector<std::string> rates;
  std::vector<std::string> channels;
  bool replaces = false;
  bool syncs = false;
  bool zips = false;
  std::string limit;  ///< of a file, as it was written
  std::optional<std::string> ring;
  std::optional<std::string> trigger;
  std::optional<std::string> pre_trigger;
  std::optional<std::string> post_trigger;
  std::string lines;  ///< the form of those on standard input; empty for the machine's signals
  std::string time;   ///< the channel that has their times
};

/// "100Hz", or "cpu=50" for one source.
MachineOptions machineOptions(const Request& request) {
  MachineOptions options;
  options.patterns = request.channels;
  const std::vector<std::string>& sources = Machine::sourceNames();
  for (const std::string& text : request.rates) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
      options.rate = parseRate(text);
      continue;
    }
    const std::string source = text.substr(0, equals);
    if (std::find(sources.begin(), sources.end(), source) == sources.end()) {
      throw BadOption('"' + source +
                      "\" is no source; there are cpu, load, memory, network and temperature");
    }
    options.rates[source] = parseRate(text.substr(equals + 1));
  }
  return options;
}

std::int64_t nanosecondsIn(const std::string& duration) {
  return std::llround(parseDuration(duration) * 1e9);
}

std::optional<RingOptions> ringOptions(const Request& request) {
  if (!request.ring && !request.trigger) {
    return std::nullopt;
  }
  RingOptions options;
  options.nanoseconds = nanosecondsIn(request.ring.value_or("0"));
  if (request.pre_trigger) {
    const std::int64_t pre_trigger = nanosecondsIn(*request.pre_trigger);
    if (request.ring && pre_trigger > options.nanoseconds) {
      throw BadOption("--pre-trigger " + *request.pre_trigger + " is longer than --ring " +
                      *request.ring);
    }
    options.nanoseconds = pre_trigger;
  }
  if (request.trigger) {
    options.trigger = parseCondition(*request.trigger);
  }
  if (request.post_trigger) {
    options.post_trigger = nanosecondsIn(*request.post_trigger);
  }
  return options;
}

RecorderOptions recorderOptions(const Request& request, mdf_writer::Packer* packer) {
  RecorderOptions options = request.to;
  options.writing.existing =
      request.replaces ? mdf_writer::Existing::replace : mdf_writer::Existing::keep;
  options.writing.durability =
      request.syncs ? mdf_writer::Durability::flushes : mdf_writer::Durability::none;
  options.writing.packer = packer;
  if (!request.limit.empty()) {
    options.limit = parseFileLimit(request.limit);
  }
  options.ring = ringOptions(request);
  return options;
}

std::unique_ptr<SampleLines> lineSource(const Request& request) {
  if (request.lines == "candump") {
    if (!request.time.empty()) {
      throw BadOption(
          "the lines of candump have their times where candump puts them, not in --time " +
          request.time);
    }
    return std::make_unique<CandumpSource>();
  }
  return std::make_unique<LineSource>(request.lines == "csv" ? LineForm::csv : LineForm::json,
                                      request.time);
}

ExitCode record(const Request& request) {
  std::optional<mdf_writer::Zipper> zipper;
  if (request.zips) {
    mdf_writer::ZipOptions zip;
    zip.is_transposed = true;
    zip.has_own_thread = true;
    zipper.emplace(zip);
  }
  const RecorderOptions options = recorderOptions(request, zipper ? &*zipper : nullptr);
  const bool has_lines = !request.lines.empty();
  const bool has_end = !has_lines && !options.ring;
  const double duration = parseDuration(!request.duration.empty() ? request.duration
                                        : has_end                 ? "10s"
                                                                  : "0");
  watchForRequests();
  if (has_lines) {
    const std::uint64_t bad_lines =
        recordLines(lineSource(request), duration, options, MDF_PROGRAM_VERSION);
    return bad_lines == 0 ? exit_fine : exit_problem;
  }
  recordMachine(machineOptions(request), duration, options, MDF_PROGRAM_VERSION);
  return exit_fine;
}

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

int run(const Request& request) {
  try {
    return record(request);
  } catch (const BadOption& error) {
    return complain(error.what(), exit_unusable);
  } catch (const UnusablePath& error) {
    return complain(error.what(), exit_unusable);
  } catch (const RecordingFailure& error) {
    return complain(error.what(), exit_problem);
  }
}

void addRingOptions(CommandLine& command, Request& request) {
  command
      .addOption(
          "--ring", request.ring,
          "Record the last TIME only: in memory, until the recording ends or a trigger fires")
      .typeName("TIME");
  const Option trigger =
      command
          .addOption("--trigger", request.trigger,
                     "Begin the file when a condition becomes true: a channel, one of > >= < <= "
                     "== != and a number, such as 'cpu_total > 90'")
          .typeName("CONDITION");
  command
      .addOption(
          "--pre-trigger", request.pre_trigger,
          "How much of what came before the trigger is in the file; without, all that --ring "
          "keeps")
      .typeName("TIME")
      .needs(trigger);
  command
      .addOption("--post-trigger", request.post_trigger,
                 "How long the file goes on after the trigger; without, until the end")
      .typeName("TIME")
      .needs(trigger);
}

}  // namespace

void addRecordCommand(CommandLine& program) {
  const auto request = std::make_shared<Request>();
  CommandLine command =
      program.addCommand("record", "Record the live signals of this machine in a new file");
  command.addOption("OUT.mf4", request->to.path, "The file; - is standard output")
      .required()
      .typeName("FILE");
  command
      .addOption("--duration", request->duration,
                 "How long: a number and ms, s, min or h; 0 for until Ctrl-C")
      .typeName("TIME")
      .showDefault("10s");
  const Option rate =
      command
          .addOption(
              "--rate", request->rates,
              "How many samples a second: a number and Hz or kHz, or one for one source, such "
              "as cpu=50Hz (repeatable)")
          .typeName("RATE")
          .oneEachTime()
          .showDefault("100Hz");
  const Option channels =
      command
          .addOption("-c,--channels", request->channels,
                     "Only the signals whose names match a pattern (repeatable)")
          .typeName("GLOB")
          .oneEachTime();
  command.addFlag("--force", request->replaces, "Replace an existing file");
  command.addFlag("--sync", request->syncs,
                  "Wait each second until the medium has everything, so that it survives a power "
                  "failure");
  command.addFlag("--zip", request->zips, "Deflate the data, on a thread of its own");
  command
      .addOption("--rotate", request->limit,
                 "Go on in the next file, OUT_002.mf4, when one has that size or is that long: a "
                 "number and kB, MB, GB, TB, s, min or h")
      .typeName("SIZE|TIME");
  addRingOptions(command, *request);
  const Option lines = command
                           .addOption("--stdin", request->lines,
                                      "Record what comes in lines on standard input, until its end")
                           .choice({"csv", "json", "candump"})
                           .excludes(rate)
                           .excludes(channels);
  command
      .addOption("--time", request->time,
                 "Which channel of them has the times; without, samples have the times at which "
                 "they come")
      .typeName("NAME")
      .needs(lines);
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
