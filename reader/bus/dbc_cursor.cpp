#include "dbc_cursor.h"

#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "../bytes/printable.h"

namespace mdf_reader {

namespace {

using Kind = DbcToken::Kind;

/// The whole of a text as a number.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
  if (!text.empty() && text[0] == '+') {
    text.remove_prefix(1);
  }
  Number number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

/// Some writers write "1.0" or "1e3" for whole numbers.
std::optional<std::int64_t> integerIn(std::string_view text) {
  if (const auto integer = numberIn<std::int64_t>(text)) {
    return integer;
  }
  if (const auto bits = numberIn<std::uint64_t>(text)) {
    return static_cast<std::int64_t>(*bits);
  }
  constexpr double limit = 9223372036854775808.0;
  const auto real = numberIn<double>(text);
  return real && std::trunc(*real) == *real && -limit <= *real && *real < limit
             ? std::optional(static_cast<std::int64_t>(*real))
             : std::nullopt;
}

}  // namespace

DbcCursor::DbcCursor(std::string_view text, TextFaults& faults)
    : tokens_(text), faults_(&faults), token_(tokens_.next()) {}

DbcToken DbcCursor::takeAny() { return std::exchange(token_, tokens_.next()); }

bool DbcCursor::takeIf(char sign) {
  const bool is_there = isAt(sign);
  if (is_there) {
    takeAny();
  }
  return is_there;
}

bool DbcCursor::takeIf(std::string_view word) {
  const bool is_there = isAtName() && token_.is(word);
  if (is_there) {
    takeAny();
  }
  return is_there;
}

void DbcCursor::take(char sign) {
  if (!takeIf(sign)) {
    fail(std::string("'") + sign + "'");
  }
}

DbcToken DbcCursor::takeName(std::string_view expected) {
  if (!isAtName()) {
    fail(expected);
    return {};
  }
  return takeAny();
}

DbcToken DbcCursor::takeText(std::string_view expected) {
  if (!isAt(Kind::text)) {
    fail(isAt(Kind::open_text) ? "a quotation mark at the end of the text" : expected);
    return {};
  }
  return takeAny();
}

std::optional<double> DbcCursor::numberOf(const DbcToken& token) {
  return token.kind == Kind::number ? numberIn<double>(token.text) : std::nullopt;
}

double DbcCursor::takeNumber(std::string_view expected) {
  const auto number = numberOf(token_);
  if (has_failed_ || !number) {
    fail(expected);
    return 0;
  }
  takeAny();
  return *number;
}

std::uint64_t DbcCursor::takeUnsigned(std::string_view expected, std::uint64_t most) {
  const auto number = isAt(Kind::number) ? numberIn<std::uint64_t>(token_.text) : std::nullopt;
  if (!number || *number > most) {
    fail(expected);
    return 0;
  }
  takeAny();
  return *number;
}

std::int64_t DbcCursor::takeInteger(std::string_view expected) {
  const auto number = isAt(Kind::number) ? integerIn(token_.text) : std::nullopt;
  if (!number) {
    fail(expected);
    return 0;
  }
  takeAny();
  return *number;
}

void DbcCursor::fail(std::string_view expected) { failAt(token_, expected); }

void DbcCursor::failAt(const DbcToken& found, std::string_view expected) {
  if (!has_failed_) {
    report(found, expected);
  }
  has_failed_ = true;
}

void DbcCursor::report(const DbcToken& found, std::string_view expected) {
  std::string sentence = "expected ";
  sentence.append(expected).append(", found ").append(described(found));
  faults_->add({found.line, found.column, std::move(sentence)});
}

std::string DbcCursor::described(const DbcToken& token) const {
  constexpr std::size_t most = 40;  // characters, of at most four bytes
  const std::string shown =
      printable(tokens_.textOf(token.text.substr(0, 4 * most + 4)), Harmless::utf8, most);
  switch (token.kind) {
    case Kind::end:
      return "the end of the file";
    case Kind::open_text:
      return "none";
    case Kind::text:
      return "the text \"" + shown + '"';
    default:
      return '\'' + shown + '\'';
  }
}

void DbcCursor::recover() {
  has_failed_ = false;
  if (!isAtStatement()) {
    tokens_.skipToStatement();
    takeAny();
  }
}

/// Measurement files hold characters of XML: control characters and U+FFFE, U+FFFF become U+FFFD.
std::string DbcCursor::textOf(std::string_view raw) const {
  std::string text;
  for (const char character : tokens_.textOf(raw)) {
    const auto byte = static_cast<unsigned char>(character);
    const std::size_t end = text.size();
    if (byte < ' ' && character != '\t' && character != '\n' && character != '\r') {
      text += "\uFFFD";
    } else if (byte >= 0xBE && end >= 2 && text.compare(end - 2, 2, "\xEF\xBF") == 0) {
      text += '\xBD';
    } else {
      text += character;
    }
  }
  return text;
}

}  // namespace mdf_reader
