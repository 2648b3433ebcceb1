#include "database_file.h"

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "../bus/dbc_reader.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

constexpr std::uint64_t largest_database = std::uint64_t{1} << 28U;

std::string textOf(InputFile& file) {
  std::string text;
  forEachPiece(file, 0, file.size(), [&](std::string_view piece) { text += piece; });
  return text;
}

NamedDatabase namedAs(const std::string& word) {
  std::error_code none;
  const std::size_t sign =
      std::filesystem::exists(word, none) ? std::string::npos : word.rfind('@');
  NamedDatabase named;
  named.path = word.substr(0, sign);
  named.bus = sign == std::string::npos ? "" : word.substr(sign + 1);
  return named;
}

}  // namespace

NamedDatabase readDatabase(const std::string& word, const DatabaseFaultSink& report) {
  NamedDatabase named = namedAs(word);
  InputFile file(named.path);
  if (!file.problem().empty()) {
    throw CannotDecode(file.problem());
  }
  if (file.size() > largest_database) {
    throw CannotDecode(file.name() + ": expected a database of at most 256 MiB, found one of " +
                       std::to_string(file.size()) + " bytes");
  }
  named.database = readDbc(textOf(file), [&](const TextFault& fault) {
    report({file.name(), fault.line, fault.column, fault.sentence});
  });
  if (named.database.messages.empty()) {
    throw CannotDecode(file.name() + ": expected messages, found none");
  }
  return named;
}

}  // namespace mdf_reader
