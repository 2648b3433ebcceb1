#include "line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "import_failure.h"
#include "temporary_file.h"

namespace mdf_tools {

namespace {

constexpr std::size_t usual_bytes = std::size_t{1} << 18U;
constexpr std::size_t most_bytes = std::size_t{1} << 28U;  // of one line

Descriptor openInput(const std::string& path, const std::string& name) {
  Descriptor file(path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (file.number() < 0 || fstat(file.number(), &status) != 0) {
    throw CannotImport("cannot open " + name + ": " + reason());
  }
  if (S_ISDIR(status.st_mode)) {
    throw CannotImport("cannot read " + name + ": it is a folder");
  }
  if (S_ISREG(status.st_mode)) {
    return file;
  }
  Descriptor copy = temporaryFile();
  copyRest(file.number(), name, copy.number(), "a temporary file");
  return copy;
}

}  // namespace

LineReader::LineReader(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(openInput(path, name_)),
      buffer_(usual_bytes) {}

void LineReader::goTo(const Place& place) {
  position_ = place.offset;
  filled_ = begin_ = end_ = next_ = 0;
  number_ = place.lines;
  extensions_ = 0;
}

bool LineReader::next() {
  constexpr std::string_view mark = "\xEF\xBB\xBF";  // some programs begin a text in UTF-8 with it
  begin_ = next_;
  number_ += std::exchange(extensions_, 0) + 1;
  if (!find(begin_)) {
    return false;
  }
  if (number_ == 1 && text().substr(0, mark.size()) == mark) {
    begin_ += mark.size();
  }
  return true;
}

bool LineReader::extend() {
  if (!find(next_)) {
    return false;
  }
  ++extensions_;
  return true;
}

std::size_t LineReader::take(char* bytes, std::size_t count) {
  std::size_t taken = 0;
  while (taken < count) {
    begin_ = next_;
    if (next_ == filled_ && !fill()) {
      break;
    }
    const std::size_t part = std::min(count - taken, filled_ - next_);
    std::memcpy(bytes + taken, &buffer_[next_], part);
    next_ += part;
    taken += part;
  }
  return taken;
}

/// Finds the end of the line, which has no end before an offset.
bool LineReader::find(std::size_t from) {
  const std::size_t before = from - begin_;
  std::size_t searched = before;
  const char* feed = nullptr;
  while ((feed = static_cast<const char*>(
              std::memchr(data() + searched, '\n', filled_ - begin_ - searched))) == nullptr) {
    searched = filled_ - begin_;
    if (!fill()) {
      break;
    }
  }
  if (feed == nullptr && begin_ + before == filled_) {
    return false;
  }
  end_ = feed == nullptr ? filled_ : static_cast<std::size_t>(feed - buffer_.data());
  next_ = std::min(end_ + 1, filled_);
  end_ -= end_ > begin_ + before && buffer_[end_ - 1] == '\r' ? 1U : 0U;
  return true;
}

/// Reads on, and keeps what has been read of the line; false at the end of the file.
bool LineReader::fill() {
  if (begin_ > 0) {
    std::memmove(buffer_.data(), data(), filled_ - begin_);
    next_ -= begin_;
    end_ -= std::min(end_, begin_);
    filled_ -= begin_;
    begin_ = 0;
  }
  if (filled_ == buffer_.size()) {
    if (buffer_.size() >= most_bytes) {
      throw ImportFailure(name_ + ": line " + std::to_string(number_) + " has more than " +
                          std::to_string(most_bytes) + " bytes");
    }
    buffer_.resize(2 * buffer_.size());
  }
  ssize_t count = 0;
  do {
    count = pread(file_.number(), buffer_.data() + filled_, buffer_.size() - filled_,
                  static_cast<off_t>(position_));
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    throw ImportFailure("cannot read " + name_ + ": " + reason());
  }
  position_ += static_cast<std::uint64_t>(count);
  filled_ += static_cast<std::size_t>(count);
  return count > 0;
}

}  // namespace mdf_tools
