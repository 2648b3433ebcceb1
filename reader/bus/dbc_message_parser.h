#ifndef MDF_READER_BUS_DBC_MESSAGE_PARSER_H_
#define MDF_READER_BUS_DBC_MESSAGE_PARSER_H_

#include <cstddef>
#include <optional>

#include "bus_database.h"
#include "dbc_cursor.h"
#include "dbc_messages.h"

namespace mdf_reader {

/// Reads messages of a DBC and the signals that follow each.
class DbcMessageParser {
 public:
  DbcMessageParser(DbcCursor& cursor, DbcMessages& messages)
      : cursor_(&cursor), messages_(&messages) {}

  /// What comes after "BO_".
  void takeMessage();
  /// What comes after "SG_".
  void takeSignal();
  /// Another statement has begun: signals are not expected any more.
  void endMessage() { message_.reset(); }

 private:
  void addMessage(const DbcToken& id_token, std::uint64_t id, const DbcToken& length,
                  BusMessage message);
  void takeMultiplexing(BusSignal& signal, DbcSignalNotes& notes);
  void takePlace(BusSignal& signal);
  void takeScale(BusSignal& signal);
  bool isAtNameInLine() const { return cursor_->isAtName() && !cursor_->token().begins_line; }
  void skipReceivers();
  void addSignal(const DbcToken& name, BusSignal signal, const DbcSignalNotes& notes);
  bool isPlaced(const BusSignal& signal);

  DbcCursor* cursor_;
  DbcMessages* messages_;
  std::optional<std::size_t> message_;  ///< that signals follow
  DbcToken start_;                      ///< of the signal
  DbcToken bits_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_MESSAGE_PARSER_H_
