#include "reading_oracle/reading_forms.h"

#include <algorithm>
#include <limits>

namespace mdf_tests::oracle {

namespace {

constexpr std::uint64_t low_32 = 0xFFFFFFFF;
constexpr std::uint64_t all_64 = 0xFFFFFFFFFFFFFFFF;

constexpr auto bad = std::ios_base::badbit;
constexpr auto eof_fail = std::ios_base::eofbit | std::ios_base::failbit;

/// Moves the stream on; false, and the stream at its end, when it has fewer bytes.
bool advance(Attempt& attempt, std::uint64_t count, std::ios_base::iostate when_short) {
  std::size_t& position = attempt.reading.position;
  if (count > attempt.stream.size() - position) {
    position = attempt.stream.size();
    attempt.reading.state = when_short;
    return false;
  }
  position += static_cast<std::size_t>(count);
  return true;
}

void takeHeader(Attempt& attempt) {
  attempt.block.length = numberAt(attempt.stream, {8, 8});
  attempt.block.link_count = numberAt(attempt.stream, {16, 8});
}

/// Takes links and fixed fields from what stands after the header, if they are there.
bool takeLinksAndSection(Attempt& attempt, const std::string& bytes, std::uint64_t link_count) {
  const std::size_t width = takenWidth(attempt.format);
  if (bytes.size() < width || link_count > (bytes.size() - width) / link_size) {
    attempt.reading.state = bad;
    return false;
  }
  const auto end_of_links = static_cast<std::size_t>(link_count) * link_size;
  for (std::size_t i = 0; i < end_of_links; i += link_size) {
    attempt.block.links.push_back(static_cast<std::int64_t>(numberAt(bytes, {i, link_size})));
  }
  attempt.block.section = takenSection(attempt.format, bytes.substr(end_of_links, width));
  return true;
}

/// Data that has the size that the block says, whatever the stream has.
void takeSizedData(Attempt& attempt, std::uint64_t size) {
  if (size > attempt.data_limit) {
    // More than any object can have is not even asked for.
    constexpr std::uint64_t most = std::numeric_limits<std::ptrdiff_t>::max();
    attempt.reading.thrown = size > most ? "std::length_error" : "std::bad_alloc";
    attempt.reading.heap_bytes = attempt.data_limit;
    return;
  }
  const std::size_t from = attempt.reading.position;
  advance(attempt, size, bad);
  attempt.block.tail = attempt.stream.substr(from, static_cast<std::size_t>(size));
  attempt.block.tail.resize(static_cast<std::size_t>(size));
  attempt.reading.heap_bytes += static_cast<std::size_t>(size);
}

void readFixed(Attempt& attempt, std::ios_base::iostate when_short) {
  if (!advance(attempt, attempt.format.size, when_short)) {
    return;
  }
  takeHeader(attempt);
  const std::string bytes = attempt.stream.substr(header_size, attempt.format.size - header_size);
  takeLinksAndSection(attempt, bytes, attempt.block.link_count);
}

/// The bytes after the header, read through a buffer that may take twice what arrives.
bool readBody(Attempt& attempt, std::uint64_t length_bits, std::string& body) {
  if (!advance(attempt, header_size, eof_fail)) {
    return false;
  }
  takeHeader(attempt);
  const std::uint64_t length = attempt.block.length & length_bits;
  if (length < header_size) {
    attempt.reading.state = bad;
    return false;
  }
  const bool is_whole = advance(attempt, length - header_size, eof_fail);
  constexpr std::size_t first_piece = 64 * 1024;
  attempt.reading.heap_bytes = 2 * (attempt.reading.position - header_size) + first_piece;
  body = attempt.stream.substr(header_size, attempt.reading.position - header_size);
  return is_whole;
}

void readVariable(Attempt& attempt, std::uint64_t length_bits) {
  std::string body;
  if (!readBody(attempt, length_bits, body) ||
      !takeLinksAndSection(attempt, body, attempt.block.link_count)) {
    return;
  }
  const std::size_t taken =
      static_cast<std::size_t>(attempt.block.link_count) * link_size + sectionWidth(attempt.format);
  attempt.format.takeRest(attempt, body.substr(std::min(taken, body.size())));
  // Besides the body there are the links, and lists that may take three times their size to grow.
  const std::size_t lists = attempt.block.more_links.size() * link_size + attempt.block.tail.size();
  attempt.reading.heap_bytes += taken + 3 * lists;
}

}  // namespace

void readIdentification(Attempt& attempt) {
  if (advance(attempt, attempt.format.size, bad)) {
    attempt.block.section =
        takenSection(attempt.format, attempt.stream.substr(0, attempt.format.size));
  }
}

void readFixedShortIsBad(Attempt& attempt) { readFixed(attempt, bad); }
void readFixedShortIsLeft(Attempt& attempt) { readFixed(attempt, eof_fail); }

void readText(Attempt& attempt) {
  if (!advance(attempt, 8, bad) || !advance(attempt, 8, bad)) {
    return;
  }
  const std::uint64_t low = numberAt(attempt.stream, {8, 4});
  if (low <= header_size || low > 0x7FFFFFFF) {
    return;
  }
  takeSizedData(attempt, low - header_size);
  attempt.block.length = low;
}

void readPlainData(Attempt& attempt) {
  if (advance(attempt, header_size, eof_fail)) {
    takeHeader(attempt);
    takeSizedData(attempt, attempt.block.length - header_size);
  }
}

void readVariableLow32(Attempt& attempt) { readVariable(attempt, low_32); }
void readVariableAll64(Attempt& attempt) { readVariable(attempt, all_64); }

void readZipped(Attempt& attempt) {
  std::string body;
  if (readBody(attempt, all_64, body) && takeLinksAndSection(attempt, body, 0)) {
    takeSizedData(attempt, numberAt(attempt.block.section, {16, 8}));
  }
}

}  // namespace mdf_tests::oracle
