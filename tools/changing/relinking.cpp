#include "relinking.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "checking/subject.h"
#include "lost_blocks.h"
#include "mdf_v4_10.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/finding.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/offset_set.h"
#include "reader/data/data_block.h"

namespace mdf_tools {

using namespace mdf_reader;
using namespace mdf_v4_10;

namespace {

/// What is found out anew for each block that is put back is not done for more of them.
constexpr std::size_t most_steps = 1000;

std::uint64_t aligned(std::uint64_t offset) { return (offset + 7) / 8 * 8; }

class Relinker {
 public:
  explicit Relinker(InputFile& file) : file_(file), blocks_(file) {}

  Relinking relink();

 private:
  using Links = std::vector<BlockLink>;
  /// The kind of data, "" for none; whether the number is the length of all blocks; the number.
  using Seam = std::tuple<std::string, bool, std::uint64_t>;

  void putBack(const BlockLink& link, const RawBlock& root);
  void fillHeaderList(std::string_view letters, std::uint64_t link);
  bool belongsInList(const RawBlock& root);
  BlockLink endOfList(BlockLink link, OffsetSet& seen);
  void fillTree(std::string_view letters);
  static Links linksTo(std::string_view letters, Links links);

  void fillLists();
  void fillList(const RawBlock& list);
  std::optional<RawBlock> between(const std::optional<RawBlock>& before,
                                  const std::optional<RawBlock>& after);
  void continueLists();
  Seam seamOf(const RawBlock& list, bool at_end);
  void fillData();
  bool fillOnly(const Links& links);
  Links wantingData(Links links);
  std::string kindOf(const RawBlock& block);
  std::string kindOf(const BlockLink& link);

