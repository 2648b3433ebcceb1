#include "output_buffer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

namespace mdf_tools {

namespace {

constexpr std::size_t collected_bytes = 32768;

}  // namespace

OutputBuffer::OutputBuffer(std::FILE* file, Bytes bytes)
    : file_(file), bytes_(bytes), collected_(isForATerminal() ? 0 : collected_bytes) {
  setp(collected_.data(), collected_.data() + collected_.size());
}

void OutputBuffer::flush() {
  if (drain() && error_ == 0 && std::fflush(file_) != 0) {
    error_ = errno;
  }
}

void OutputBuffer::command(std::string_view sequence) {
  if (bytes_ == Bytes::for_a_terminal_with_colours) {
    write(sequence.data(), sequence.size());
  }
}

std::streamsize OutputBuffer::xsputn(const char* bytes, std::streamsize count) {
  if (count <= epptr() - pptr()) {
    std::copy_n(bytes, count, pptr());
    pbump(static_cast<int>(count));
    return count;
  }
  if (!drain()) {
    return 0;
  }
  const auto size = static_cast<std::size_t>(count);
  if (size > collected_.size()) {
    return pass(bytes, size) ? count : 0;
  }
  return xsputn(bytes, count);
}

OutputBuffer::int_type OutputBuffer::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) {
    return traits_type::not_eof(character);
  }
  const char byte = traits_type::to_char_type(character);
  return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
}

bool OutputBuffer::drain() {
  const auto count = static_cast<std::size_t>(pptr() - pbase());
  setp(pbase(), epptr());
  return pass(pbase(), count);
}

/// A failure ends the collecting, so that every further character fails too.
bool OutputBuffer::pass(const char* bytes, std::size_t count) {
  const bool passed = isForATerminal() ? writeShown(bytes, count) : write(bytes, count);
  if (!passed) {
    setp(pbase(), pbase());
  }
  return passed;
}

bool OutputBuffer::write(const char* bytes, std::size_t count) {
  if (writer_ && count != 0) {
    writer_([&] { writeToFile(bytes, count); }, bytes[count - 1] == '\n');
  } else {
    writeToFile(bytes, count);
  }
  return error_ == 0;
}

void OutputBuffer::writeToFile(const char* bytes, std::size_t count) {
  // The bytes of an empty list may have no address, which the C library must not be given.
  if (count != 0 && error_ == 0 && std::fwrite(bytes, 1, count, file_) != count) {
    error_ = errno;
  }
}

bool OutputBuffer::writeShown(const char* bytes, std::size_t count) {
  std::array<char, 1024> piece;
  while (count != 0) {
    const std::size_t size = std::min(count, piece.size());
    std::transform(bytes, bytes + size, piece.begin(), [this](char each) { return shown(each); });
    if (!write(piece.data(), size)) {
      return false;
    }
    bytes += size;
    count -= size;
  }
  return true;
}

char OutputBuffer::shown(char character) {
  const auto byte = static_cast<unsigned char>(character);
  const bool control = (byte < 0x20 && character != '\n' && character != '\t') || byte == 0x7F;
  // The control characters 0x80 to 0x9f in UTF-8. A byte in that range alone is not: it may be any
  // other character's second byte.
  const bool second_control = previous_ == 0xC2 && byte >= 0x80 && byte < 0xA0;
  previous_ = byte;
  return control || second_control ? '.' : character;
}

}  // namespace mdf_tools
