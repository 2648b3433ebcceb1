#include "block_summary.h"

#include <algorithm>
#include <array>

#include "json_output.h"
#include "mdf_v4_10.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/later_types.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/number_texts.h"
#include "reader/bytes/printable.h"
#include "reader/model/texts.h"
#include "reader/summary/names.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

using namespace mdf_reader;
using namespace mdf_v4_10;

namespace {

constexpr std::uint64_t most_text_bytes = 4096;
constexpr std::size_t most_name_characters = 60;

/// Reads a block's links, fields and the beginnings of its texts, and collects what they say.
class Summarizer {
 public:
  Summarizer(InputFile& file, const RawBlock& block, FileFacts& facts)
      : file_(file), facts_(facts), block_(file, block) {}

  BlockSummary summary();

 private:
  void time(std::string_view key, const std::string& prefix);
  void headerBlock();
  void fileHistory();
  void hierarchy();
  void attachment();
  void event();
  void dataGroup();
  void channelGroup();
  void records();
  void channel();
  void conversion();
  void array();
  void source();
  void reduction();
  void dataList();
  void valueList();
  void headerList();
  void zippedData();

  std::string text(std::uint64_t offset) const;
  void name(std::size_t link) { summary_.name = text(block_.link(link)); }
  void fact(std::string_view key, const std::string& words) {
    if (!words.empty()) {
      summary_.facts.push_back({key, words, std::nullopt});
    }
  }
  /// A value of an enumeration.
  void fact(std::string_view key, const std::string& words, unsigned enumerator) {
    if (!words.empty()) {
      summary_.facts.push_back({key, words, std::nullopt, enumerator});
    }
  }
  /// The first word of the unit is in the plural.
  void count(std::string_view key, std::uint64_t number, std::string unit) {
    if (number == 1) {
      unit.erase(std::min(unit.find(' '), unit.size()) - 1, 1);
    }
    summary_.facts.push_back({key, std::to_string(number) + ' ' + unit, number});
  }
  unsigned small(std::string_view field) const {
    return static_cast<unsigned>(block_.number(field));
  }

  InputFile& file_;
  FileFacts& facts_;
  BlockFields block_;
  BlockSummary summary_;

