#ifndef MDF_FUZZ_OUTPUT_CHECK_H_
#define MDF_FUZZ_OUTPUT_CHECK_H_

#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>

#include "expect.h"
#include "finding_check.h"
#include "printing/json_output.h"
#include "printing/text_table.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/printable.h"
#include "support/allocation_counter.h"

namespace mdf_fuzz {

/// Checks output line by line, and keeps only the latest line.
class Lines : public std::streambuf {
 public:
  enum class Kind {
    json,
    harmless,  ///< characters that may stand in a picture
    printed,   ///< no control characters
  };
  explicit Lines(Kind kind) : kind_(kind) {}

  std::uint64_t count() const { return count_; }
  void expectEnd() const { expect(line_.empty(), "output to end with its line"); }

 protected:
  int_type overflow(int_type character) override {
    const char each = traits_type::to_char_type(character);
    if (each != '\n') {
      line_ += each;
      return character;
    }
    expectLine();
    line_.clear();
    ++count_;
    return character;
  }

 private:
  void expectLine() const {
    switch (kind_) {
      case Kind::json:
        expect(mdf_tools::Json::accept(line_), "lines of JSON");
        break;
      case Kind::harmless:
        expect(mdf_reader::printable(line_, mdf_reader::Harmless::utf8) == line_,
               "lines of characters that do no harm");
        break;
      case Kind::printed:
        expect(mdf_tools::onOneLine(line_) == line_, "lines without control characters");
        break;
    }
  }

  Kind kind_;
  std::string line_;
  std::uint64_t count_ = 0;
};

/// Lines that a file of this size may make: one for each link, and links are visited four times at
/// most.
inline std::uint64_t mostLinks(std::size_t file_size) {
  return 4 * file_size / 8 + file_size / 24 + 10;
}

/// Calls write(file, stream, report) and expects so many lines at most.
template <class Write>
void tryWriting(const std::string& path, Lines::Kind kind, std::uint64_t most_lines,
                const Write& write) {
  mdf_reader::InputFile file(path);
  const auto size = static_cast<std::size_t>(file.size());
  const mdf_tests::AllocationLimit limit((std::size_t{8} << 20U) + 64 * size);
  Lines lines(kind);
  std::ostream os(&lines);
  os.exceptions(std::ios_base::badbit);
  write(file, os,
        [&](const mdf_reader::Finding& finding) { expectSentence(finding, file.size()); });
  lines.expectEnd();
  expect(lines.count() <= most_lines, "output in proportion to the file");
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_OUTPUT_CHECK_H_
