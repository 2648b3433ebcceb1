#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "command.h"
#include "recording/machine.h"
#include "recording/quantity.h"
#include "recording/recorder.h"
#include "recording/sample_clock.h"
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

Ctrl-C and SIGTERM end a recording at once; the file is complete. A recording that is cut off, by a
power failure say, leaves a file that starts with UnFinMF in place of MDF. Samples that come too
late for the rate are left out and counted as missed.

Examples:
  mdf record drive.mf4                            ten seconds, 100 samples a second
  mdf record drive.mf4 --duration 1.5h --rate 10Hz
  mdf record drive.mf4 --duration 0               until Ctrl-C

Exit code: 0 recorded, 1 the file could not be written to the end, 2 the recording could not start.)";

struct Request {
  std::string path;
  std::string duration = "10s";
  std::string rate = "100Hz";
};

/// Shows how a recording gets on, once a second on a terminal.
class Progress {
 public:
  Progress() = default;
  ~Progress() { end(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(double seconds, std::uint64_t records, std::uint64_t missed) {
    if (is_terminal_ && seconds >= next_) {
      (void)std::fprintf(stderr, "\r%.0f s, %llu records, %llu samples missed", seconds,
                         static_cast<unsigned long long>(records),
                         static_cast<unsigned long long>(missed));
      next_ = seconds + 1;
      shown_ = true;
    }
  }
  /// Clears the line for what is printed next.
  void end() {
    if (shown_) {
      (void)std::fputs("\r\033[K", stderr);
      shown_ = false;
    }
  }

 private:
  bool is_terminal_ = isatty(STDERR_FILENO) != 0;
  bool shown_ = false;
  double next_ = 1;
};

double secondsOf(std::int64_t nanoseconds) { return static_cast<double>(nanoseconds) / 1e9; }

std::string counted(std::uint64_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string titleOf(double rate) {
  return "Live signals of " + Machine::description() + ", recorded at " + shortNumber(rate) + " Hz";
}

/// Utilisation is known only when some time has passed since the first look at the counters.
void settle(Machine& machine) {
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  for (std::size_t i = 0; i < machine.groups().size(); ++i) {
    machine.sample(i, 0);
  }
}

void summarise(const Recorder& recorder, const Request& request, double rate, double seconds,
               std::uint64_t missed) {
  (void)std::fprintf(stderr, "recorded %s of %s in %.1f s to %s, %s missed\n",
                     counted(recorder.records(), "record").c_str(),
                     counted(recorder.channels(), "channel").c_str(), seconds, request.path.c_str(),
                     counted(missed, "sample").c_str());
  if (missed > 0) {
    (void)std::fprintf(
        stderr, "could not keep up %s Hz all the time; a lower --rate misses fewer samples\n",
        shortNumber(rate).c_str());
  }
}

/// A record is in the file within a second after it was taken.
std::int64_t flushInterval(double rate) {
  constexpr double second = 1e9;
  return std::max<std::int64_t>(1, std::llround(second - second / rate));
}

void record(const Request& request, double duration, double rate) {
  watchForStopRequest();
  Machine machine({rate, {}, {}});
  mdf_writer::Options options;
  options.existing = mdf_writer::Existing::replace;
  options.flush_interval = flushInterval(rate);
  Recorder recorder(request.path, {titleOf(rate), MDF_PROGRAM_VERSION, machine.groups()}, options);
  settle(machine);

  SampleClock clock(machine.rates(), duration);
  Progress progress;
  while (const auto group = clock.waitForSample()) {
    const std::int64_t now = clock.now();
    recorder.append({*group, now, machine.sample(*group, secondsOf(now))});
    progress.show(secondsOf(now), recorder.records(), clock.missed());
  }
  const double seconds = secondsOf(clock.now());
  recorder.finish();
  progress.end();
  summarise(recorder, request, rate, seconds, clock.missed());
}

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

int run(const Request& request) {
  if (request.path == "-") {
    return complain(
        "cannot record to standard output: finishing a recording goes back to its "
        "start; name a file",
        exit_unusable);
  }
  double duration = 0;
  double rate = 0;
  try {
    duration = parseDuration(request.duration);
    rate = parseRate(request.rate);
    record(request, duration, rate);
  } catch (const BadOption& error) {
    return complain(error.what(), exit_unusable);
  } catch (const UnusablePath& error) {
    return complain(error.what(), exit_unusable);
  } catch (const RecordingFailure& error) {
    return complain(error.what(), exit_problem);
  }
  return exit_fine;
}

}  // namespace

void addRecordCommand(CLI::App& app, int& exit_code) {
  const auto request = std::make_shared<Request>();
  CLI::App* const command =
      app.add_subcommand("record", "Record the live signals of this machine in a new file");
  command->add_option("OUT.mf4", request->path, "The file; an existing one is overwritten")
      ->required()
      ->type_name("FILE");
  command
      ->add_option("--duration", request->duration,
                   "How long: a number and ms, s, min or h; 0 for until Ctrl-C")
      ->type_name("TIME")
      ->capture_default_str();
  command->add_option("--rate", request->rate, "How many samples a second: a number and Hz or kHz")
      ->type_name("RATE")
      ->capture_default_str();
  command->footer(footer);
  command->callback([request, &exit_code] { exit_code = run(*request); });
}

}  // namespace mdf_tools
