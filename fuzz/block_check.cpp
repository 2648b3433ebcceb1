#include "block_check.h"

#include <algorithm>
#include <iterator>

namespace mdf_fuzz {

std::string outcomeOf(const mdf_tests::oracle::Reading& reading) {
  if (!reading.thrown.empty()) {
    return reading.thrown;
  }
  return reading.state == std::ios_base::goodbit  ? "good"
         : reading.state == std::ios_base::badbit ? "bad"
                                                  : "end of file and fail";
}

void expectForm(const std::string& bytes, const std::string& letters, Contents contents) {
  const std::size_t links = contents.links.size() + contents.more_links.size();
  contents.section = mdf_tests::oracle::sectionOf(letters, bytes, links);
  expect(bytes == mdf_tests::oracle::writtenBytes(letters, contents),
         "header, links, fields and list entries in their places, and nothing more");
}

void expectUnread(const GENERALBLOCK& block, const std::string& letters) {
  expect(block.header.mdfID.idInternal == mdf_tests::oracle::numberAt("##" + letters, {0, 4}),
         "the identifier of the class");
  expect(std::count(std::begin(block.header.reserved), std::end(block.header.reserved), 0) == 4,
         "reserved bytes of the header zero");
  expect(block.getPadding() == 0, "no padding");
}

}  // namespace mdf_fuzz
