#include "tools/bus/described.h"

#include "reader/bus/dbc_reader.h"
#include "reader/bytes/number_texts.h"

namespace mdf_tests {

namespace {

using namespace mdf_reader;

std::string quotedIf(const std::string& text) { return text.empty() ? "" : " \"" + text + '"'; }

std::string described(const BusMessage& message) {
  std::string line = message.name + ' ' + hexDigits(message.id);
  line += message.is_extended ? " extended" : "";
  line += message.is_fd ? " fd" : "";
  line += message.is_j1939 ? " j1939" : "";
  line += ' ' + std::to_string(message.length) + " bytes";
  line += message.sender.empty() ? "" : " from " + message.sender;
  line += message.cycle_time ? " every " + shortestReal(*message.cycle_time) + " s" : "";
  return line + quotedIf(message.comment) + '\n';
}

std::string described(const Multiplexing& multiplexing, const BusMessage& message) {
  std::string text = " if " + message.signals.at(multiplexing.by).name;
  for (const auto& [least, greatest] : multiplexing.ranges) {
    text += ' ' + std::to_string(least) + '-' + std::to_string(greatest);
  }
  return text;
}

std::string described(const BusSignal& signal, const BusMessage& message) {
  constexpr const char* types[] = {"unsigned", "signed", "float", "double"};
  std::string line = "  " + signal.name + ' ' + std::to_string(signal.start_bit) + '|' +
                     std::to_string(signal.bits) + (signal.is_big_endian ? " big " : " little ") +
                     types[static_cast<int>(signal.type)] + " *" + shortestReal(signal.factor) +
                     '+' + shortestReal(signal.offset);
  if (signal.range) {
    line +=
        " [" + shortestReal(signal.range->first) + ", " + shortestReal(signal.range->second) + ']';
  }
  line += signal.unit.empty() ? "" : ' ' + signal.unit;
  line += signal.is_switch ? " switch" : "";
  line += signal.multiplexing ? described(*signal.multiplexing, message) : "";
  for (const ValueText& each : signal.texts) {
    line += ' ' + std::to_string(each.value) + '=' + each.text;
  }
  return line + quotedIf(signal.comment) + '\n';
}

std::string described(const TextFault& fault) {
  return std::to_string(fault.line) + ':' + std::to_string(fault.column) + ": " + fault.sentence +
         '\n';
}

}  // namespace

std::string described(std::string_view dbc) {
  std::string faults;
  const BusDatabase database =
      readDbc(dbc, [&](const TextFault& fault) { faults += described(fault); });
  std::string text = database.comment.empty() ? "" : database.comment + '\n';
  for (const BusMessage& message : database.messages) {
    text += described(message);
    for (const BusSignal& signal : message.signals) {
      text += described(signal, message);
    }
  }
  return text + faults;
}

std::string faultsOf(std::string_view dbc) {
  std::string faults;
  readDbc(dbc, [&](const TextFault& fault) { faults += described(fault); });
  return faults;
}

}  // namespace mdf_tests
