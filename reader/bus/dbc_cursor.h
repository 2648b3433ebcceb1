#ifndef MDF_READER_BUS_DBC_CURSOR_H_
#define MDF_READER_BUS_DBC_CURSOR_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "dbc_tokens.h"
#include "text_faults.h"

namespace mdf_reader {

/// Takes the tokens of a DBC one after another. Where another is expected than comes, it reports
/// that; from then on nothing is taken until the statement is given up.
class DbcCursor {
 public:
  DbcCursor(std::string_view text, TextFaults& faults);

  const DbcToken& token() const { return token_; }
  bool hasFailed() const { return has_failed_; }
  bool isAtEnd() const { return token_.kind == DbcToken::Kind::end; }
  /// Whether the token begins a line as a statement does.
  bool isAtStatement() const { return token_.begins_line && isKeyword(); }
  bool isAt(DbcToken::Kind kind) const { return !has_failed_ && token_.kind == kind; }
  bool isAt(char sign) const { return !has_failed_ && token_.is(sign); }
  /// A name of something, and no statement.
  bool isAtName() const { return isAt(DbcToken::Kind::word) && !isAtStatement(); }
  /// A word that ends its line.
  bool isAtLastWord() const { return isAt(DbcToken::Kind::word) && tokens_.isAtLineEnd(); }

  DbcToken takeAny();
  bool takeIf(char sign);
  bool takeIf(std::string_view word);
  void take(char sign);
  DbcToken takeName(std::string_view expected);
  DbcToken takeText(std::string_view expected);
  double takeNumber(std::string_view expected);
  std::uint64_t takeUnsigned(std::string_view expected, std::uint64_t most = UINT64_MAX);
  /// A whole number of 64 bits, as which a number from 2^63 on is negative.
  std::int64_t takeInteger(std::string_view expected);

  /// Something else than the next token was expected.
  void fail(std::string_view expected);
  void failAt(const DbcToken& found, std::string_view expected);
  /// Something else than a token was expected. What comes after it is still taken.
  void report(const DbcToken& found, std::string_view expected);
  void report(TextFault fault) { faults_->add(std::move(fault)); }

  /// Gives up a statement that has failed, and goes on with the next one.
  void recover();

  /// None for a token that is no number.
  static std::optional<double> numberOf(const DbcToken& token);
  /// What a token says, as UTF-8.
  std::string textOf(std::string_view raw) const;

 private:
  bool isKeyword() const {
    return token_.kind == DbcToken::Kind::word && isDbcKeyword(token_.text);
  }
  std::string described(const DbcToken& token) const;

  DbcTokens tokens_;
  TextFaults* faults_;
  DbcToken token_;
  bool has_failed_ = false;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_CURSOR_H_
