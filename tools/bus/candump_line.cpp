#include "candump_line.h"

#include <mdf_writer/mdf_writer.h>

#include <algorithm>
#include <optional>

namespace mdf_tools {

namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::size_t classic_bytes = 8;
constexpr std::size_t fd_bytes = 64;

bool isDigit(char character) { return character >= '0' && character <= '9'; }

std::optional<std::uint8_t> digitOf(char character) {
  if (isDigit(character)) {
    return static_cast<std::uint8_t>(character - '0');
  }
  const char lower = static_cast<char>(static_cast<unsigned char>(character) | 0x20U);
  return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<std::uint8_t>(lower - 'a' + 10))
                                      : std::nullopt;
}

bool isBlank(char character) { return character == ' ' || character == '\t'; }

}  // namespace

bool CandumpLine::isOne(std::string_view line) {
  const std::size_t close = line.find(')');
  return close != std::string_view::npos && line[0] == '(' &&
         line.substr(1, close - 1).find_first_not_of("0123456789.") == std::string_view::npos &&
         line.find('#', close) != std::string_view::npos;
}

void CandumpLine::refuse(const std::string& expected) const {
  throw UnfitFrame{
      at_ + 1,
      "expected " + expected + (at_ < line_.size() ? ", found something else" : ", found nothing")};
}

bool CandumpLine::skip(char character) {
  const bool is_there = at_ < line_.size() && line_[at_] == character;
  at_ += is_there ? 1U : 0U;
  return is_there;
}

void CandumpLine::skipBlanks() {
  while (at_ < line_.size() && isBlank(line_[at_])) {
    ++at_;
  }
}

const LoggedFrame& CandumpLine::take(std::string_view line) {
  line_ = line;
  at_ = 0;
  socket_ = {};
  takeTime();
  takeBus();
  takeId();
  takeContents();
  takeDirection();
  setFrame(socket_, logged_.frame);
  logged_.frame.bus = bus_;
  return logged_;
}

/// Seconds and at most nine decimal places.
void CandumpLine::takeTime() {
  const std::size_t begin = at_ + 1;
  std::int64_t seconds = 0;
  if (!skip('(') || at_ == line_.size() || !isDigit(line_[at_])) {
    at_ = begin - 1;
    refuse("a time in brackets, such as (1345212884.318850)");
  }
  for (; at_ < line_.size() && isDigit(line_[at_]) && seconds <= last_log_second; ++at_) {
    seconds = 10 * seconds + (line_[at_] - '0');
  }
  if (seconds > last_log_second) {
    refuse("a time before the year 2261");
  }
  std::int64_t nanoseconds = 0;
  if (skip('.')) {
    std::int64_t unit = second / 10;
    for (; at_ < line_.size() && isDigit(line_[at_]) && unit > 0; ++at_, unit /= 10) {
      nanoseconds += unit * (line_[at_] - '0');
    }
  }
  if (!skip(')')) {
    refuse("the end of the time, a bracket");
  }
  logged_.nanoseconds = seconds * second + nanoseconds;
}

void CandumpLine::takeBus() {
  constexpr std::size_t most = 100;  // bytes; the names of interfaces have at most 15
  skipBlanks();
  const std::size_t begin = at_;
  while (at_ < line_.size() && !isBlank(line_[at_])) {
    ++at_;
  }
  bus_.assign(line_.substr(begin, at_ - begin));
  if (bus_.empty() || bus_.size() > most || !mdf_writer::isUtf8(bus_)) {
    at_ = begin;
    refuse("the name of a bus");
  }
  skipBlanks();
}

/// Three digits, or eight for an identifier of 29 bits and for the class of an error.
void CandumpLine::takeId() {
  constexpr std::uint32_t most_standard = 0x7FF;
  constexpr std::uint32_t most_extended = 0x1FFFFFFF;
  const std::size_t begin = at_;
  std::uint32_t id = 0;
  for (; at_ < line_.size() && digitOf(line_[at_]) && at_ - begin < 8; ++at_) {
    id = 16 * id + *digitOf(line_[at_]);
  }
  const std::size_t digits = at_ - begin;
  const bool is_error = digits == 8 && (id & ~most_extended) == SocketCanFrame::error;
  const bool fits = (digits == 3 && id <= most_standard) || (digits == 8 && id <= most_extended);
  if ((!fits && !is_error) || !skip('#')) {
    at_ = begin;
    refuse("an identifier of 3 or 8 hexadecimal digits and #");
  }
  socket_.id = id | (digits == 8 && !is_error ? SocketCanFrame::extended : 0U);
}

void CandumpLine::takeContents() {
  constexpr std::uint8_t most_flags = 7;
  const bool is_error = (socket_.id & SocketCanFrame::error) != 0;
  if (!is_error && skip('#')) {
    const auto flags = at_ < line_.size() ? digitOf(line_[at_]) : std::nullopt;
    if (!flags || *flags > most_flags) {
      refuse("the flags of a frame of CAN FD, a digit from 0 to 7");
    }
    ++at_;
    socket_.is_fd = true;
    socket_.fd_flags = static_cast<std::uint8_t>(*flags & ~unsigned{SocketCanFrame::fd});
    takeData(fd_bytes);
  } else if (!is_error && (skip('R') || skip('r'))) {
    takeRemote();
  } else {
    takeData(classic_bytes);
  }
}

void CandumpLine::takeRemote() {
  socket_.id |= SocketCanFrame::remote;
  if (at_ < line_.size() && isDigit(line_[at_])) {
    socket_.length = *digitOf(line_[at_]);
    if (socket_.length > classic_bytes) {
      refuse("a length of at most 8");
    }
    ++at_;
  }
}

/// Bytes may have points before them.
void CandumpLine::takeData(std::size_t most) {
  while (at_ < line_.size() && !isBlank(line_[at_])) {
    skip('.');
    const auto high = at_ < line_.size() ? digitOf(line_[at_]) : std::nullopt;
    const auto low = at_ + 1 < line_.size() ? digitOf(line_[at_ + 1]) : std::nullopt;
    if (!high || !low) {
      refuse("two hexadecimal digits of a byte");
    }
    if (socket_.data.size() == most) {
      refuse("at most " + std::to_string(most) + " bytes of data");
    }
    socket_.data += static_cast<char>(static_cast<unsigned char>(*high << 4U | *low));
    at_ += 2;
  }
  socket_.length = static_cast<std::uint8_t>(socket_.data.size());
}

void CandumpLine::takeDirection() {
  skipBlanks();
  logged_.frame.direction = skip('R')   ? BusFrame::Direction::received
                            : skip('T') ? BusFrame::Direction::sent
                                        : BusFrame::Direction::unknown;
  skipBlanks();
  if (at_ < line_.size()) {
    refuse("R, T or the end of the line");
  }
}

}  // namespace mdf_tools
