#include "file_frame.h"

#include <mdf_writer/plan/texts.h>
#include <mdf_writer/stream/blocks.h>

#include <algorithm>
#include <array>

#include "fileblocks/fhblock.h"
#include "fileblocks/hdblock.h"
#include "framework/wire.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::FHBLOCK;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::detail::storeLe;

EachOnce::EachOnce(const FindingSink& report)
    : sink_([this, &report](const Finding& finding) {
        constexpr std::uint64_t codes = 256;
        const std::uint64_t key =
            1 + codes * finding.offset + static_cast<std::uint64_t>(finding.code);
        if (!told_.contains(key)) {
          told_.insert(key);
          report(finding);
        }
      }) {}

std::string identificationOf(InputFile& file) {
  constexpr std::size_t flags_at = 60;
  std::array<char, header_block_offset> bytes{};
  file.readAt(0, bytes.data(), bytes.size());
  std::string identification(bytes.data(), bytes.size());
  if (readIdentification(file).isUnfinished()) {
    identification.replace(0, 8, "MDF     ");
    storeLe(&identification[flags_at], std::uint32_t{0});
  }
  return identification;
}

std::vector<std::uint32_t> chainOf(const BlockCopy& blocks, std::size_t link) {
  const BlockTable& table = blocks.table();
  std::uint32_t head = BlockTable::none;
  std::vector<std::uint32_t> chain;
  for (std::uint32_t block = 1; block < table.size(); ++block) {
    const BlockEntry& entry = table[block];
    if (head == BlockTable::none && entry.parent == 0 && entry.link == link) {
      head = block;
    }
    if (head != BlockTable::none && entry.head == head && blocks.isCopied(block) &&
        entry.letters() == table[head].letters()) {
      chain.push_back(block);
    }
  }
  std::sort(chain.begin(), chain.end(), [&](std::uint32_t left, std::uint32_t right) {
    return table[left].position < table[right].position;
  });
  return chain;
}

void addHistory(BlockCopy& blocks, const NewHistory& entry, NewBlocks& out) {
  const std::vector<std::uint32_t> chain = chainOf(blocks, HDBLOCK::hd_fh_first);
  const bool is_first = chain.empty() || blocks.table()[chain.back()].letters() != "FH";
  const BlockCopy::Link end = is_first ? BlockCopy::Link{0, HDBLOCK::hd_fh_first}
                                       : BlockCopy::Link{chain.back(), next_link};
  const auto last = readRawBlock(blocks.file(), blocks.table()[end.block].offset);
  if (last && linksThere(blocks.file(), *last) > end.number) {
    blocks.setLink(end, writeHistory(entry, out));
  }
}

std::uint64_t writeHistory(const NewHistory& entry, NewBlocks& out) {
  using namespace mdf_writer;
  Blocks added(out.end());
  const auto comment = added.addXml(xmlComment(
      "FHcomment", xmlElement("TX", entry.text) + xmlElement("tool_id", "mdf") +
                       xmlElement("tool_vendor", "") + xmlElement("tool_version", entry.version)));
  const auto block = added.add(FHBLOCK(comment, entry.time, 0, 0));
  out.add(added.bytes());
  return static_cast<std::uint64_t>(block);
}

}  // namespace mdf_tools
