#include "identification.h"

#include <array>
#include <string_view>

#include "../bytes/input_file.h"
#include "../bytes/printable.h"
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

bool hasHeaderBlock(InputFile& file) {
  std::array<char, 4> bytes{};
  file.readAt(header_block_offset, bytes.data(), bytes.size());
  return std::string_view(bytes.data(), bytes.size()) == "##HD";
}

/// What an MDF file would not have, in words.
std::string strangeness(InputFile& file, bool begins_like_one) {
  if (file.size() == 0) {
    return "it is empty";
  }
  if (begins_like_one) {
    return "it has only " + std::to_string(file.size()) + " of the 64 bytes of identification";
  }
  std::array<char, 8> bytes{};
  return "it begins with " + quoted({bytes.data(), file.readAt(0, bytes.data(), bytes.size())});
}

/// The version where it is not one of MDF 4, such as "3.30"; "" where it is, or is not told. Before
/// version 4 the number may have its bytes in the other order, so the text comes first.
std::string otherVersion(const Identification& id) {
  const std::string text = id.version_text.substr(0, id.version_text.find(' '));
  const auto is_digit = [](char each) { return each >= '0' && each <= '9'; };
  if (text.size() >= 3 && is_digit(text[0]) && text[1] == '.' && is_digit(text[2])) {
    return text[0] == '4' ? "" : printable(text);
  }
  return id.version == 0 || id.isVersion4() ? "" : versionText(id.version);
}

}  // namespace

bool Identification::isFinished() const { return file_word == "MDF     "; }

bool Identification::isUnfinished() const { return file_word == "UnFinMF "; }

std::vector<std::string> Identification::openParts() const {
  constexpr std::string_view parts[] = {"cycle counts of channel groups",
                                        "cycle counts of sample reductions",
                                        "length of the last data block",
                                        "length of the last reduction data block",
                                        "last data list",
                                        "data bytes of variable-length groups",
                                        "offsets of variable-length channels"};
  std::vector<std::string> open;
  unsigned flag = cycle_counters_open;
  for (const std::string_view part : parts) {
    if ((standard_flags & flag) != 0) {
      open.emplace_back(part);
    }
    flag <<= 1U;
  }
  return open;
}

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
  if (file.size() < header_block_offset) {
    return Finding{Code::not_mdf, 0,
                   "expected 64 bytes of identification, " + upToTheEnd(file.size())};
  }
  const Identification id = readIdentification(file);
  if (!id.isFinished() && !id.isUnfinished()) {
    return Finding{
        Code::not_mdf, 0,
        "expected the file identifier \"MDF     \" or \"UnFinMF \", found " + quoted(id.file_word)};
  }
  const std::string version = otherVersion(id);
  if (version.empty()) {
    return std::nullopt;
  }
  return Finding{Code::version_wrong, 0, "expected a file of MDF 4, found one of MDF " + version};
}

std::optional<Unreadable> refusalOf(InputFile& file) {
  if (!file.problem().empty()) {
    return Unreadable(file.problem(), {Code::request_failed, 0, file.problem()});
  }
  const auto refusal = [&](Code code, const std::string& sentence) {
    return Unreadable(file.name() + ": " + sentence, {code, 0, sentence});
  };
  const Identification id = readIdentification(file);
  const bool is_mdf = id.isFinished() || id.isUnfinished();
  if (file.size() >= header_block_offset && hasHeaderBlock(file)) {
    return std::nullopt;
  }
  if (!is_mdf || file.size() < header_block_offset) {
    return refusal(Code::not_mdf, "this is not an MDF file: " + strangeness(file, is_mdf));
  }
  const std::string version = otherVersion(id);
  if (version.empty()) {
    return std::nullopt;
  }
  return refusal(Code::version_wrong, "this is MDF " + version + "; only 4.x is read");
}

}  // namespace mdf_reader
