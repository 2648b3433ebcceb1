#ifndef MDF_READER_BUS_DBC_SUBJECT_H_
#define MDF_READER_BUS_DBC_SUBJECT_H_

#include <cstddef>
#include <cstdint>
#include <optional>

#include "dbc_cursor.h"
#include "dbc_messages.h"

namespace mdf_reader {

/// What a statement of a DBC is about.
struct DbcSubject {
  enum class Kind : std::uint8_t { network, message, signal, other };

  Kind kind = Kind::network;
  DbcToken id_token;
  std::uint64_t id = 0;
  DbcToken name;  ///< of a signal
};

struct DbcSignalPlace {
  std::size_t message = 0;
  std::size_t signal = 0;
};

/// "BO_ 100", "SG_ 100 Speed", a node or a variable; nothing stands for the network.
DbcSubject takeSubject(DbcCursor& cursor);
/// "100 Speed".
DbcSubject takeSignalSubject(DbcCursor& cursor);

/// None for a message that is left out. One that there is not is a fault.
std::optional<std::size_t> messageOf(const DbcSubject& subject, const DbcMessages& messages,
                                     DbcCursor& cursor);
/// None for a signal that is left out. One that there is not is a fault.
std::optional<DbcSignalPlace> signalOf(const DbcSubject& subject, const DbcMessages& messages,
                                       DbcCursor& cursor);

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_SUBJECT_H_
