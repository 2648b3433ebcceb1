#include <cstdint>
#include <ostream>
#include <string>

#include "memory_file.h"
#include "output_check.h"
#include "pictures/block_graph.h"
#include "pictures/block_map.h"
#include "printing/block_json.h"
#include "printing/file_dump.h"
#include "printing/tree_text.h"
#include "reader/bytes/input_file.h"
#include "targets.h"

namespace mdf_fuzz {

using mdf_reader::InputFile;

std::string tryDraw(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  const std::string path = memory.path();
  const std::uint64_t most_links = mostLinks(input.size());
  using mdf_reader::FindingSink;
  const auto draw = [&](Lines::Kind kind, std::uint64_t most, const auto& write) {
    tryWriting(path, kind, most, write);
  };
  mdf_tools::TreeOptions all;
  all.list_limit = UINT64_MAX;
  draw(Lines::Kind::harmless, most_links,
       [&](InputFile& file, std::ostream& os, const FindingSink& r) {
         mdf_tools::writeTree(file, all, os, r);
       });
  draw(Lines::Kind::json, most_links, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::writeTreeAsJson(file, {mdf_reader::header_block_offset, 9, 3}, os, r);
  });
  for (const bool with_bytes : {true, false}) {
    draw(Lines::Kind::harmless, 10 * most_links + 100,
         [&](InputFile& file, std::ostream& os, const FindingSink& r) {
           mdf_tools::annotateFile(file, os, {with_bytes, 64}, r);
         });
  }
  draw(Lines::Kind::json, most_links, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::writeBlocksAsJson(file, os, 64, r);
  });
  draw(Lines::Kind::harmless, 2010, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    mdf_tools::GraphPicture picture;
    mdf_tools::addGraph(picture, mdf_tools::makeGraph(file, {}, r), "title", "f0_");
    os << mdf_tools::dotOf(picture);
  });
  draw(Lines::Kind::harmless, 13000, [&](InputFile& file, std::ostream& os, const FindingSink& r) {
    double height = 0;
    os << mdf_tools::mapPicture(
        mdf_tools::mapPart(mdf_tools::makeMap(file, r), "title", "f0_", height));
  });
  return "drawn";
}

}  // namespace mdf_fuzz
