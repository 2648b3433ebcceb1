#include "dbc_detail_parser.h"

#include <algorithm>
#include <numeric>

#include "dbc_subject.h"

namespace mdf_reader {

namespace {

using Kind = DbcToken::Kind;
using Type = BusSignal::Type;

std::size_t memoryOf(const std::vector<ValueText>& texts) {
  return std::accumulate(
      texts.begin(), texts.end(), std::size_t{0},
      [](std::size_t sum, const ValueText& each) { return sum + sizeof each + each.text.size(); });
}

}  // namespace

void DbcDetailParser::takeTable() {
  const DbcToken name = cursor_->takeName("a value table's name");
  const RawTexts raw = takeRawTexts();
  if (!cursor_->hasFailed()) {
    tables_[name.text] = textsOf(raw);
  }
}

/// A variable has no identifier in front.
void DbcDetailParser::takeTexts() {
  if (cursor_->isAtName()) {
    cursor_->takeAny();
    takeRawTexts();
    return;
  }
  const DbcSubject subject = takeSignalSubject(*cursor_);
  const DbcToken table = cursor_->isAtName() ? cursor_->takeAny() : DbcToken();
  const RawTexts raw = takeRawTexts();
  if (cursor_->hasFailed()) {
    return;
  }
  if (const auto place = signalOf(subject, *messages_, *cursor_)) {
    BusSignal& signal = messages_->signal(place->message, place->signal);
    if (table.kind == Kind::word) {
      copyTable(signal, table);
    } else {
      signal.texts = textsOf(raw);
    }
  }
}

/// '0 "off" 1 "on" ;'.
DbcDetailParser::RawTexts DbcDetailParser::takeRawTexts() {
  RawTexts raw;
  while (cursor_->isAt(Kind::number)) {
    const std::int64_t value = cursor_->takeInteger("a whole number");
    raw.emplace_back(value, cursor_->takeText("a text for the value").text);
  }
  cursor_->take(';');
  return raw;
}

std::vector<ValueText> DbcDetailParser::textsOf(const RawTexts& raw) const {
  std::vector<ValueText> texts;
  texts.reserve(raw.size());
  for (const auto& [value, text] : raw) {
    texts.push_back({value, cursor_->textOf(text)});
  }
  return texts;
}

/// A small file could ask for a large table a great many times.
void DbcDetailParser::copyTable(BusSignal& signal, const DbcToken& name) {
  constexpr std::size_t most_copied = std::size_t{1} << 26U;
  const auto table = tables_.find(name.text);
  if (table == tables_.end()) {
    cursor_->report(name, "the name of a value table");
    return;
  }
  const std::size_t memory = memoryOf(table->second);
  if (memory > most_copied - copied_) {
    cursor_->report(name, "at most 64 MiB of value tables for all signals");
    return;
  }
  copied_ += memory;
  signal.texts = table->second;
}

void DbcDetailParser::takeType() {
  constexpr std::uint64_t last_type = 2;
  const DbcSubject subject = takeSignalSubject(*cursor_);
  cursor_->takeIf(':');
  const std::uint64_t type =
      cursor_->takeUnsigned("'0', '1' or '2' as the kind of number", last_type);
  cursor_->take(';');
  if (cursor_->hasFailed() || type == 0) {
    return;
  }
  const auto place = signalOf(subject, *messages_, *cursor_);
  if (!place) {
    return;
  }
  BusSignal& signal = messages_->signal(place->message, place->signal);
  signal.type = type == 1 ? Type::single_float : Type::double_float;
  const std::uint32_t bits = type == 1 ? 32 : 64;
  if (signal.bits != bits || signal.is_switch) {
    cursor_->report(subject.name, signal.is_switch ? "a signal that is no switch"
                                  : type == 1      ? "a signal of 32 bits"
                                                   : "a signal of 64 bits");
    messages_->leaveOutSignal(place->message, subject.name.text);
  }
}

void DbcDetailParser::takeSwitch() {
  const DbcSubject subject = takeSignalSubject(*cursor_);
  const DbcToken name = cursor_->takeName("a switch's name");
  Multiplexing multiplexing = takeRanges();
  if (cursor_->hasFailed()) {
    return;
  }
  DbcSubject by = subject;
  by.name = name;
  const auto place = signalOf(subject, *messages_, *cursor_);
  const auto switch_place = place ? signalOf(by, *messages_, *cursor_) : std::nullopt;
  if (!switch_place) {
    return;
  }
  if (!messages_->signal(switch_place->message, switch_place->signal).is_switch) {
    cursor_->report(name, "a signal that is a switch");
    return;
  }
  multiplexing.by = switch_place->signal;
  messages_->signal(place->message, place->signal).multiplexing = std::move(multiplexing);
}

/// "0-5, 7-7;".
Multiplexing DbcDetailParser::takeRanges() {
  Multiplexing multiplexing;
  do {
    const std::uint64_t least = cursor_->takeUnsigned("a switch's value");
    cursor_->take('-');
    const DbcToken end = cursor_->token();
    const std::uint64_t greatest = cursor_->takeUnsigned("a switch's value");
    if (!cursor_->hasFailed() && greatest < least) {
      cursor_->failAt(end, "a value that is not below the one in front of it");
    }
    multiplexing.ranges.emplace_back(least, greatest);
  } while (cursor_->takeIf(','));
  cursor_->take(';');
  return multiplexing;
}

}  // namespace mdf_reader
