#include <algorithm>
#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string>

#include "drawing/block_graph.h"
#include "drawing/block_json.h"
#include "drawing/block_map.h"
#include "drawing/one_line.h"
#include "drawing/tree_text.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "reading/file_dump.h"
#include "reading/input_file.h"
#include "showing/json_output.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using mdf_tools::InputFile;

/// Looks at what is written, line by line, and keeps the latest line alone.
class Lines : public std::streambuf {
 public:
  enum class Kind { text, json };
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
    if (kind_ == Kind::json) {
      expect(mdf_tools::Json::accept(line_), "lines of JSON");
    } else {
      expect(mdf_tools::oneLine(line_, line_.size() + 1) == line_,
             "lines of characters that do no harm");
    }
    line_.clear();
    ++count_;
    return character;
  }

 private:
  Kind kind_;
  std::string line_;
  std::uint64_t count_ = 0;
};

/// Calls write(file, stream, report) and expects so many lines at most.
template <class Write>
void tryWriting(const std::string& path, Lines::Kind kind, std::uint64_t most_lines,
                const Write& write) {
  InputFile file(path);
  const auto size = static_cast<std::size_t>(file.size());
  const mdf_tests::AllocationLimit limit((std::size_t{8} << 20U) + 64 * size);
  Lines lines(kind);
  std::ostream os(&lines);
  os.exceptions(std::ios_base::badbit);
  write(file, os, [&](const mdf_tools::Finding& finding) { expectSentence(finding, file.size()); });
  lines.expectEnd();
  expect(lines.count() <= most_lines, "output in proportion to the file");
}

}  // namespace

std::string tryDraw(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  const std::string path = memory.path();
  // Each link makes at most one line, and links are gone through four times at most.
  const std::uint64_t most_links = 4 * input.size() / 8 + input.size() / 24 + 10;
  using mdf_tools::FindingSink;
  const auto draw = [&](Lines::Kind kind, std::uint64_t most, const auto& write) {
    tryWriting(path, kind, most, write);
  };
  mdf_tools::TreeOptions all;
  all.list_limit = UINT64_MAX;
  draw(Lines::Kind::text, most_links, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::writeTree(file, all, os, r);
  });
  draw(Lines::Kind::json, most_links, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::writeTreeAsJson(file, {mdf_tools::header_block_offset, 9, 3}, os, r);
  });
  draw(Lines::Kind::text, 10 * most_links + 100,
       [&](InputFile& file, std::ostream& os, const FindingSink& r) {
         mdf_tools::annotateFile(file, os, 64, r);
       });
  draw(Lines::Kind::json, most_links, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::writeBlocksAsJson(file, os, 64, r);
  });
  draw(Lines::Kind::text, 2010, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::GraphPicture picture;
    mdf_tools::addGraph(picture, mdf_tools::makeGraph(file, {}, r), "title", "f0_");
    os << mdf_tools::dotOf(picture);
  });
  draw(Lines::Kind::text, 13000, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    double height = 0;
    os << mdf_tools::mapPicture(
        mdf_tools::mapPart(mdf_tools::makeMap(file, r), "title", "f0_", height));
  });
  return "drawn";
}

}  // namespace mdf_fuzz
