#include "status_line.h"

#include <unistd.h>

#include <cstdio>

namespace mdf_tools {

namespace {

constexpr std::int64_t second = 1'000'000'000;

double secondsOf(std::int64_t nanoseconds) {
  return static_cast<double>(nanoseconds) / static_cast<double>(second);
}

}  // namespace

std::string counted(std::uint64_t number, const std::string& noun) {
  return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

StatusLine::StatusLine() : is_terminal_(isatty(STDERR_FILENO) != 0) {}

void StatusLine::show(std::int64_t nanoseconds, const Recorder& recorder,
                      const std::string& losses) {
  if (!is_terminal_ || nanoseconds < last_ + second) {
    return;
  }
  const double rate =
      static_cast<double>(recorder.records() - last_records_) / secondsOf(nanoseconds - last_);
  const std::string waiting =
      recorder.isWaiting() ? counted(recorder.held(), "record") + " in memory, " : "";
  (void)std::fprintf(stderr, "\r%.0f s, %s%s, %.0f/s, %.1f MB, %s\033[K", secondsOf(nanoseconds),
                     waiting.c_str(), counted(recorder.records(), "record").c_str(), rate,
                     static_cast<double>(recorder.bytes()) / 1e6, losses.c_str());
  last_ = nanoseconds;
  last_records_ = recorder.records();
  is_shown_ = true;
}

void StatusLine::note(const std::string& sentence) {
  end();
  (void)std::fprintf(stderr, "mdf: %s\n", sentence.c_str());
}

void StatusLine::end() {
  if (is_shown_) {
    (void)std::fputs("\r\033[K", stderr);
    is_shown_ = false;
  }
}

void summarise(const Recorder& recorder, std::int64_t nanoseconds, const std::string& losses) {
  (void)std::fprintf(stderr, "recorded %s of %s in %.1f s to %s, %s\n",
                     counted(recorder.records(), "record").c_str(),
                     counted(recorder.channels(), "channel").c_str(), secondsOf(nanoseconds),
                     recorder.place().c_str(), losses.c_str());
  if (recorder.missing() > 0) {
    (void)std::fprintf(
        stderr, "the ring's memory was full: %s dropped early; the file begins later than asked\n",
        counted(recorder.missing(), "sample").c_str());
  }
}

}  // namespace mdf_tools
