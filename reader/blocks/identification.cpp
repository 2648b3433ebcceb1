#include "identification.h"

#include <array>
#include <string_view>

#include "../bytes/input_file.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

std::string upToZero(std::string_view text) { return std::string(text.substr(0, text.find('\0'))); }

/// "3.30" for 330.
std::string versionText(unsigned version) {
  const unsigned minor = version % 100;
  return std::to_string(version / 100) + (minor < 10 ? ".0" : ".") + std::to_string(minor);
}

}  // namespace

bool Identification::isFinished() const { return file_word == "MDF     "; }

bool Identification::isUnfinished() const { return file_word == "UnFinMF "; }

Identification readIdentification(InputFile& file) {
  std::array<char, header_block_offset> bytes{};
  file.readAt(0, bytes.data(), bytes.size());
  Identification id;
  id.file_word.assign(bytes.data(), 8);
  id.version_text = upToZero({bytes.data() + 8, 8});
  id.program = upToZero({bytes.data() + 16, 8});
  id.version = loadLe<std::uint16_t>(bytes.data() + 28);
  id.standard_flags = loadLe<std::uint16_t>(bytes.data() + 60);
  id.custom_flags = loadLe<std::uint16_t>(bytes.data() + 62);
  return id;
}

std::optional<Finding> identificationFinding(InputFile& file) {
  constexpr unsigned first_version = 400;
  if (file.size() < header_block_offset) {
    return Finding{0, "expected 64 bytes of identification, " + upToTheEnd(file.size())};
  }
  const Identification id = readIdentification(file);
  if (!id.isFinished() && !id.isUnfinished()) {
    return Finding{0, "expected the file identifier \"MDF     \" or \"UnFinMF \", found " +
                          quoted(id.file_word)};
  }
  if (id.version != 0 && id.version < first_version) {
    return Finding{0, "expected a file of MDF 4, found one of MDF " + versionText(id.version)};
  }
  return std::nullopt;
}

}  // namespace mdf_reader
