#include "line_input.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

namespace mdf_tools {

namespace {

/// A signal that comes just before the wait begins is seen this much later.
constexpr std::int64_t longest_wait = 100'000'000;

/// What is longer becomes several lines.
constexpr std::size_t longest_line = 1U << 24U;

constexpr std::size_t bytes_at_once = 65536;

}  // namespace

/// Reading from its terminal would stop a program in the background.
bool LineInput::isReadable() const {
  const pid_t foreground = tcgetpgrp(descriptor_);
  return !is_at_end_ && (foreground < 0 || foreground == getpgrp());
}

void LineInput::wait(std::int64_t nanoseconds) {
  pollfd readable{isReadable() ? descriptor_ : -1, POLLIN, 0};
  timespec time{};
  time.tv_nsec = static_cast<long>(std::min(nanoseconds, longest_wait));
  if (ppoll(&readable, 1, &time, nullptr) > 0) {
    read();
  }
}

void LineInput::read() {
  buffer_.erase(0, begin_);
  begin_ = 0;
  const std::size_t before = buffer_.size();
  buffer_.resize(before + bytes_at_once);
  const ssize_t got = ::read(descriptor_, &buffer_[before], bytes_at_once);
  buffer_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
  is_at_end_ = got == 0 || (got < 0 && errno != EINTR && errno != EAGAIN);
}

std::optional<std::string_view> LineInput::next() {
  const std::size_t end = buffer_.find('\n', begin_);
  const bool is_whole = end != std::string::npos;
  const std::size_t rest = buffer_.size() - begin_;
  if (!is_whole && (rest == 0 || (!is_at_end_ && rest < longest_line))) {
    return std::nullopt;
  }
  std::string_view line(&buffer_[begin_], is_whole ? end - begin_ : rest);
  begin_ += line.size() + (is_whole ? 1 : 0);
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  return line;
}

}  // namespace mdf_tools