  InputFile& file_;
  LostBlocks blocks_;
  Relinking result_;
};

Relinking Relinker::relink() {
  if (blocks_.areThere()) {
    fillHeaderList("DG", HDBLOCK::hd_dg_first);
    fillHeaderList("FH", HDBLOCK::hd_fh_first);
    fillHeaderList("AT", HDBLOCK::hd_at_first);
    fillHeaderList("EV", HDBLOCK::hd_ev_first);
    for (const char* letters : {"CH", "CG", "CN", "CA", "SR"}) {
      fillTree(letters);
    }
    fillLists();
    continueLists();
    fillData();
  }
  for (const RawBlock& block : blocks_.all()) {
    result_.lost.push_back({block.offset, std::string(block.letters()), block.length});
  }
  return std::move(result_);
}

void Relinker::putBack(const BlockLink& link, const RawBlock& root) {
  const RawBlock& parent = link.block;
  result_.put_back.push_back({{root.offset, std::string(root.letters()), root.length},
                              {parent.offset, std::string(parent.letters()), parent.length},
                              linkRole(BlockFields(file_, parent), link.index).name,
                              link.place()});
  blocks_.putBack(link, root);
}

/// Puts all blocks of a type at the end of the one list that there is for them.
void Relinker::fillHeaderList(std::string_view letters, std::uint64_t link) {
  const auto header = readRawBlock(file_, header_block_offset);
  if (!header || header->letters() != "HD" || linksThere(file_, *header) <= link) {
    return;
  }
  OffsetSet seen;
  BlockLink end = endOfList({*header, link}, seen);
  for (const RawBlock& root : blocks_.roots(letters)) {
    if (belongsInList(root)) {
      putBack(end, root);
      end = endOfList(end, seen);
    }
  }
}

/// The first link from here on that leads to no further block of the list.
BlockLink Relinker::endOfList(BlockLink link, OffsetSet& seen) {
  for (auto next = blocks_.target(link);
       next && !seen.contains(next->offset) && linksThere(file_, *next) > next_link;
       next = blocks_.target(link)) {
    seen.insert(next->offset);
    link = {*next, next_link};
  }
  return link;
}

bool Relinker::belongsInList(const RawBlock& root) {
  if (!BlockFields(file_, root).isComplete()) {
    return false;
  }
  return root.letters() != "DG" || blocks_.isLost(linkAt(file_, root, DGBLOCK::dg_cg_first));
}

/// Those that may lead to a type.
Relinker::Links Relinker::linksTo(std::string_view letters, Links links) {
  links.erase(std::remove_if(links.begin(), links.end(),
                             [&](const BlockLink& link) {
                               return !isAmongTargets(structureTargets(link.block, link.index),
                                                      letters);
                             }),
              links.end());
  return links;
}

/// Puts a block in the only place for it. Several are pieces of one list where each but the last
/// one ends with a broken link.
void Relinker::fillTree(std::string_view letters) {
  std::vector<RawBlock> roots = blocks_.roots(letters);
  roots.erase(std::remove_if(roots.begin(), roots.end(),
                             [&](const RawBlock& root) { return !belongsInList(root); }),
              roots.end());
  Links links = linksTo(letters, blocks_.broken());
  if (links.empty() && roots.size() == 1) {
    links = linksTo(letters, blocks_.empty());
  }
  const bool are_pieces = roots.size() == 1 || (roots.size() <= most_steps &&
                                                blocks_.brokenInLost(letters) == roots.size() - 1);
  for (std::size_t i = 0; i < roots.size() && are_pieces && links.size() == 1; ++i) {
    putBack(links.front(), roots[i]);
    links = linksTo(letters, blocks_.broken());
  }
}

/// Fills gaps in data lists.
void Relinker::fillLists() {
  std::vector<RawBlock> lists;
  for (const BlockLink& link : blocks_.broken()) {
    if (isDataList(link.block) && (lists.empty() || lists.back().offset != link.block.offset)) {
      lists.push_back(link.block);
    }
  }
  for (const RawBlock& list : lists) {
    fillList(list);
  }
}

void Relinker::fillList(const RawBlock& list) {
  std::optional<RawBlock> before;
  const std::uint64_t count = list.letters() == "DL" ? linksThere(file_, list) : 0;
  for (std::uint64_t i = next_link + 1; i < count; ++i) {
    const BlockLink link{list, i};
    std::optional<RawBlock> block = blocks_.target(link);
    if (!block && linkAt(file_, list, i) != 0) {
      const auto after = i + 1 < count ? blocks_.target({list, i + 1}) : std::nullopt;
      block = between(before, after);
      if (block) {
        putBack(link, *block);
      }
    }
    before = block;
  }
}

/// The lost block of data right after one and right before another, or what is known of these.
std::optional<RawBlock> Relinker::between(const std::optional<RawBlock>& before,
                                          const std::optional<RawBlock>& after) {
  const std::string kind = before ? kindOf(*before) : after ? kindOf(*after) : "";
  const auto fits = [&](const std::optional<RawBlock>& root) {
    return root && isDataBlock(*root) && kindOf(*root) == kind;
  };
  if (before) {
    const auto root = blocks_.rootAt(aligned(blocks_.dataFile().endOf(*before)));
    if (fits(root)) {
      return root;
    }
  }
  const auto root = after ? blocks_.rootBefore(after->offset) : std::nullopt;
  return fits(root) && aligned(root->offset + root->length) == after->offset ? root : std::nullopt;
}

/// What tells that one list goes on with another: where in the data that begins and this one ends
/// or, of lists that do not state that, how long all their blocks are.
Relinker::Seam Relinker::seamOf(const RawBlock& list, bool at_end) {
  const BlockFields fields(file_, list);
  const std::uint64_t links = linksThere(file_, list);
  if (list.letters() != "DL" || !fields.isComplete() || links < 2) {
    return {"", false, 0};
  }
  const bool is_equal = fields.hasFlag("dl_flags", DLBLOCK::equal_length);
  const auto last = at_end ? blocks_.target({list, links - 1}) : std::nullopt;
  const std::uint64_t bytes = last ? findData(blocks_.dataFile(), *last).original : 0;
  const std::uint64_t first = numberAt(file_, fields.tailAt());
  if (!at_end || is_equal) {
    const bool is_full = !at_end || bytes == first;
    return {first == 0 || !is_full ? "" : kindOf(list), is_equal, first};
  }
  const std::uint64_t last_at = fields.tailAt() + sizeof(std::uint64_t) * (links - 2);
  return {kindOf(list), false, numberAt(file_, last_at) + bytes};
}

/// Lets lists go on with those that begin where they end, the first ones first.
void Relinker::continueLists() {
  const std::vector<RawBlock> roots = blocks_.roots("DL");
  std::map<Seam, std::vector<RawBlock>> begins;
  std::map<Seam, std::vector<RawBlock>> ends;
  for (const RawBlock& root : roots) {
    begins[seamOf(root, false)].push_back(root);
  }
  for (const auto& lists : {blocks_.lists(), roots}) {
    for (const RawBlock& list : lists) {
      if (!roots.empty() && !blocks_.target({list, next_link})) {
        ends[seamOf(list, true)].push_back(list);
      }
    }
  }
  for (const auto& [seam, lists] : begins) {
    const auto end = ends.find(seam);
    if (!std::get<0>(seam).empty() && lists.size() == 1 && end != ends.end() &&
        end->second.size() == 1 && end->second.front().offset != lists.front().offset &&
        !blocks_.isLost(end->second.front().offset)) {
      putBack({end->second.front(), next_link}, lists.front());
    }
  }
}

/// What data a block has: "DT", "SD" and so on, also of a list and of zipped blocks.
std::string Relinker::kindOf(const RawBlock& block) {
  std::optional<RawBlock> at = block;
  if (at->type().contents == Contents::list_of_lists) {
    at = blocks_.target({*at, HLBLOCK::hl_dl_first});
  }
  if (at && isDataList(*at)) {
    const std::uint64_t count = std::min<std::uint64_t>(linksThere(file_, *at), most_steps);
    std::optional<RawBlock> data;
    for (std::uint64_t i = next_link + 1; i < count && !data; ++i) {
      data = blocks_.target({*at, i});
    }
    at = data;
  }
  const std::string kind = at ? originalType(file_, *at) : "";
  return kind == "DV" ? "DT" : kind == "RV" ? "RD" : kind;
}

/// What data a link is to lead to; "" for a link to something else.
std::string Relinker::kindOf(const BlockLink& link) {
  const std::string_view letters = link.block.letters();
  if (linksTo("DL", {link}).empty() && linksTo("DZ", {link}).empty()) {
    return "";
  }
  return letters == "DG"   ? "DT"
         : letters == "SR" ? "RD"
         : letters == "CN" ? "SD"
                           : kindOf(link.block);
}

void Relinker::fillData() {
  for (std::size_t step = 0; step < most_steps && fillOnly(blocks_.broken()); ++step) {
  }
  for (std::size_t step = 0; step < most_steps && fillOnly(blocks_.empty()); ++step) {
  }
}

/// Puts back data of some kind where it is the only one, and there is one place for it.
bool Relinker::fillOnly(const Links& links) {
  std::map<std::string, std::vector<RawBlock>> roots;
  for (const RawBlock& root : blocks_.rootsWithData()) {
    roots[kindOf(root)].push_back(root);
  }
  std::map<std::string, Links> places;
  for (const BlockLink& link : roots.empty() ? Links() : links) {
    places[kindOf(link)].push_back(link);
  }
  for (const auto& [kind, found] : roots) {
    const auto of_kind = places.find(kind);
    const Links fit = kind.empty() || of_kind == places.end() || found.size() > 1
                          ? Links()
                          : wantingData(linksTo(found.front().letters(), of_kind->second));
    if (fit.size() == 1) {
      putBack(fit.front(), found.front());
      return true;
    }
  }
  return false;
}

/// Of several, those whose groups have records by their counts.
Relinker::Links Relinker::wantingData(Links links) {
  const auto is_without = [&](const BlockLink& link) {
    std::uint64_t records = 1;
    if (link.block.letters() == "DG") {
      records = 0;
      auto group = blocks_.target({link.block, DGBLOCK::dg_cg_first});
      for (std::size_t i = 0; group && i < most_steps && records == 0; ++i) {
        records = BlockFields(file_, *group).number("cg_cycle_count");
        group = blocks_.target({*group, next_link});
      }
    }
    return records == 0;
  };
  if (links.size() > 1 && links.size() < most_steps) {
    links.erase(std::remove_if(links.begin(), links.end(), is_without), links.end());
  }
  return links;
}

std::string shown(const Relinking::Block& block) { return nameAt(block.letters, block.offset); }

}  // namespace

Relinking relinkingOf(InputFile& file) { return Relinker(file).relink(); }

std::string sentenceOf(const Relinking::PutBack& put_back) {
  return "put back " + shown(put_back.block) + " of " + std::to_string(put_back.block.bytes) +
         " bytes: " + put_back.role + " of " + shown(put_back.parent) + " leads to it";
}

std::string sentenceOf(const Relinking::Block& lost) {
  return "expected a link to each block, found none to " + shown(lost) + " of " +
         std::to_string(lost.bytes) + " bytes, whose place is not known";
}

}  // namespace mdf_tools
