#ifndef MDF_FUZZ_MEMORY_OUTPUT_H_
#define MDF_FUZZ_MEMORY_OUTPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "writer/files/output.h"

namespace mdf_fuzz {

/// A file of the writer, in memory.
class MemoryOutput : public mdf_writer::Output {
 public:
  explicit MemoryOutput(std::string_view bytes = {}) : bytes_(bytes) {}

  bool isSeekable() const override { return true; }
  std::size_t write(std::uint64_t offset, const char* bytes, std::size_t count) override {
    const auto at = static_cast<std::size_t>(offset);
    bytes_.resize(std::max(bytes_.size(), at + count));
    bytes_.replace(at, count, bytes, count);
    return count;
  }
  bool cut(std::uint64_t size) override {
    bytes_.resize(std::min(bytes_.size(), static_cast<std::size_t>(size)));
    return true;
  }
  bool publish() override { return true; }
  bool sync() override { return true; }
  std::string cause() const override { return ""; }

  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_MEMORY_OUTPUT_H_
