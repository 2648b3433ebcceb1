#include "tree_text.h"

#include <algorithm>
#include <string>

#include "block_summary.h"
#include "reading/input_file.h"
#include "showing/json_output.h"

namespace mdf_tools {

namespace {

std::string indentation(std::size_t depth) {
  constexpr std::size_t most_levels = 40;
  const std::string blanks(2 * std::min(depth, most_levels), ' ');
  return depth > most_levels ? blanks + "(level " + std::to_string(depth) + ") " : blanks;
}

std::string typeOf(const TreeEntry& entry) { return printable(entry.raw.letters()); }

std::string mark(const TreeEntry& entry) {
  switch (entry.kind) {
    case TreeEntry::shared:
      return entry.was_left_out ? " (shared, left out above)" : " (shared, shown above)";
    case TreeEntry::cycle:
      return " (cycle, leads back)";
    case TreeEntry::block:
    case TreeEntry::nothing:
    case TreeEntry::left_out:
      break;
  }
  return {};
}

std::string described(InputFile& file, const TreeEntry& entry) {
  const BlockSummary summary = summarize(file, entry.raw);
  std::string text = typeOf(entry) + ' ' + decimalAndHex(entry.offset);
  if (!summary.name.empty()) {
    text += " \"" + summary.name + '"';
  }
  if (entry.kind == TreeEntry::block && !summary.facts.empty()) {
    text += ' ' + summary.words();
  }
  return text + mark(entry);
}

std::string lineOf(InputFile& file, const TreeEntry& entry) {
  if (entry.kind == TreeEntry::left_out) {
    return "... " + std::to_string(entry.count) + " more " + typeOf(entry);
  }
  const std::string link = entry.role.empty() ? "" : entry.role + " -> ";
  if (entry.kind == TreeEntry::nothing) {
    const auto target = static_cast<std::int64_t>(entry.offset);
    return link + (target < 0 ? std::to_string(target) : decimalAndHex(entry.offset)) +
           " no block there";
  }
  return link + described(file, entry);
}

std::string kindName(TreeEntry::Kind kind) {
  switch (kind) {
    case TreeEntry::shared:
      return "shared";
    case TreeEntry::cycle:
      return "cycle";
    case TreeEntry::nothing:
      return "nothing";
    case TreeEntry::left_out:
      return "left out";
    case TreeEntry::block:
      break;
  }
  return "block";
}

void addBlock(InputFile& file, const TreeEntry& entry, Json& line) {
  const BlockSummary summary = summarize(file, entry.raw);
  line["type"] = typeOf(entry);
  line["length"] = entry.raw.length;
  line["name"] = summary.name;
  for (const BlockFact& fact : summary.facts) {
    line[std::string(fact.key)] = fact.number ? Json(*fact.number) : Json(fact.words);
  }
}

Json jsonOf(InputFile& file, const TreeEntry& entry) {
  Json line;
  line["schema"] = json_schema;
  line["file"] = file.name();
  line["entry"] = kindName(entry.kind);
  line["depth"] = entry.depth;
  line["from"] = entry.from;
  line["role"] = entry.role;
  line["offset"] = static_cast<std::int64_t>(entry.offset);
  if (entry.kind == TreeEntry::left_out) {
    line["type"] = typeOf(entry);
    line["count"] = entry.count;
  } else if (entry.kind != TreeEntry::nothing) {
    addBlock(file, entry, line);
  }
  return line;
}

}  // namespace

void writeTree(InputFile& file, const TreeOptions& options, std::ostream& os,
               const FindingSink& report) {
  walkTree(file, options, report, [&](const TreeEntry& entry) {
    os << indentation(entry.depth) << lineOf(file, entry) << '\n';
    return os.good();
  });
}

void writeTreeAsJson(InputFile& file, const TreeOptions& options, std::ostream& os,
                     const FindingSink& report) {
  walkTree(file, options, report, [&](const TreeEntry& entry) {
    os << jsonLine(jsonOf(file, entry)) << '\n';
    return os.good();
  });
}

}  // namespace mdf_tools
