#include "listing.h"

#include <fnmatch.h>

#include <algorithm>
#include <optional>

#include "json_output.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/digest.h"
#include "reader/bytes/formatted.h"
#include "reader/bytes/input_file.h"
#include "reader/data/record_facts.h"
#include "reader/model/attachments.h"
#include "reader/model/channel_names.h"
#include "reader/model/description.h"
#include "reader/model/events.h"
#include "reader/model/group_choice.h"
#include "reader/summary/channel_json.h"
#include "reader/summary/list_json.h"
#include "reader/summary/names.h"
#include "shown_number.h"
#include "text_table.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

using Align = TextTable::Align;
using Columns = std::vector<TextTable::Column>;

Columns channelTable() {
  return {{"group", Align::right},
          {"name"},
          {"unit"},
          {"kind"},
          {"sync"},
          {"data"},
          {"bits", Align::right},
          {"at", Align::right},
          {"conversion"},
          {"records", Align::right},
          {"source"},
          {"comment"}};
}

Columns blockTable() {
  return {{"offset", Align::right}, {"type"}, {"length", Align::right}, {"links", Align::right}};
}

Columns attachmentTable() {
  return {{"offset", Align::right},
          {"name"},
          {"kind"},
          {"bytes", Align::right},
          {"stored"},
          {"digest"},
          {"comment"}};
}

Columns eventTable() {
  return {{"offset", Align::right},
          {"position", Align::right},
          {"unit"},
          {"kind"},
          {"range"},
          {"cause"},
          {"name"},
          {"comment"}};
}

std::vector<std::string> titlesOf(const Columns& columns) {
  std::vector<std::string> titles;
  for (const TextTable::Column& column : columns) {
    titles.emplace_back(column.title);
  }
  return titles;
}

bool isNamedSo(std::string_view name, const ListOptions& options) {
  return options.name_pattern.empty() ||
         fnmatch(options.name_pattern.c_str(), std::string(name).c_str(), 0) == 0;
}

bool isOfType(std::string_view type, const ListOptions& options) {
  return options.types.empty() ||
         std::find(options.types.begin(), options.types.end(), type) != options.types.end();
}

/// Prints a list's entries in the form and order that the options say. Entries that are to be
/// sorted are kept until finish(); others are printed piece by piece, however many there are.
class EntryList {
 public:
  EntryList(InputFile& file, Columns columns, const ListOptions& options, std::ostream& out)
      : file_(file), table_(tableOf(std::move(columns), options)), options_(options), out_(out) {}

  /// Makes of an entry only what is used.
  /// @param cells returns its texts, and `members` those of its object.
  template <class Cells, class Members>
  void add(const Cells& cells, const Members& members) {
    constexpr std::size_t piece = 10000;
    const bool has_cells = !options_.as_json || !options_.sort_column.empty();
    std::vector<std::string> row = has_cells ? cells() : std::vector<std::string>();
    if (options_.names_file && has_cells) {
      row.insert(row.begin(), file_.name());
    }
    table_.add(std::move(row), options_.as_json ? line(file_, members()) : "");
    if (options_.sort_column.empty() && table_.size() >= piece) {
      print();
    }
  }

  void finish() {
    table_.sortBy(options_.sort_column);
    print();
  }

  /// The object of an entry, with what every object has.
  static std::string line(const InputFile& file, const Json& members) {
    Json object = {{"schema", json_schema}, {"file", file.name()}};
    object.update(members);
    return jsonLine(object);
  }

 private:
  static TextTable tableOf(Columns columns, const ListOptions& options) {
    if (options.names_file) {
      columns.insert(columns.begin(), {"file"});
    }
    return TextTable(std::move(columns));
  }

  void print() {
    if (options_.as_json) {
      table_.printRests(out_);
    } else {
      table_.print(out_);
    }
  }

  InputFile& file_;
  TextTable table_;
  const ListOptions& options_;
  std::ostream& out_;
};

