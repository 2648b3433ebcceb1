#include "dbc_message_parser.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace mdf_reader {

namespace {

using Kind = DbcToken::Kind;

/// What a message and a node are called that are none.
constexpr std::string_view no_message = "VECTOR__INDEPENDENT_SIG_MSG";
constexpr std::string_view no_node = "Vector__XXX";

constexpr std::uint64_t extended_flag = 0x80000000;
constexpr std::uint64_t most_extended = 0x1FFFFFFF;
constexpr std::uint64_t most_standard = 0x7FF;
constexpr std::uint64_t most_bytes = 64;
constexpr std::uint64_t most_bits = 64;

bool isExtended(std::uint64_t id) { return (id & extended_flag) != 0; }

bool isId(std::uint64_t id) {
  return (id & ~extended_flag) <= (isExtended(id) ? most_extended : most_standard);
}

/// A number larger than any that is allowed stays one.
std::uint32_t limited(std::uint64_t number) {
  return static_cast<std::uint32_t>(std::min<std::uint64_t>(number, UINT16_MAX));
}

}  // namespace

void DbcMessageParser::takeMessage() {
  message_ = DbcMessages::left_out;
  const DbcToken id_token = cursor_->token();
  const std::uint64_t id = cursor_->takeUnsigned("a message's identifier");
  const bool has_id = !cursor_->hasFailed();
  BusMessage message;
  const DbcToken name = cursor_->takeName("a message's name");
  message.name = cursor_->textOf(name.text);
  cursor_->take(':');
  const DbcToken length = cursor_->token();
  message.length = limited(cursor_->takeUnsigned("a length in bytes"));
  if (isAtNameInLine()) {
    const DbcToken sender = cursor_->takeAny();
    message.sender = sender.text == no_node ? "" : cursor_->textOf(sender.text);
  }
  if (!cursor_->hasFailed() && name.text != no_message) {
    addMessage(id_token, id, length, std::move(message));
  } else if (has_id) {
    messages_->leaveOut(id);
  }
}

void DbcMessageParser::addMessage(const DbcToken& id_token, std::uint64_t id,
                                  const DbcToken& length, BusMessage message) {
  if (!isId(id)) {
    cursor_->report(id_token, "an identifier of 11 bits, or of 29 with the highest of 32 set");
  } else if (message.length > most_bytes) {
    cursor_->report(length, "a length of at most 64 bytes");
  } else {
    message.is_extended = isExtended(id);
    message.id = static_cast<std::uint32_t>(id & ~extended_flag);
    message_ = messages_->add(id, std::move(message)).value_or(DbcMessages::left_out);
    if (message_ == DbcMessages::left_out) {
      cursor_->report(id_token, "an identifier that no other message has");
    }
    return;
  }
  messages_->leaveOut(id);
}

void DbcMessageParser::takeSignal() {
  BusSignal signal;
  const DbcToken name = cursor_->takeName("a signal's name");
  if (!message_ && !cursor_->hasFailed()) {
    cursor_->report(name, "a message in front of signals");
  }
  message_ = message_.value_or(DbcMessages::left_out);
  DbcSignalNotes notes;
  notes.line = name.line;
  notes.column = name.column;
  signal.name = cursor_->textOf(name.text);
  takeMultiplexing(signal, notes);
  takePlace(signal);
  takeScale(signal);
  signal.unit = cursor_->textOf(cursor_->takeText("a unit in quotation marks").text);
  if (!cursor_->hasFailed()) {
    skipReceivers();
    addSignal(name, std::move(signal), notes);
  } else if (message_ != DbcMessages::left_out) {
    messages_->leaveOutSignal(*message_, name.text);
  }
}

/// "M", "m5" or "m5M" and a colon, or the colon alone.
void DbcMessageParser::takeMultiplexing(BusSignal& signal, DbcSignalNotes& notes) {
  if (cursor_->takeIf(':')) {
    return;
  }
  std::string_view word = cursor_->isAt(Kind::word) ? cursor_->token().text : "";
  signal.is_switch = !word.empty() && word.back() == 'M';
  word.remove_suffix(signal.is_switch ? 1 : 0);
  if (!word.empty()) {
    std::uint64_t value = 0;
    const char* const end = word.data() + word.size();
    const auto parsed = std::from_chars(word.data() + 1, end, value);
    if (word[0] != 'm' || parsed.ec != std::errc() || parsed.ptr != end) {
      cursor_->fail("'M', 'm' with a number, or ':'");
    }
    notes.switch_value = value;
  } else if (!signal.is_switch) {
    cursor_->fail("':'");
  }
  if (!cursor_->hasFailed()) {
    cursor_->takeAny();
  }
  cursor_->take(':');
}

/// "0|8@1+".
void DbcMessageParser::takePlace(BusSignal& signal) {
  start_ = cursor_->token();
  signal.start_bit = limited(cursor_->takeUnsigned("a start bit"));
  cursor_->take('|');
  bits_ = cursor_->token();
  signal.bits = limited(cursor_->takeUnsigned("a number of bits"));
  cursor_->take('@');
  signal.is_big_endian = cursor_->takeUnsigned("'0' or '1' as the order of bytes", 1) == 0;
  if (cursor_->takeIf('-')) {
    signal.type = BusSignal::Type::signed_integer;
  } else if (!cursor_->takeIf('+')) {
    cursor_->fail("'+' or '-'");
  }
}

/// "(0.1,-40) [-40|215]".
void DbcMessageParser::takeScale(BusSignal& signal) {
  cursor_->take('(');
  signal.factor = cursor_->takeNumber("a factor");
  cursor_->take(',');
  signal.offset = cursor_->takeNumber("an offset");
  cursor_->take(')');
  cursor_->take('[');
  const double least = cursor_->takeNumber("a least value");
  cursor_->take('|');
  const double greatest = cursor_->takeNumber("a greatest value");
  cursor_->take(']');
  if (least < greatest || (least == greatest && least != 0)) {
    signal.range = {least, greatest};
  }
}

/// After a comma they may go on in the next line.
void DbcMessageParser::skipReceivers() {
  bool goes_on = false;
  while (goes_on ? cursor_->isAtName() : isAtNameInLine()) {
    cursor_->takeAny();
    goes_on = cursor_->takeIf(',');
  }
}

void DbcMessageParser::addSignal(const DbcToken& name, BusSignal signal,
                                 const DbcSignalNotes& notes) {
  if (message_ == DbcMessages::left_out) {
    return;
  }
  if (!isPlaced(signal)) {
    messages_->leaveOutSignal(*message_, name.text);
  } else if (!messages_->addSignal(*message_, name.text, std::move(signal), notes)) {
    cursor_->report(name, "a name that no other signal of the message has");
  }
}

bool DbcMessageParser::isPlaced(const BusSignal& signal) {
  const std::uint32_t length = messages_->message(*message_).length;
  if (signal.bits == 0 || signal.bits > most_bits) {
    cursor_->report(bits_, "1 to 64 bits");
    return false;
  }
  if (endByteOf(signal) > length) {
    cursor_->report(start_, "a start bit with which the signal ends within " +
                                std::to_string(length) + " bytes");
    return false;
  }
  return true;
}

}  // namespace mdf_reader
