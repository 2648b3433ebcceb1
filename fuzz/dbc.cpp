#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <tuple>

#include "expect.h"
#include "finding_check.h"
#include "reader/bus/dbc_reader.h"
#include "reader/decoding/message_group.h"
#include "reader/values/text_encoding.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;

void expectSwitch(const BusMessage& message, const Multiplexing& multiplexing) {
  expect(multiplexing.by < message.signals.size() && message.signals[multiplexing.by].is_switch,
         "a signal to depend on a switch");
  expect(!multiplexing.ranges.empty() &&
             std::all_of(multiplexing.ranges.begin(), multiplexing.ranges.end(),
                         [](const auto& range) { return range.first <= range.second; }),
         "values of a switch in ranges");
}

/// Each signal leads to one that is always there.
void expectNoCircle(const BusMessage& message) {
  constexpr std::size_t most = 100;  // of a great many, the first ones
  for (std::size_t i = 0; i < std::min(most, message.signals.size()); ++i) {
    std::size_t steps = 0;
    for (std::size_t at = i; message.signals[at].multiplexing;
         at = message.signals[at].multiplexing->by) {
      expect(++steps < message.signals.size(), "no circle of switches");
    }
  }
}

void expectSignal(const BusSignal& signal, std::uint32_t length) {
  expect(signal.bits >= 1 && signal.bits <= 64, "1 to 64 bits");
  expect(firstByteOf(signal) < endByteOf(signal) && endByteOf(signal) <= length,
         "a signal within its message");
  expect(lowestBitOf(signal) < 8, "a bit of a byte");
  expect((signal.type != BusSignal::Type::single_float || signal.bits == 32) &&
             (signal.type != BusSignal::Type::double_float || signal.bits == 64),
         "floats of their size");
  expect(isUtf8(signal.name) && isUtf8(signal.unit) && isUtf8(signal.comment), "texts in UTF-8");
}

void expectMessage(const BusMessage& message) {
  expect(message.id <= (message.is_extended ? 0x1FFFFFFFU : 0x7FFU), "an identifier");
  expect(message.length <= 64, "at most 64 bytes");
  std::set<std::string> names;
  for (const BusSignal& signal : message.signals) {
    expectSignal(signal, message.length);
    expect(names.insert(signal.name).second, "signals with different names");
    if (signal.multiplexing) {
      expectSwitch(message, *signal.multiplexing);
    }
  }
  expectNoCircle(message);
}

/// A channel group can be made of each message, and records of frames of any length.
void expectGroups(const BusDatabase& database) {
  constexpr std::size_t most = 20;
  const std::string data(64, '\xA5');
  for (std::size_t i = 0; i < std::min(most, database.messages.size()); ++i) {
    mdf_writer::Plan plan;
    MessageGroup group(plan, {&database.messages[i], "message", "can1", i % 9, i > 9});
    expect(plan.fault().empty(), "a plan without a fault");
    for (const std::size_t bytes : {0U, 3U, 8U, 64U}) {
      expect(group.record(0, std::string_view(data).substr(0, bytes), 1).size() ==
                 group.group().dataBytes() + group.group().invalidationBytes(),
             "a whole record");
    }
  }
}

}  // namespace

std::string tryDbc(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 27U;
  constexpr std::size_t for_a_byte = 200;
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  const auto lines = static_cast<std::size_t>(std::count_if(
      input.begin(), input.end(), [](char each) { return each == '\n' || each == '\r'; }));
  std::size_t faults = 0;
  const BusDatabase database = readDbc(input, [&](const TextFault& fault) {
    ++faults;
    expect(fault.line >= 1 && fault.line <= lines + 1 && fault.column >= 1 &&
               fault.column <= input.size() + 1,
           "a fault inside the text");
    expect(fault.sentence.rfind("expected ", 0) == 0 &&
               fault.sentence.find(", found ") != std::string::npos &&
               fault.sentence.find('\n') == std::string::npos,
           "a fault to say what was expected and found, on one line");
  });
  expect(faults <= 101, "a bounded number of faults");
  std::set<std::pair<bool, std::uint32_t>> ids;
  for (const BusMessage& message : database.messages) {
    expect(ids.emplace(message.is_extended, message.id).second, "different identifiers");
    expectMessage(message);
  }
  expectGroups(database);
  return std::to_string(database.messages.size()) + " messages, " + std::to_string(faults) +
         " faults";
}

}  // namespace mdf_fuzz
