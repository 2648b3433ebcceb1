#ifndef MDF_TOOLS_CHANGING_PATCHING_H_
#define MDF_TOOLS_CHANGING_PATCHING_H_

#include <mdf_writer/files/output.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "copy_failure.h"
#include "framework/wire.h"

namespace mdf_tools {

/// A number as a file has it, in 8 bytes.
inline std::string numberBytes(std::uint64_t number) {
  std::string bytes(sizeof number, '\0');
  mdf_v4_10::detail::storeLe(bytes.data(), number);
  return bytes;
}

[[noreturn]] inline void failToWrite(const mdf_writer::Output& output) {
  throw CopyFailure("cannot write the new file: " + output.cause());
}

/// Writes bytes into a file.
/// @throws CopyFailure where it takes no more.
inline void put(mdf_writer::Output& output, std::uint64_t at, std::string_view bytes) {
  if (output.write(at, bytes.data(), bytes.size()) < bytes.size()) {
    failToWrite(output);
  }
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_PATCHING_H_
