#include "dump.h"

namespace mdf_v4_10::detail {

Dump::Dump(std::ostream& os, const char* name) : os_(os), name_(name) {
  os_ << "[DEBUG] ==================== " << name_ << " ===================";
  endLine();
}

void Dump::end() {
  os_ << "[DEBUG] ==================== End of " << name_ << " ===================";
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
