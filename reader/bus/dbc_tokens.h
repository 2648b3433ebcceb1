#ifndef MDF_READER_BUS_DBC_TOKENS_H_
#define MDF_READER_BUS_DBC_TOKENS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mdf_reader {

/// A piece of a DBC.
struct DbcToken {
  enum class Kind : std::uint8_t {
    word,       ///< a keyword or a name
    number,     ///< with its sign
    text,       ///< between quotation marks
    open_text,  ///< a quotation mark that no other follows
    sign,       ///< any other character
    end,
  };

  bool is(char sign) const { return kind == Kind::sign && text[0] == sign; }
  bool is(std::string_view word) const { return kind == Kind::word && text == word; }

  Kind kind = Kind::end;
  std::string_view text;   ///< as the file has it; of a text, without its marks
  std::size_t line = 0;    ///< from 1
  std::size_t column = 0;  ///< from 1, in bytes
  bool begins_line = false;
};

/// Whether a statement begins with this word.
bool isDbcKeyword(std::string_view word);

/// Whether this could be a name.
bool isDbcName(std::string_view text);

/// Cuts a DBC into its pieces, in time that grows with the DBC's size alone.
class DbcTokens {
 public:
  explicit DbcTokens(std::string_view text);

  DbcToken next();

  /// Goes on with the next line that begins with a keyword, whatever comes before it.
  void skipToStatement();

  /// Whether nothing but blanks comes between the last token and the end of its line.
  bool isAtLineEnd() const;

  /// What stands between quotation marks, or a name, as UTF-8 with lines that end with \n.
  std::string textOf(std::string_view raw) const;

 private:
  char at(std::size_t position) const { return position < text_.size() ? text_[position] : '\0'; }
  bool endsLine(std::size_t position) const;
  void step();
  void skipBlanks();
  std::size_t endOfNumber() const;
  std::size_t endOfWord() const;
  DbcToken take(DbcToken token, std::size_t end);
  DbcToken takeText(DbcToken token);

  std::string_view text_;
  bool is_utf8_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
  std::size_t line_begin_ = 0;
  bool is_line_begun_ = false;  ///< a token of this line was given
  std::size_t last_mark_;       ///< the last quotation mark that ends a text; its end for none
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_TOKENS_H_
