#include "machine_recording.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <thread>
#include <utility>

#include "line_input.h"
#include "markers.h"
#include "quantity.h"
#include "sample_clock.h"
#include "status_line.h"

namespace mdf_tools {

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// Turns misses into events, one a second at most.
class Misses {
 public:
  void note(std::uint64_t missed, std::int64_t now, Recorder& recorder) {
    if (missed > noted_ && now >= next_) {
      add(missed, now, recorder);
    }
  }

  void add(std::uint64_t missed, std::int64_t now, Recorder& recorder) {
    if (missed > noted_) {
      mdf_writer::Event event{counted(missed - noted_, "sample") + " missed", now};
      event.type = mdf_v4_10::EVBLOCK::EV_TYPE_ACQUISITION_INTERRUPT;
      event.cause = mdf_v4_10::EVBLOCK::EV_CAUSETYPE_TOOL;
      recorder.add(event);
      noted_ = missed;
      next_ = now + second;
    }
  }

 private:
  std::uint64_t noted_ = 0;
  std::int64_t next_ = 0;
};

/// "10 Hz, cpu at 50 Hz".
std::string textOf(const MachineOptions& options) {
  std::string text = shortNumber(options.rate) + " Hz";
  for (const auto& [source, rate] : options.rates) {
    text += ", " + source + " at " + shortNumber(rate) + " Hz";
  }
  return text;
}

/// Utilisation is known only when some time has passed since the first look at the counters.
void settle(Machine& machine) {
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  for (std::size_t i = 0; i < machine.groups().size(); ++i) {
    machine.sample(i, 0);
  }
}

/// A record is in the file within a second after it was taken.
std::int64_t flushInterval(const std::vector<double>& rates) {
  const double period = static_cast<double>(second) / *std::max_element(rates.begin(), rates.end());
  return std::max<std::int64_t>(1, second - std::llround(std::min(period, 1e9)));
}

}  // namespace

void recordMachine(const MachineOptions& machine_options, double duration, RecorderOptions options,
                   const std::string& tool_version) {
  Machine machine(machine_options);
  options.writing.flush_interval = flushInterval(machine.rates());
  const std::string rates = textOf(machine_options);
  Recorder recorder(std::move(options),
                    {"Live signals of " + Machine::description() + ", recorded at " + rates,
                     tool_version, machine.groups()});
  settle(machine);

  SampleClock clock(machine.rates(), duration);
  Markers markers(STDIN_FILENO);
  Misses misses;
  StatusLine status;
  const auto wait = [&](std::int64_t nanoseconds) {
    markers.wait(nanoseconds);
    markers.add(recorder, clock.now());
    return !recorder.isOver(clock.now());
  };
  const auto losses = [&] { return counted(clock.missed(), "sample") + " missed"; };
  while (const auto group = clock.waitForSample(wait)) {
    const std::int64_t now = clock.now();
    misses.note(clock.missed(), now, recorder);
    recorder.append({*group, now, machine.sample(*group, static_cast<double>(now) / 1e9)});
    status.show(now, recorder, losses());
    if (!wait(0)) {
      break;
    }
  }
  const std::int64_t end = clock.now();
  misses.add(clock.missed(), end, recorder);
  recorder.finish();
  status.end();
  summarise(recorder, end, losses());
  if (clock.missed() > 0) {
    (void)std::fprintf(stderr,
                       "could not keep up %s all the time; a lower --rate misses fewer samples\n",
                       rates.c_str());
  }
}

}  // namespace mdf_tools
