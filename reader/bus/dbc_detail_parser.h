#ifndef MDF_READER_BUS_DBC_DETAIL_PARSER_H_
#define MDF_READER_BUS_DBC_DETAIL_PARSER_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "bus_database.h"
#include "dbc_cursor.h"
#include "dbc_messages.h"

namespace mdf_reader {

/// Reads what statements of their own say of signals: texts for values, floats, and which values of
/// which switch they are there for. Each method takes what comes after the keyword.
class DbcDetailParser {
 public:
  DbcDetailParser(DbcCursor& cursor, DbcMessages& messages)
      : cursor_(&cursor), messages_(&messages) {}

  void takeTable();
  void takeTexts();
  void takeType();
  void takeSwitch();

 private:
  using RawTexts = std::vector<std::pair<std::int64_t, std::string_view>>;

  RawTexts takeRawTexts();
  std::vector<ValueText> textsOf(const RawTexts& raw) const;
  void copyTable(BusSignal& signal, const DbcToken& name);
  Multiplexing takeRanges();

  DbcCursor* cursor_;
  DbcMessages* messages_;
  std::map<std::string_view, std::vector<ValueText>> tables_;
  std::size_t copied_ = 0;  ///< bytes of tables that signals have copies of
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_DETAIL_PARSER_H_