/// Lists a channel group's channels one by one.
class ChannelLister {
 public:
  ChannelLister(InputFile& file, EntryList& entries, const FindingSink& report)
      : file_(file), facts_(file, report), entries_(entries) {}

  /// @param name with those of the structures that it is a member of.
  void add(const ChannelGroup& group, const Channel& channel, const std::string& name) {
    entries_.add([&] { return cellsOf(group, channel, name); },
                 [&] { return membersOf(group, channel, name); });
  }

 private:
  static constexpr std::size_t comment_width = 60;

  std::vector<std::string> cellsOf(const ChannelGroup& group, const Channel& channel,
                                   const std::string& name) {
    const auto conversion = conversionTypeOf(file_, channel);
    return {std::to_string(group.index),
            name,
            std::string(channel.unit),
            channelTypeName(channel.type),
            syncTypeName(channel.sync_type),
            dataName(channel),
            std::to_string(channel.bit_count),
            std::to_string(channel.byte_offset) + '.' + std::to_string(channel.bit_offset),
            conversion ? conversionTypeName(*conversion) : "",
            shownRecords(facts_.recordsOf(group.offset, group.cycles)),
            std::string(readSource(file_, channel.source, texts_).name),
            onOneLine(channel.comment, comment_width)};
  }

  Json membersOf(const ChannelGroup& group, const Channel& channel, const std::string& name) {
    return channelAsJson({group, channel, name, facts_.recordsOf(group.offset, group.cycles),
                          conversionTypeOf(file_, channel),
                          readSource(file_, channel.source, texts_).name});
  }

  static std::string dataName(const Channel& channel) {
    std::string name = channel.is_structure ? "structure" : dataTypeName(channel.data_type);
    for (const std::uint64_t dimension : allDimensions(channel.array)) {
      name += '[' + std::to_string(dimension) + ']';
    }
    return name;
  }

  InputFile& file_;
  RecordFacts facts_;
  EntryList& entries_;
  Texts texts_;  ///< of sources
};

/// What stands in front of a block's line: the file's name, or a title as wide.
std::string fileCell(const InputFile& file, const ListOptions& options, bool is_title) {
  if (!options.names_file) {
    return "";
  }
  const std::string name = onOneLine(file.name());
  const std::string title = "file";
  const std::size_t width = std::max(title.size(), shownWidth(name));
  const std::string& text = is_title ? title : name;
  return text + std::string(width - shownWidth(text) + 2, ' ');
}

/// A block's line for people: columns as wide as any offset of the file.
void printBlock(const RawBlock& block, std::size_t width, std::ostream& out) {
  out << formatted("%*llu  %-4s  %*llu  %llu\n", static_cast<int>(width),
                   static_cast<unsigned long long>(block.offset),
                   printable(block.letters()).c_str(), static_cast<int>(width),
                   static_cast<unsigned long long>(block.length),
                   static_cast<unsigned long long>(block.linkCount()));
}

void printBlockJson(InputFile& file, const RawBlock& block, std::ostream& out) {
  Json links = Json::array();
  forEachLink(file, block, [&](std::uint64_t, std::int64_t link) { links.push_back(link); });
  out << EntryList::line(file, {{"offset", block.offset},
                                {"type", block.letters()},
                                {"length", block.length},
                                {"links", std::move(links)}})
      << '\n';
}

void sortBlocks(InputFile& file, std::vector<std::uint64_t>& offsets, const std::string& column) {
  if (column.empty() || column == "offset") {
    return;
  }
  std::vector<RawBlock> blocks;
  for (const std::uint64_t offset : offsets) {
    if (const auto block = readRawBlock(file, offset)) {
      blocks.push_back(*block);
    }
  }
  std::stable_sort(blocks.begin(), blocks.end(), [&](const RawBlock& left, const RawBlock& right) {
    return column == "type"     ? left.letters() < right.letters()
           : column == "length" ? left.length < right.length
                                : left.linkCount() < right.linkCount();
  });
  offsets.clear();
  for (const RawBlock& block : blocks) {
    offsets.push_back(block.offset);
  }
}

