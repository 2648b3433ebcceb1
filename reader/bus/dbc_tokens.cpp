#include "dbc_tokens.h"

#include <algorithm>

#include "../values/text_encoding.h"

namespace mdf_reader {

namespace {

constexpr std::string_view keywords[] = {
    "BA_",
    "BA_DEF_",
    "BA_DEF_DEF_",
    "BA_DEF_DEF_REL_",
    "BA_DEF_REL_",
    "BA_DEF_SGTYPE_",
    "BA_REL_",
    "BA_SGTYPE_",
    "BO_",
    "BO_TX_BU_",
    "BS_",
    "BU_",
    "BU_BO_REL_",
    "BU_EV_REL_",
    "BU_SG_REL_",
    "CAT_",
    "CAT_DEF_",
    "CM_",
    "ENVVAR_DATA_",
    "EV_",
    "EV_DATA_",
    "FILTER",
    "NS_",
    "NS_DESC_",
    "SGTYPE_",
    "SGTYPE_VAL_",
    "SG_",
    "SG_MUL_VAL_",
    "SIGTYPE_VALTYPE_",
    "SIG_GROUP_",
    "SIG_TYPE_REF_",
    "SIG_VALTYPE_",
    "VAL_",
    "VAL_TABLE_",
    "VERSION",
};

bool isDigit(char character) { return character >= '0' && character <= '9'; }

bool isBlank(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

/// Names have letters of ASCII alone, but not all writers know.
bool isOfWord(char character) {
  return isDigit(character) || (character >= 'a' && character <= 'z') ||
         (character >= 'A' && character <= 'Z') || character == '_' ||
         static_cast<unsigned char>(character) >= 0x80;
}

/// A mark after a backslash is part of the text.
std::size_t lastMark(std::string_view text) {
  for (std::size_t i = text.size(); i > 0; --i) {
    if (text[i - 1] == '"' && (i == 1 || text[i - 2] != '\\')) {
      return i - 1;
    }
  }
  return text.size();
}

std::string_view withoutByteOrderMark(std::string_view text) {
  return text.substr(text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0);
}

}  // namespace

bool isDbcKeyword(std::string_view word) {
  return std::binary_search(std::begin(keywords), std::end(keywords), word);
}

bool isDbcName(std::string_view text) {
  return !text.empty() && !isDigit(text[0]) && std::all_of(text.begin(), text.end(), isOfWord);
}

DbcTokens::DbcTokens(std::string_view text)
    : text_(withoutByteOrderMark(text)), is_utf8_(isUtf8(text_)), last_mark_(lastMark(text_)) {}

/// "\r\n" ends a line once.
bool DbcTokens::endsLine(std::size_t position) const {
  return at(position) == '\n' || (at(position) == '\r' && at(position + 1) != '\n');
}

void DbcTokens::step() {
  if (endsLine(position_)) {
    ++line_;
    line_begin_ = position_ + 1;
    is_line_begun_ = false;
  }
  ++position_;
}

void DbcTokens::skipBlanks() {
  while (isBlank(at(position_))) {
    step();
  }
}

DbcToken DbcTokens::next() {
  skipBlanks();
  DbcToken token;
  token.line = line_;
  token.column = position_ - line_begin_ + 1;
  token.begins_line = !is_line_begun_;
  is_line_begun_ = true;
  if (position_ >= text_.size()) {
    return token;
  }
  if (at(position_) == '"') {
    return takeText(token);
  }
  const std::size_t number_end = endOfNumber();
  token.kind = number_end > position_    ? DbcToken::Kind::number
               : isOfWord(at(position_)) ? DbcToken::Kind::word
                                         : DbcToken::Kind::sign;
  switch (token.kind) {
    case DbcToken::Kind::number:
      return take(token, number_end);
    case DbcToken::Kind::word:
      return take(token, endOfWord());
    default:
      return take(token, position_ + 1);
  }
}

/// Right after a digit, as in "0-5" and "@1-", a sign is no number's.
std::size_t DbcTokens::endOfNumber() const {
  std::size_t end = position_;
  if ((at(end) == '-' || at(end) == '+') && (end == 0 || !isDigit(at(end - 1)))) {
    ++end;
  }
  if (!isDigit(at(end)) && !(at(end) == '.' && isDigit(at(end + 1)))) {
    return position_;
  }
  const auto skipDigits = [&] {
    while (isDigit(at(end))) {
      ++end;
    }
  };
  skipDigits();
  if (at(end) == '.') {
    ++end;
    skipDigits();
  }
  if (at(end) == 'e' || at(end) == 'E') {
    const std::size_t digits = at(end + 1) == '-' || at(end + 1) == '+' ? end + 2 : end + 1;
    if (isDigit(at(digits))) {
      end = digits;
      skipDigits();
    }
  }
  return end;
}

std::size_t DbcTokens::endOfWord() const {
  std::size_t end = position_;
  while (isOfWord(at(end))) {
    ++end;
  }
  return end;
}

DbcToken DbcTokens::take(DbcToken token, std::size_t end) {
  token.text = text_.substr(position_, end - position_);
  position_ = end;
  return token;
}

DbcToken DbcTokens::takeText(DbcToken token) {
  ++position_;
  if (last_mark_ == text_.size() || last_mark_ < position_) {
    token.kind = DbcToken::Kind::open_text;
    token.text = "\"";
    return token;
  }
  const std::size_t begin = position_;
  while (at(position_) != '"' || at(position_ - 1) == '\\') {
    step();
  }
  token.kind = DbcToken::Kind::text;
  token.text = text_.substr(begin, position_ - begin);
  ++position_;
  is_line_begun_ = true;
  return token;
}

void DbcTokens::skipToStatement() {
  while (position_ < text_.size()) {
    skipBlanks();
    if (!is_line_begun_ && isDbcKeyword(text_.substr(position_, endOfWord() - position_))) {
      return;
    }
    while (position_ < text_.size() && !endsLine(position_)) {
      step();
    }
  }
}

bool DbcTokens::isAtLineEnd() const {
  std::size_t end = position_;
  while (isBlank(at(end)) && !endsLine(end)) {
    ++end;
  }
  return end >= text_.size() || endsLine(end);
}

std::string DbcTokens::textOf(std::string_view raw) const {
  std::string bytes;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const char following = i + 1 < raw.size() ? raw[i + 1] : '\0';
    if (raw[i] == '\r' && following != '\n') {
      bytes += '\n';
    } else if (raw[i] != '\r' && !(raw[i] == '\\' && following == '"')) {
      bytes += raw[i];
    }
  }
  return is_utf8_ ? fromUtf8(bytes) : fromWindows1252(bytes);
}

}  // namespace mdf_reader
