#include "dbc_subject.h"

namespace mdf_reader {

namespace {

void takeId(DbcCursor& cursor, DbcSubject& subject) {
  subject.kind = DbcSubject::Kind::message;
  subject.id_token = cursor.token();
  subject.id = cursor.takeUnsigned("a message's identifier");
}

}  // namespace

DbcSubject takeSignalSubject(DbcCursor& cursor) {
  DbcSubject subject;
  takeId(cursor, subject);
  subject.kind = DbcSubject::Kind::signal;
  subject.name = cursor.takeName("a signal's name");
  return subject;
}

DbcSubject takeSubject(DbcCursor& cursor) {
  DbcSubject subject;
  if (cursor.takeIf("BO_")) {
    takeId(cursor, subject);
  } else if (cursor.takeIf("SG_")) {
    return takeSignalSubject(cursor);
  } else if (cursor.takeIf("BU_")) {
    subject.kind = DbcSubject::Kind::other;
    cursor.takeName("a node's name");
  } else if (cursor.takeIf("EV_")) {
    subject.kind = DbcSubject::Kind::other;
    cursor.takeName("a variable's name");
  }
  return subject;
}

std::optional<std::size_t> messageOf(const DbcSubject& subject, const DbcMessages& messages,
                                     DbcCursor& cursor) {
  const auto message = messages.find(subject.id);
  if (!message) {
    cursor.report(subject.id_token, "the identifier of a message");
  }
  return message == DbcMessages::left_out ? std::nullopt : message;
}

std::optional<DbcSignalPlace> signalOf(const DbcSubject& subject, const DbcMessages& messages,
                                       DbcCursor& cursor) {
  const auto message = messageOf(subject, messages, cursor);
  if (!message) {
    return std::nullopt;
  }
  const auto signal = messages.findSignal(*message, subject.name.text);
  if (!signal) {
    cursor.report(subject.name, "a signal of the message");
  }
  return !signal || *signal == DbcMessages::left_out
             ? std::nullopt
             : std::optional(DbcSignalPlace{*message, *signal});
}

}  // namespace mdf_reader