  struct Method {
    std::string_view letters;
    void (Summarizer::*add)();
  };
  static const std::array<Method, 16> methods;
};

std::string Summarizer::text(std::uint64_t offset) const {
  const auto stored = readText(file_, offset, most_text_bytes);
  return stored ? printable(plainText(*stored), Harmless::utf8, most_name_characters) : "";
}

void Summarizer::time(std::string_view key, const std::string& prefix) {
  const StoredTime time(block_.number(prefix + (key == "start" ? "_start_time_ns" : "_time_ns")),
                        static_cast<int>(block_.signedNumber(prefix + "_tz_offset_min")),
                        static_cast<int>(block_.signedNumber(prefix + "_dst_offset_min")),
                        small(prefix + "_time_flags"));
  const std::string local = time.local();
  fact(key,
       time.utc().empty() ? local + (local.empty() ? "" : " local time") : time.utc() + " UTC");
}

void Summarizer::headerBlock() { time("start", "hd"); }

void Summarizer::fileHistory() { time("time", "fh"); }

void Summarizer::hierarchy() {
  name(CHBLOCK::ch_tx_name);
  fact("kind", hierarchyTypeName(small("ch_type")), small("ch_type"));
  count("elements", block_.number("ch_element_count"), "elements");
}

void Summarizer::attachment() {
  name(ATBLOCK::at_tx_filename);
  fact("media_type", text(block_.link(ATBLOCK::at_tx_mimetype)));
  if (block_.hasFlag("at_flags", ATBLOCK::embedded_data)) {
    count("embedded_bytes", block_.number("at_embedded_size"), "bytes embedded");
  } else {
    fact("place", "stored elsewhere");
  }
}

void Summarizer::event() {
  name(EVBLOCK::ev_tx_name);
  fact("kind", eventTypeName(small("ev_type")), small("ev_type"));
  fact("range", eventRangeName(small("ev_range_type")), small("ev_range_type"));
}

void Summarizer::dataGroup() {
  const std::uint64_t bytes =
      facts_.records.idBytesOf(block_.offset(), block_.number("dg_rec_id_size"));
  if (bytes != 0) {
    count("record_id_bytes", bytes, "bytes of record id");
  }
}

void Summarizer::channelGroup() {
  name(CGBLOCK::cg_tx_acq_name);
  if (block_.hasFlag("cg_flags", ChannelGroup::is_variable_length)) {
    fact("kind", "values of variable length");
    return;
  }
  records();
  count("record_bytes", block_.number("cg_data_bytes") + block_.number("cg_inval_bytes"),
        "bytes each");
  fact("master",
       block_.hasFlag("cg_flags", ChannelGroup::has_remote_master) ? "remote master" : "");
}

void Summarizer::records() {
  const RecordCount there =
      facts_.records.recordsOf(block_.offset(), block_.number("cg_cycle_count"));
  summary_.are_records_counted = there.is_counted;
  if (!there.records) {
    summary_.facts.push_back({"records", "unknown number of records", std::nullopt});
    return;
  }
  count("records", *there.records, "records");
  summary_.facts.back().words += there.is_counted ? " (counted)" : "";
}

void Summarizer::channel() {
  name(CNBLOCK::cn_tx_name);
  if (block_.link(CNBLOCK::cn_composition) != 0) {
    facts_.members.expectSome();
  }
  const std::string as_member = facts_.members.of(block_.offset());
  if (!as_member.empty()) {
    summary_.name = printable(as_member, Harmless::utf8, most_name_characters);
  }
  std::string unit = text(block_.link(CNBLOCK::cn_md_unit));
  if (unit.empty()) {
    const auto conversion = readFields(file_, block_.link(CNBLOCK::cn_cc_conversion), "CC");
    unit = conversion ? text(conversion->link(CCBLOCK::cc_md_unit)) : "";
  }
  if (!unit.empty()) {
    summary_.facts.push_back({"unit", unit, std::nullopt});
  }
  fact("channel_type", channelTypeName(small("cn_type")), small("cn_type"));
  fact("data_type", dataTypeName(small("cn_data_type")), small("cn_data_type"));
  count("bits", block_.number("cn_bit_count"), "bits");
}

void Summarizer::conversion() {
  name(CCBLOCK::cc_tx_name);
  const std::string unit = text(block_.link(CCBLOCK::cc_md_unit));
  if (!unit.empty()) {
    summary_.facts.push_back({"unit", unit, std::nullopt});
  }
  fact("kind", conversionTypeName(small("cc_type")), small("cc_type"));
}

void Summarizer::array() {
  const std::uint64_t dimensions = std::min<std::uint64_t>(block_.number("ca_ndim"), 8);
  std::string sizes;
  for (std::uint64_t i = 0; i < std::min(dimensions, block_.tailBytes() / 8); ++i) {
    sizes += (i == 0 ? "" : " x ") + std::to_string(numberAt(file_, block_.tailAt() + 8 * i));
  }
  fact("size", sizes + (dimensions < block_.number("ca_ndim") ? " x ..." : ""));
  fact("storage",
       block_.number("ca_storage") == CABLOCK::in_records ? "" : "each with records of its own");
}

void Summarizer::source() {
  name(SIBLOCK::si_tx_name);
  fact("kind", sourceTypeName(small("si_type")), small("si_type"));
  fact("bus",
       small("si_bus_type") == SIBLOCK::SI_BUSTYPE_NONE ? "" : busTypeName(small("si_bus_type")),
       small("si_bus_type"));
}

void Summarizer::reduction() {
  count("records", block_.number("sr_cycle_count"), "records");
  fact("interval", "interval " + shortestReal(block_.real("sr_interval")));
}

void Summarizer::dataList() { count("blocks", block_.number("dl_count"), "blocks"); }

void Summarizer::valueList() {
  count("blocks", block_.number("ld_count"), "blocks");
  fact("invalidation",
       block_.hasFlag("ld_flags", LDBLOCK::has_invalidation_data) ? "invalidation apart" : "");
}

void Summarizer::headerList() {
  fact("compression", block_.number("hl_zip_type") == DZBLOCK::DZ_ZIPTYPE_DEFLATE
                          ? "Deflate"
                          : "transposed, Deflate");
}

void Summarizer::zippedData() {
  count("bytes", block_.number("dz_org_data_length"), "bytes zipped");
  count("zipped_bytes", block_.number("dz_data_length"), "bytes stored");
}

const std::array<Summarizer::Method, 16> Summarizer::methods = {{
    {"HD", &Summarizer::headerBlock},
    {"FH", &Summarizer::fileHistory},
    {"CH", &Summarizer::hierarchy},
    {"AT", &Summarizer::attachment},
    {"EV", &Summarizer::event},
    {"DG", &Summarizer::dataGroup},
    {"CG", &Summarizer::channelGroup},
    {"CN", &Summarizer::channel},
    {"CC", &Summarizer::conversion},
    {"CA", &Summarizer::array},
    {"SI", &Summarizer::source},
    {"SR", &Summarizer::reduction},
    {"DL", &Summarizer::dataList},
    {"LD", &Summarizer::valueList},
    {"HL", &Summarizer::headerList},
    {"DZ", &Summarizer::zippedData},
}};

BlockSummary Summarizer::summary() {
  const std::string_view letters = block_.raw().hasId() ? block_.raw().letters() : "";
  const auto* const method = std::find_if(
      methods.begin(), methods.end(), [&](const Method& each) { return each.letters == letters; });
  if (method != methods.end()) {
    (this->*method->add)();
  } else if (block_.type().contents == Contents::text) {
    summary_.name = text(block_.offset());
  } else {
    const std::uint64_t in_front =
        RawBlock::header_size + linksThere(file_, block_.raw()) * RawBlock::link_size;
    const bool is_open = facts_.records.file().isOpen(block_.raw());
    const std::uint64_t length =
        is_open ? facts_.records.file().endOf(block_.raw()) - block_.offset() : block_.raw().length;
    count("bytes", length > in_front ? length - in_front : 0, "bytes");
    summary_.facts.back().words += is_open ? " (length not stated)" : "";
  }
  return std::move(summary_);
}

}  // namespace

std::string BlockFact::forPeople() const { return key == "unit" ? '[' + words + ']' : words; }

std::string BlockSummary::words() const {
  std::string text;
  for (const BlockFact& fact : facts) {
    text += (text.empty() ? "" : ", ") + fact.forPeople();
  }
  return text;
}

void addSummary(const BlockSummary& summary, Json& object) {
  object["name"] = summary.name;
  for (const BlockFact& fact : summary.facts) {
    const std::string key(fact.key);
    const bool is_unknown = key == "records" && !fact.number;
    object[key] = is_unknown ? Json() : fact.number ? Json(*fact.number) : Json(fact.words);
    if (fact.enumerator) {
      object[key + "_number"] = *fact.enumerator;
    }
  }
  if (summary.are_records_counted) {
    object["records_counted"] = true;
  }
}

BlockSummary summarize(InputFile& file, const RawBlock& block, FileFacts& facts) {
  return Summarizer(file, block, facts).summary();
}

}  // namespace mdf_tools
