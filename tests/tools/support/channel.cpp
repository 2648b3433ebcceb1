#include "channel.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace mdf_tests {

Descriptor::Descriptor(int number) : number_(number) {
  if (number_ < 0) {
    throw std::runtime_error("cannot open a file for a program's run");
  }
}

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor::~Descriptor() {
  if (number_ >= 0) {
    close(number_);
  }
}

Channel::Channel(Descriptor reading_end, Descriptor program_end)
    : reading_end_(std::move(reading_end)), program_end_(std::move(program_end)) {}

Channel Channel::pipe() {
  std::array<int, 2> ends = {-1, -1};
  static_cast<void>(pipe2(ends.data(), O_CLOEXEC));  // leaves them as they are when it fails
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Channel Channel::terminal() {
  Descriptor reading_end(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  const int number = reading_end.number();
  Descriptor program_end(grantpt(number) == 0 && unlockpt(number) == 0
                             ? open(ptsname(number), O_RDWR | O_NOCTTY | O_CLOEXEC)
                             : -1);
  termios mode;
  tcgetattr(program_end.number(), &mode);
  mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);
  tcsetattr(program_end.number(), TCSANOW, &mode);
  return {std::move(reading_end), std::move(program_end)};
}

void Channel::readSome() {
  std::array<char, 64 * 1024> piece;
  const ssize_t count = read(readingEnd(), piece.data(), piece.size());
  if (count > 0) {
    text_.append(piece.data(), static_cast<std::size_t>(count));
  } else {
    reading_end_.reset();
  }
}

}  // namespace mdf_tests
