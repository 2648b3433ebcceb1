#include "dumped.h"

#include <cstdio>
#include <memory>
#include <vector>

#include "reading/file_dump.h"
#include "reading/input_file.h"
#include "reading/output_buffer.h"
#include "support/allocation_counter.h"
#include "temp_file.h"

namespace mdf_tests {

namespace {

std::string contentOf(std::FILE* file) {
  std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
  std::rewind(file);
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
  return bytes;
}

}  // namespace

Dumped dumpedFile(const std::string& path, std::size_t allocation_limit) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> printed(std::tmpfile(), std::fclose);
  mdf_tools::InputFile file(path);
  mdf_tools::OutputBuffer output(printed.get(), mdf_tools::OutputBuffer::Bytes::as_they_are);
  Dumped result;
  {
    const AllocationLimit limit(allocation_limit);
    mdf_tools::dumpFile(file, output, [&](const mdf_tools::Finding& finding) {
      result.findings += std::to_string(finding.offset) + ": " + finding.sentence + "\n";
    });
  }
  result.output = contentOf(printed.get());
  return result;
}

Dumped dumpedBytes(const std::string& bytes) {
  const TempFile file(bytes);
  return dumpedFile(file.path(), 1 << 20);
}

}  // namespace mdf_tests
