#include "listing.h"

#include <fnmatch.h>

#include <algorithm>

#include "formatted.h"
#include "json_output.h"
#include "names.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/digest.h"
#include "reader/bytes/input_file.h"
#include "reader/data/record_facts.h"
#include "reader/model/attachments.h"
#include "reader/model/description.h"
#include "reader/model/events.h"
#include "reader/model/group_choice.h"
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
  EntryList(Columns columns, const ListOptions& options, std::ostream& out)
      : table_(std::move(columns)), options_(options), out_(out) {}

  void add(std::vector<std::string> cells, const Json& members) {
    constexpr std::size_t piece = 10000;
    table_.add(std::move(cells), options_.as_json ? line(members, options_) : "");
    if (options_.sort_column.empty() && table_.size() >= piece) {
      print();
    }
  }

  void finish() {
    table_.sortBy(options_.sort_column);
    print();
  }

  /// The object of an entry, with what every object has.
  static std::string line(const Json& members, const ListOptions& options) {
    Json object = {{"schema", json_schema}};
    if (!options.file_name.empty()) {
      object["file"] = options.file_name;
    }
    object.update(members);
    return jsonLine(object);
  }

 private:
  void print() {
    if (options_.as_json) {
      table_.printRests(out_);
    } else {
      table_.print(out_);
    }
  }

  TextTable table_;
  const ListOptions& options_;
  std::ostream& out_;
};

/// Lists a channel group's channels one by one.
class ChannelLister {
 public:
  ChannelLister(InputFile& file, EntryList& entries, const FindingSink& report)
      : file_(file), facts_(file, report), entries_(entries) {}

  void add(const ChannelGroup& group, const Channel& channel) {
    const std::string conversion = conversionName(channel);
    const Source source = readSource(file_, channel.source, texts_);
    const RecordCount count = facts_.recordsOf(group.offset, group.cycles);
    entries_.add(
        {std::to_string(group.index),
         std::string(2 * std::min<std::size_t>(channel.depth, 20), ' ') + std::string(channel.name),
         std::string(channel.unit), channelTypeName(channel.type), syncTypeName(channel.sync_type),
         dataName(channel), std::to_string(channel.bit_count),
         std::to_string(channel.byte_offset) + '.' + std::to_string(channel.bit_offset), conversion,
         shownRecords(count), std::string(source.name), onOneLine(channel.comment, comment_width)},
        {{"group", group.index},
         {"name", channel.name},
         {"unit", channel.unit},
         {"type", channel.type},
         {"type_name", channelTypeName(channel.type)},
         {"sync_type", channel.sync_type},
         {"data_type", channel.data_type},
         {"data_type_name", dataTypeName(channel.data_type)},
         {"bit_offset", channel.bit_offset},
         {"byte_offset", channel.byte_offset},
         {"bit_count", channel.bit_count},
         {"flags", channel.flags},
         {"dimensions", allDimensions(channel.array)},
         {"depth", channel.depth},
         {"cycles", group.cycles},
         {"records", count.records ? Json(*count.records) : Json()},
         {"records_counted", count.is_counted},
         {"conversion", conversion},
         {"source", source.name},
         {"comment", channel.comment},
         {"offset", channel.offset}});
  }

 private:
  static constexpr std::size_t comment_width = 60;

  std::string conversionName(const Channel& channel) {
    const auto block = readFields(file_, channel.conversion, "CC");
    return block ? conversionTypeName(static_cast<unsigned>(block->number("cc_type"))) : "";
  }

