#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "printing/file_dump.h"
#include "printing/output_buffer.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using mdf_tools::OutputBuffer;

/// A C file that keeps what is written to it.
class MemoryOutput {
 public:
  MemoryOutput() : file_(open_memstream(&text_, &size_)) {
    if (file_ == nullptr) {
      throw std::runtime_error("memory for a dump");
    }
  }
  ~MemoryOutput() {
    (void)std::fclose(file_);
    const std::unique_ptr<char, void (*)(void*)> text(text_, std::free);
  }
  MemoryOutput(const MemoryOutput&) = delete;
  MemoryOutput& operator=(const MemoryOutput&) = delete;

  std::FILE* file() const { return file_; }

  /// What had been written at the last flush.
  std::string text() const { return {text_, size_}; }

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* file_;
};

struct Dump {
  std::string text;
  std::size_t findings = 0;
};

Dump dumpFile(const std::string& path) {
  const MemoryOutput memory;
  mdf_reader::InputFile file(path);
  OutputBuffer output(memory.file(), OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  Dump dump;
  {
    const mdf_tests::AllocationLimit limit((std::size_t{1} << 20U) +
                                           32 * static_cast<std::size_t>(file.size()));
    mdf_tools::dumpFile(file, os, [&](const mdf_reader::Finding& finding) {
      expectSentence(finding, file.size());
      ++dump.findings;
    });
  }
  output.flush();
  expect(output.error() == 0, "output to memory not to fail");
  dump.text = memory.text();
  return dump;
}

/// What a terminal would get of a dump.
std::string shown(const std::string& text) {
  const MemoryOutput memory;
  OutputBuffer output(memory.file(), OutputBuffer::Bytes::for_a_terminal);
  std::ostream(&output) << text;
  output.flush();
  return memory.text();
}

bool isShownAs(char byte, char character) {
  const auto code = static_cast<unsigned char>(byte);
  const bool may_be_hidden = (code < 0x20 && byte != '\n' && byte != '\t') || code >= 0x7F;
  return character == byte || (character == '.' && may_be_hidden);
}

bool isHarmless(char character) {
  const auto code = static_cast<unsigned char>(character);
  return (code >= 0x20 && code != 0x7F) || character == '\n' || character == '\t';
}

}  // namespace

std::string tryDump(std::string_view input) {
  static const MemoryFile file;
  file.hold(input);
  const Dump dump = dumpFile(file.path());
  const std::string headline = "0 (0x0) identification length 64\n";
  expect((dump.text.rfind(headline, 0) == 0) == (input.size() >= 64),
         "the identification of every file that has it");
  expect(dump.text.empty() || dump.text.back() == '\n', "a dump to end with its line");

  const std::string on_terminal = shown(dump.text);
  expect(std::equal(dump.text.begin(), dump.text.end(), on_terminal.begin(), on_terminal.end(),
                    isShownAs),
         "the same bytes for a terminal, except control characters");
  expect(std::all_of(on_terminal.begin(), on_terminal.end(), isHarmless),
         "no control characters for a terminal");
  return std::to_string(dump.findings) + " findings";
}

}  // namespace mdf_fuzz
