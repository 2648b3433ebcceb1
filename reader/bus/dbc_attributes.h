#ifndef MDF_READER_BUS_DBC_ATTRIBUTES_H_
#define MDF_READER_BUS_DBC_ATTRIBUTES_H_

#include <optional>
#include <string_view>
#include <vector>

#include "dbc_cursor.h"
#include "dbc_messages.h"

namespace mdf_reader {

/// The attributes of a DBC that say what frames messages come in, and how often. All others are
/// passed over.
class DbcAttributes {
 public:
  /// What comes after the keyword of a definition: what has the attribute, its name and values.
  void takeDefinition(DbcCursor& cursor);

  /// A value that messages, or the network, have that state none of their own.
  void setDefault(DbcCursor& cursor, std::string_view name, const DbcToken& value);
  /// A value of the network.
  void setForNetwork(std::string_view name, const DbcToken& value);
  void setForMessage(DbcCursor& cursor, std::string_view name, const DbcToken& value,
                     DbcMessageNotes& notes) const;

  const DbcDefaults& defaults() const { return defaults_; }

 private:
  void set(DbcCursor& cursor, std::string_view name, const DbcToken& value,
           std::optional<DbcFrameKind>& kind, std::optional<double>& cycle_time) const;
  std::optional<std::string_view> wordOf(DbcCursor& cursor, const DbcToken& value) const;

  /// What numbers for the kind of frames mean; as is usual, where no definition says so.
  std::vector<std::string_view> kinds_ = {
      "StandardCAN", "ExtendedCAN", "reserved",       "J1939PG",       "reserved", "reserved",
      "reserved",    "reserved",    "reserved",       "reserved",      "reserved", "reserved",
      "reserved",    "reserved",    "StandardCAN_FD", "ExtendedCAN_FD"};
  DbcDefaults defaults_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_ATTRIBUTES_H_
