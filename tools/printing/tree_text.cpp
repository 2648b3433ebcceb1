#include "tree_text.h"

#include <algorithm>
#include <string>

#include "block_summary.h"
#include "json_output.h"
#include "reader/bytes/input_file.h"
#include "style.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string indentation(std::size_t depth) {
  constexpr std::size_t most_levels = 40;
  const std::string blanks(2 * std::min(depth, most_levels), ' ');
  return depth > most_levels ? blanks + "(level " + std::to_string(depth) + ") " : blanks;
}

std::string typeOf(const TreeEntry& entry) { return printable(entry.raw.letters()); }

void writeMark(const TreeEntry& entry, std::ostream& os) {
  if (entry.kind == TreeEntry::shared) {
    os << Style::faint
       << (entry.was_left_out ? " (shared, left out above)" : " (shared, shown above)")
       << Style::plain;
  } else if (entry.kind == TreeEntry::cycle) {
    os << Style::warning << " (cycle, leads back)" << Style::plain;
  }
}

void writeBlock(InputFile& file, const TreeEntry& entry, FileFacts& facts, std::ostream& os) {
  const BlockSummary summary = summarize(file, entry.raw, facts);
  os << Style::strong << typeOf(entry) << Style::plain << ' ' << decimalAndHex(entry.offset);
  if (!summary.name.empty()) {
    os << " \"" << summary.name << '"';
  }
  if (entry.kind == TreeEntry::block && !summary.facts.empty()) {
    os << ' ' << summary.words();
  }
  writeMark(entry, os);
}

void writeEntry(InputFile& file, const TreeEntry& entry, FileFacts& facts, std::ostream& os) {
  if (entry.kind == TreeEntry::left_out) {
    os << "... " << entry.count << " more " << typeOf(entry);
    return;
  }
  if (!entry.role.empty()) {
    os << Style::faint << entry.role << " -> " << Style::plain;
  }
  if (entry.kind == TreeEntry::nothing) {
    const auto target = static_cast<std::int64_t>(entry.offset);
    os << (target < 0 ? std::to_string(target) : decimalAndHex(entry.offset)) << Style::error
       << " no block there" << Style::plain;
  } else {
    writeBlock(file, entry, facts, os);
  }
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

Json jsonOf(InputFile& file, const TreeEntry& entry, FileFacts& facts) {
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
    line["type"] = typeOf(entry);
    line["length"] = entry.raw.length;
    addSummary(summarize(file, entry.raw, facts), line);
  }
  return line;
}

}  // namespace

void writeTree(InputFile& file, const TreeOptions& options, std::ostream& os,
               const FindingSink& report) {
  FileFacts facts(file, report);
  walkTree(file, options, report, [&](const TreeEntry& entry) {
    os << indentation(entry.depth);
    writeEntry(file, entry, facts, os);
    os << '\n';
    return os.good();
  });
}

void writeTreeAsJson(InputFile& file, const TreeOptions& options, std::ostream& os,
                     const FindingSink& report) {
  FileFacts facts(file, report);
  walkTree(file, options, report, [&](const TreeEntry& entry) {
    os << jsonLine(jsonOf(file, entry, facts)) << '\n';
    return os.good();
  });
}

}  // namespace mdf_tools
