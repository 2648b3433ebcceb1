#include "dbc_attributes.h"

#include <string>
#include <utility>

namespace mdf_reader {

namespace {

using Kind = DbcToken::Kind;

constexpr std::string_view kind_attribute = "VFrameFormat";
constexpr std::string_view cycle_attribute = "GenMsgCycleTime";
constexpr std::string_view network_attribute = "ProtocolType";

DbcFrameKind kindCalled(std::string_view name) {
  if (name == "StandardCAN_FD" || name == "ExtendedCAN_FD") {
    return DbcFrameKind::can_fd;
  }
  return name == "J1939PG" ? DbcFrameKind::j1939 : DbcFrameKind::can;
}

}  // namespace

void DbcAttributes::takeDefinition(DbcCursor& cursor) {
  if (cursor.isAtName()) {
    cursor.takeAny();
  }
  const DbcToken name = cursor.takeText("an attribute's name");
  const DbcToken type = cursor.takeName("an attribute's type");
  std::vector<std::string_view> values;
  while (type.is("ENUM") && cursor.isAt(Kind::text)) {
    values.push_back(cursor.takeAny().text);
    if (!cursor.takeIf(',')) {
      break;
    }
  }
  while (!type.is("ENUM") && cursor.isAt(Kind::number)) {
    cursor.takeAny();
  }
  cursor.take(';');
  if (!cursor.hasFailed() && name.text == kind_attribute && type.is("ENUM")) {
    kinds_ = std::move(values);
  }
}

void DbcAttributes::setDefault(DbcCursor& cursor, std::string_view name, const DbcToken& value) {
  set(cursor, name, value, defaults_.kind, defaults_.cycle_time);
  setForNetwork(name, value);
}

void DbcAttributes::setForNetwork(std::string_view name, const DbcToken& value) {
  if (name == network_attribute) {
    defaults_.is_j1939 = value.text == "J1939";
  }
}

void DbcAttributes::setForMessage(DbcCursor& cursor, std::string_view name, const DbcToken& value,
                                  DbcMessageNotes& notes) const {
  set(cursor, name, value, notes.kind, notes.cycle_time);
}

void DbcAttributes::set(DbcCursor& cursor, std::string_view name, const DbcToken& value,
                        std::optional<DbcFrameKind>& kind,
                        std::optional<double>& cycle_time) const {
  if (name == kind_attribute) {
    if (const auto word = wordOf(cursor, value)) {
      kind = kindCalled(*word);
    }
  } else if (name == cycle_attribute) {
    if (const auto time = cursor.numberOf(value)) {
      cycle_time = time;
    } else {
      cursor.report(value, "a time in milliseconds");
    }
  }
}

std::optional<std::string_view> DbcAttributes::wordOf(DbcCursor& cursor,
                                                      const DbcToken& value) const {
  if (value.kind == Kind::text) {
    return value.text;
  }
  const auto number = cursor.numberOf(value).value_or(-1);
  if (number >= 0 && number < static_cast<double>(kinds_.size())) {
    return kinds_[static_cast<std::size_t>(number)];
  }
  cursor.report(value, "the number of a kind of frames below " + std::to_string(kinds_.size()));
  return std::nullopt;
}

}  // namespace mdf_reader
