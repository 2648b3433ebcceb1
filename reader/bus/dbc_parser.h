#ifndef MDF_READER_BUS_DBC_PARSER_H_
#define MDF_READER_BUS_DBC_PARSER_H_

#include <string>
#include <string_view>

#include "bus_database.h"
#include "dbc_attributes.h"
#include "dbc_cursor.h"
#include "dbc_detail_parser.h"
#include "dbc_message_parser.h"
#include "dbc_messages.h"
#include "dbc_subject.h"
#include "text_faults.h"

namespace mdf_reader {

/// Reads the statements of a DBC one after another.
class DbcParser {
 public:
  DbcParser(std::string_view text, TextFaults& faults);
  ~DbcParser() = default;
  DbcParser(const DbcParser&) = delete;  // its parts point at one another
  DbcParser& operator=(const DbcParser&) = delete;

  BusDatabase parse();

 private:
  void takeStatement();
  void takeOther(std::string_view keyword);

  void skipLine();
  void skipKeywords();
  void skipNodes();
  void skipStatement();

  void takeComment();
  void takeDefault();
  void takeAttribute();
  DbcToken takeValue();
  bool isLongName(const DbcToken& value);
  void setForMessage(std::string_view name, const DbcSubject& subject, const DbcToken& value);
  void setForSignal(std::string_view name, const DbcSubject& subject, const DbcToken& value);

  TextFaults* faults_;
  DbcCursor cursor_;
  DbcMessages messages_;
  DbcMessageParser message_parser_;
  DbcDetailParser detail_parser_;
  DbcAttributes attributes_;
  std::string comment_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_PARSER_H_