  /// Those of an array, and of the arrays that its elements are.
  static std::vector<std::uint64_t> allDimensions(const ArrayShape& array) {
    std::vector<std::uint64_t> dimensions = array.dimensions;
    for (const ArrayShape& inner : array.inner) {
      dimensions.insert(dimensions.end(), inner.dimensions.begin(), inner.dimensions.end());
    }
    return dimensions;
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

/// A block's line for people: columns as wide as any offset of the file.
void printBlock(const RawBlock& block, std::size_t width, std::ostream& out) {
  out << formatted("%*llu  %-4s  %*llu  %llu\n", static_cast<int>(width),
                   static_cast<unsigned long long>(block.offset),
                   printable(block.letters()).c_str(), static_cast<int>(width),
                   static_cast<unsigned long long>(block.length),
                   static_cast<unsigned long long>(block.linkCount()));
}

void printBlockJson(InputFile& file, const RawBlock& block, const ListOptions& options,
                    std::ostream& out) {
  Json links = Json::array();
  forEachLink(file, block, [&](std::uint64_t, std::int64_t link) { links.push_back(link); });
  out << EntryList::line({{"offset", block.offset},
                          {"type", block.letters()},
                          {"length", block.length},
                          {"links", std::move(links)}},
                         options)
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
  EntryList entries(channelTable(), options, out);
  ChannelLister lister(file, entries, report);
  bool is_chosen = options.group.empty();
  readDescription(file, report, [&](const ChannelGroup& group, const Channel& channel) {
    if (!isChosen(group, options.group)) {
      return;
    }
    is_chosen = true;
    if (isNamedSo(channel.name, options) && isOfType(channelTypeName(channel.type), options)) {
      lister.add(group, channel);
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
    out << gap << "offset  type  " << gap << "length  links\n";
  }
  for (const std::uint64_t offset : offsets) {
    const auto block = readRawBlock(file, offset);
    if (!block || !isOfType(block->letters(), options)) {
      continue;
    }
    if (options.as_json) {
      printBlockJson(file, *block, options, out);
    } else {
      printBlock(*block, width, out);
    }
  }
}

void listAttachments(InputFile& file, const ListOptions& options, std::ostream& out,
                     const FindingSink& report) {
  const Description description = readDescription(file, report);
  EntryList entries(attachmentTable(), options, out);
  for (const Attachment& each :
       readAttachments(file, description.header.first_attachment, *description.texts, report)) {
    if (!isNamedSo(each.name, options) || !isOfType(each.mime_type, options)) {
      continue;
    }
    const std::string digest = each.has_digest ? hexDigest(each.digest) : "";
    entries.add(
        {std::to_string(each.offset), std::string(each.name), std::string(each.mime_type),
         std::to_string(each.original_size), storedAs(each), digest, onOneLine(each.comment, 60)},
        {{"offset", each.offset},
         {"name", each.name},
         {"mime_type", each.mime_type},
         {"original_size", each.original_size},
         {"embedded_size", each.embedded_size},
         {"embedded", each.is_embedded},
         {"compressed", each.is_compressed},
         {"md5", digest},
         {"comment", each.comment}});
  }
  entries.finish();
}

void listEvents(InputFile& file, const ListOptions& options, std::ostream& out,
                const FindingSink& report) {
  const Description description = readDescription(file, report);
  EntryList entries(eventTable(), options, out);
  for (const Event& each :
       readEvents(file, description.header.first_event, *description.texts, report)) {
    if (!isNamedSo(each.name, options) || !isOfType(eventTypeName(each.type), options)) {
      continue;
    }
    entries.add({std::to_string(each.offset), shownNumber(each.position()),
                 eventSyncTypeName(each.sync_type), eventTypeName(each.type),
                 eventRangeName(each.range_type), eventCauseName(each.cause),
                 std::string(each.name), onOneLine(each.comment, 60)},
                {{"offset", each.offset},
                 {"position", each.position()},
                 {"unit", eventSyncTypeName(each.sync_type)},
                 {"type", each.type},
                 {"type_name", eventTypeName(each.type)},
                 {"range_type", each.range_type},
                 {"cause", each.cause},
                 {"flags", each.flags},
                 {"name", each.name},
                 {"comment", each.comment},
                 {"scopes", each.scope_count},
                 {"attachments", each.attachment_count}});
  }
  entries.finish();
}

}  // namespace mdf_tools
