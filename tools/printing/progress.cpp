#include "progress.h"

#include <array>

#include "formatted.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* erase_line = "\r\x1B[K";

struct Unit {
  const char* name;
  double bytes;
};

Unit unitFor(std::uint64_t bytes) {
  constexpr std::array<Unit, 3> units = {Unit{"GiB", 1U << 30U}, Unit{"MiB", 1U << 20U},
                                         Unit{"KiB", 1U << 10U}};
  for (const Unit& unit : units) {
    if (static_cast<double>(bytes) >= unit.bytes) {
      return unit;
    }
  }
  return {"bytes", 1};
}

}  // namespace

std::string readSoFar(std::uint64_t bytes, std::uint64_t whole) {
  const Unit unit = unitFor(bytes <= whole ? whole : bytes);
  const int digits = unit.bytes == 1 ? 0 : 1;
  const double count = static_cast<double>(bytes) / unit.bytes;
  if (bytes > whole) {
    return formatted("%.*f %s", digits, count, unit.name);
  }
  return formatted("%.*f of %.*f %s", digits, count, digits,
                   static_cast<double>(whole) / unit.bytes, unit.name);
}

Progress::Progress(const InputFile& file, std::ostream& terminal,
                   std::chrono::milliseconds interval)
    : file_(file), terminal_(terminal), interval_(interval), thread_([this] { show(); }) {}

Progress::~Progress() {
  {
    const std::lock_guard lock(mutex_);
    is_over_ = true;
  }
  end_.notify_one();
  thread_.join();
}

void Progress::interrupt(const std::function<void()>& print) {
  const std::lock_guard lock(mutex_);
  hide();
  print();
}

void Progress::show() {
  std::unique_lock lock(mutex_);
  while (!end_.wait_for(lock, interval_, [this] { return is_over_; })) {
    terminal_ << erase_line << "read " << readSoFar(file_.bytesRead(), file_.size()) << std::flush;
    is_shown_ = true;
  }
  hide();
}

void Progress::hide() {
  if (is_shown_) {
    terminal_ << erase_line << std::flush;
    is_shown_ = false;
  }
}

}  // namespace mdf_tools
