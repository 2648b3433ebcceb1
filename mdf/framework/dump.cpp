#include "dump.h"

#include <array>
#include <cstdio>

namespace mdf_v4_10::detail {

Dump::Dump(std::ostream& os, const char* name) : os_(os), name_(name) { banner(""); }

void Dump::end() { banner("End of "); }

void Dump::banner(const char* before_name) {
  std::array<char, 96> text;
  static_cast<void>(
      std::snprintf(text.data(), text.size(),
                    "[DEBUG] ==================== %s%s ===================", before_name, name_));
  os_ << text.data();
  endLine();
}

void Dump::line(const char* label, const char* text, std::size_t count) {
  part(label);
  os_.write(text, static_cast<std::streamsize>(count));
  endLine();
}

void Dump::part(const char* text) { os_ << text; }

void Dump::endLine() { os_ << std::endl; }

void Dump::raw(const UINT8* bytes, std::size_t count) {
  os_.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(count));
}

void Dump::hexDump(const std::vector<UINT8>& bytes) {
  part("data hex dump: ");
  if (!bytes.empty()) {
    os_.setf(std::ios_base::hex, std::ios_base::basefield);
    raw(bytes.data(), bytes.size());
  }
}

}  // namespace mdf_v4_10::detail