std::string storedAs(const Attachment& attachment) {
  return !attachment.is_embedded ? "elsewhere" : attachment.is_compressed ? "compressed" : "plain";
}

}  // namespace

std::vector<std::string> channelColumns() { return titlesOf(channelTable()); }
std::vector<std::string> blockColumns() { return titlesOf(blockTable()); }
std::vector<std::string> attachmentColumns() { return titlesOf(attachmentTable()); }
std::vector<std::string> eventColumns() { return titlesOf(eventTable()); }

void listChannels(InputFile& file, const ListOptions& options, std::ostream& out,
                  const FindingSink& report) {
  EntryList entries(file, channelTable(), options, out);
  ChannelLister lister(file, entries, report);
  ChannelNames names;
  bool is_chosen = options.group.empty();
  readDescription(file, report, [&](const ChannelGroup& group, const Channel& channel) {
    if (!isChosen(group, options.group)) {
      return;
    }
    is_chosen = true;
    const std::string& name = names.next(channel);
    if ((isNamedSo(channel.name, options) || isNamedSo(name, options)) &&
        isOfType(channelTypeName(channel.type), options)) {
      lister.add(group, channel, name);
    }
  });
  if (!is_chosen) {
    options.no_such_group();
  }
  entries.finish();
}

void listBlocks(InputFile& file, const ListOptions& options, std::ostream& out,
                const FindingSink& report) {
  std::vector<std::uint64_t> offsets = walkBlocks(file, report).offsets();
  sortBlocks(file, offsets, options.sort_column);
  const std::size_t width = std::max<std::size_t>(6, std::to_string(file.size()).size());
  if (!options.as_json) {
    const std::string gap(width - 6, ' ');
    out << fileCell(file, options, true) << gap << "offset  type  " << gap << "length  links\n";
  }
  const std::string name = fileCell(file, options, false);
  for (const std::uint64_t offset : offsets) {
    const auto block = readRawBlock(file, offset);
    if (!block || !isOfType(block->letters(), options)) {
      continue;
    }
    if (options.as_json) {
      printBlockJson(file, *block, out);
    } else {
      out << name;
      printBlock(*block, width, out);
    }
  }
}

void listAttachments(InputFile& file, const ListOptions& options, std::ostream& out,
                     const FindingSink& report) {
  const Description description = readDescription(file, report);
  EntryList entries(file, attachmentTable(), options, out);
  for (const Attachment& each :
       readAttachments(file, description.header.first_attachment, *description.texts, report)) {
    if (!isNamedSo(each.name, options) || !isOfType(each.mime_type, options)) {
      continue;
    }
    entries.add(
        [&]() -> std::vector<std::string> {
          return {std::to_string(each.offset),
                  std::string(each.name),
                  std::string(each.mime_type),
                  each.hasSize() ? std::to_string(each.original_size) : "",
                  storedAs(each),
                  each.has_digest ? hexDigest(each.digest) : "",
                  onOneLine(each.comment, 60)};
        },
        [&] { return attachmentAsJson(each); });
  }
  entries.finish();
}

void listEvents(InputFile& file, const ListOptions& options, std::ostream& out,
                const FindingSink& report) {
  const Description description = readDescription(file, report);
  EntryList entries(file, eventTable(), options, out);
  for (const Event& each :
       readEvents(file, description.header.first_event, *description.texts, report)) {
    if (!isNamedSo(each.name, options) || !isOfType(eventTypeName(each.type), options)) {
      continue;
    }
    entries.add(
        [&]() -> std::vector<std::string> {
          return {std::to_string(each.offset),
                  shownNumber(each.position()),
                  eventSyncTypeName(each.sync_type),
                  eventTypeName(each.type),
                  eventRangeName(each.range_type),
                  eventCauseName(each.cause),
                  std::string(each.name),
                  onOneLine(each.comment, 60)};
        },
        [&] { return eventAsJson(each); });
  }
  entries.finish();
}

}  // namespace mdf_tools
