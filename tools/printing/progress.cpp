#include "progress.h"

#include <array>

#include "reader/bytes/formatted.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* erase_line = "\r\x1B[K";
constexpr std::size_t most_of_a_name = 40;  // so that the line is one on the screen

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

Progress::Progress(const InputFile& file, const std::string& name, std::ostream& terminal,
                   std::chrono::milliseconds interval)
    : file_(file),
      name_(name.empty() ? "" : printable(name, Harmless::utf8, most_of_a_name) + ": "),
      terminal_(terminal),
      interval_(interval),
      thread_([this] { show(); }) {}

Progress::~Progress() {
  {
    const std::lock_guard lock(mutex_);
    is_over_ = true;
  }
  end_.notify_one();
  thread_.join();
}

void Progress::interrupt(const std::function<void()>& print, bool ends_line) {
  const std::lock_guard lock(mutex_);
  hide();
  print();
  is_line_open_ = !ends_line;
}

void Progress::show() {
  std::unique_lock lock(mutex_);
  while (!end_.wait_for(lock, interval_, [this] { return is_over_; })) {
    if (is_line_open_) {
      continue;
    }
    terminal_ << erase_line << name_ << "read " << readSoFar(file_.bytesRead(), file_.size())
              << std::flush;
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
