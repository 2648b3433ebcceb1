#include "dbc_parser.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace mdf_reader {

namespace {

using Kind = DbcToken::Kind;
using About = DbcSubject::Kind;

/// Where tools keep signals that are in no message.
constexpr std::uint64_t id_of_no_message = 0xC0000000;

}  // namespace

DbcParser::DbcParser(std::string_view text, TextFaults& faults)
    : faults_(&faults),
      cursor_(text, faults),
      message_parser_(cursor_, messages_),
      detail_parser_(cursor_, messages_) {
  messages_.leaveOut(id_of_no_message);
}

BusDatabase DbcParser::parse() {
  while (!cursor_.isAtEnd()) {
    takeStatement();
    if (cursor_.hasFailed()) {
      cursor_.recover();
    }
  }
  BusDatabase database;
  database.comment = std::move(comment_);
  database.messages = std::move(messages_).finish(attributes_.defaults(), *faults_);
  return database;
}

void DbcParser::takeStatement() {
  if (cursor_.takeIf(';')) {
    return;  // some writers end each statement with one
  }
  if (!cursor_.isAt(Kind::word) || !isDbcKeyword(cursor_.token().text)) {
    cursor_.fail("a statement");
    return;
  }
  const DbcToken keyword = cursor_.takeAny();
  if (keyword.is("BO_")) {
    message_parser_.takeMessage();
  } else if (keyword.is("SG_")) {
    message_parser_.takeSignal();
  } else {
    message_parser_.endMessage();
    takeOther(keyword.text);
  }
}

void DbcParser::takeOther(std::string_view keyword) {
  static constexpr std::pair<std::string_view, void (*)(DbcParser&)> statements[] = {
      {"BA_", [](DbcParser& self) { self.takeAttribute(); }},
      {"BA_DEF_", [](DbcParser& self) { self.attributes_.takeDefinition(self.cursor_); }},
      {"BA_DEF_DEF_", [](DbcParser& self) { self.takeDefault(); }},
      {"BS_", [](DbcParser& self) { self.skipLine(); }},
      {"BU_", [](DbcParser& self) { self.skipNodes(); }},
      {"CM_", [](DbcParser& self) { self.takeComment(); }},
      {"NS_", [](DbcParser& self) { self.skipKeywords(); }},
      {"SG_MUL_VAL_", [](DbcParser& self) { self.detail_parser_.takeSwitch(); }},
      {"SIG_VALTYPE_", [](DbcParser& self) { self.detail_parser_.takeType(); }},
      {"VAL_", [](DbcParser& self) { self.detail_parser_.takeTexts(); }},
      {"VAL_TABLE_", [](DbcParser& self) { self.detail_parser_.takeTable(); }},
      {"VERSION", [](DbcParser& self) { self.cursor_.takeText("a version in quotation marks"); }},
  };
  const auto* const found = std::find_if(std::begin(statements), std::end(statements),
                                         [&](const auto& each) { return each.first == keyword; });
  if (found != std::end(statements)) {
    found->second(*this);
  } else {
    skipStatement();
  }
}

/// The bus's speed, which has no end of its own.
void DbcParser::skipLine() {
  cursor_.take(':');
  while (!cursor_.hasFailed() && !cursor_.isAtEnd() && !cursor_.token().begins_line) {
    cursor_.takeAny();
  }
}

/// A list of keywords, in which nothing follows one that begins a line as in a statement.
void DbcParser::skipKeywords() {
  cursor_.take(':');
  while (cursor_.isAtName() || cursor_.isAtLastWord()) {
    cursor_.takeAny();
  }
}

void DbcParser::skipNodes() {
  cursor_.take(':');
  while (cursor_.isAtName()) {
    cursor_.takeAny();
  }
}

void DbcParser::skipStatement() {
  while (!cursor_.isAt(';') && !cursor_.isAtEnd() && !cursor_.isAtStatement()) {
    cursor_.takeAny();
  }
  cursor_.take(';');
}

void DbcParser::takeComment() {
  const DbcSubject subject = takeSubject(cursor_);
  const DbcToken raw = cursor_.takeText("a comment in quotation marks");
  cursor_.take(';');
  if (cursor_.hasFailed()) {
    return;
  }
  if (subject.kind == About::network) {
    comment_ = cursor_.textOf(raw.text);
  } else if (subject.kind == About::message) {
    if (const auto message = messageOf(subject, messages_, cursor_)) {
      messages_.message(*message).comment = cursor_.textOf(raw.text);
    }
  } else if (subject.kind == About::signal) {
    if (const auto place = signalOf(subject, messages_, cursor_)) {
      messages_.signal(place->message, place->signal).comment = cursor_.textOf(raw.text);
    }
  }
}

DbcToken DbcParser::takeValue() {
  if (!cursor_.isAt(Kind::number) && !cursor_.isAt(Kind::text)) {
    cursor_.fail("an attribute's value");
    return {};
  }
  return cursor_.takeAny();
}

void DbcParser::takeDefault() {
  const DbcToken name = cursor_.takeText("an attribute's name");
  const DbcToken value = takeValue();
  cursor_.take(';');
  if (!cursor_.hasFailed()) {
    attributes_.setDefault(cursor_, name.text, value);
  }
}

void DbcParser::takeAttribute() {
  const DbcToken name = cursor_.takeText("an attribute's name");
  const DbcSubject subject = takeSubject(cursor_);
  const DbcToken value = takeValue();
  cursor_.take(';');
  if (cursor_.hasFailed()) {
    return;
  }
  if (subject.kind == About::network) {
    attributes_.setForNetwork(name.text, value);
  } else if (subject.kind == About::message) {
    setForMessage(name.text, subject, value);
  } else if (subject.kind == About::signal) {
    setForSignal(name.text, subject, value);
  }
}

/// One that is empty stands for none.
bool DbcParser::isLongName(const DbcToken& value) {
  if (!value.text.empty() && !isDbcName(value.text)) {
    cursor_.report(value, "a name");
  }
  return isDbcName(value.text);
}

/// Tools that write short names keep the long ones in attributes.
void DbcParser::setForMessage(std::string_view name, const DbcSubject& subject,
                              const DbcToken& value) {
  const auto message = messageOf(subject, messages_, cursor_);
  if (!message) {
    return;
  }
  if (name == "SystemMessageLongSymbol") {
    if (isLongName(value)) {
      messages_.message(*message).name = cursor_.textOf(value.text);
    }
  } else {
    attributes_.setForMessage(cursor_, name, value, messages_.notes(*message));
  }
}

void DbcParser::setForSignal(std::string_view name, const DbcSubject& subject,
                             const DbcToken& value) {
  const auto place = signalOf(subject, messages_, cursor_);
  if (!place || name != "SystemSignalLongSymbol" || !isLongName(value)) {
    return;
  }
  if (messages_.addSignalName(place->message, place->signal, value.text)) {
    messages_.signal(place->message, place->signal).name = cursor_.textOf(value.text);
  } else {
    cursor_.report(value, "a name that no other signal of the message has");
  }
}

}  // namespace mdf_reader
