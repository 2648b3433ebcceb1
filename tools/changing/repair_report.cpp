#include "repair_report.h"

#include <cstddef>
#include <initializer_list>

#include "printing/json_output.h"
#include "printing/shown_number.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string counted(std::uint64_t number, const std::string& word) {
  return withCommas(number) + ' ' + word + (number == 1 ? "" : "s");
}

/// "a, b and c" of those that are not empty.
std::string listed(const std::vector<std::string>& things) {
  std::string text;
  for (std::size_t i = 0; i < things.size(); ++i) {
    text += i == 0 ? "" : i + 1 == things.size() ? " and " : ", ";
    text += things[i];
  }
  return text;
}

std::string putBackWords(const Relinking& relinking) {
  const std::size_t count = relinking.put_back.size();
  return count == 0 ? "" : "; put back " + counted(count, "block");
}

std::string keptWords(const Finishing& finishing) {
  std::uint64_t records = 0;
  std::uint64_t groups = 0;
  std::uint64_t unknown = 0;
  for (const Finishing::Count& count : finishing.counts) {
    if (!count.is_reduction && !count.holds_values) {
      records += count.records.value_or(0);
      unknown += count.records ? 0U : 1U;
      ++groups;
    }
  }
  return counted(records, "record") + " in " + counted(groups, "group") +
         (unknown == 0 ? "" : ", unknown in " + withCommas(unknown) + " of them");
}

std::string cutWords(const Finishing& finishing) {
  std::uint64_t bytes = 0;
  for (const Finishing::Cut& cut : finishing.cuts) {
    bytes += cut.bytes;
  }
  const std::string begin = "; cut " + counted(bytes, "byte") + " of ";
  if (finishing.cuts.empty()) {
    return "";
  }
  const Finishing::Cut& first = finishing.cuts.front();
  return finishing.cuts.size() == 1
             ? begin + "a torn " + (first.is_record ? "record" : "value") + " at " +
                   std::to_string(first.offset)
             : begin + std::to_string(finishing.cuts.size()) + " torn records or values";
}

std::string setWords(const Finishing& finishing) {
  std::uint64_t groups = 0;
  std::uint64_t reductions = 0;
  for (const Finishing::Count& count : finishing.counts) {
    if (count.records && *count.records != count.stated) {
      ++(count.is_reduction ? reductions : groups);
    }
  }
  std::vector<std::string> things;
  const auto add = [&](std::uint64_t number, const std::string& word) {
    if (number > 0) {
      things.push_back(counted(number, word));
    }
  };
  add(groups, "group");
  add(reductions, "sample reduction");
  add(finishing.lengths.size(), "data block");
  add(finishing.lists.size(), "data list");
  return things.empty() ? "; no counts to set" : "; counts of " + listed(things) + " set";
}

std::string skippedWords(const std::vector<SkippedRecords::Gap>& gaps) {
  std::uint64_t bytes = 0;
  for (const SkippedRecords::Gap& gap : gaps) {
    bytes += gap.bytes;
  }
  return gaps.empty() ? ""
                      : "; skipped " + counted(bytes, "byte") + " in " +
                            counted(gaps.size(), "place") + " between records";
}

std::string offsetWords(const std::vector<OffsetsSet>& offsets) {
  std::uint64_t records = 0;
  for (const OffsetsSet& each : offsets) {
    records += each.records;
  }
  return records == 0 ? "" : "; " + counted(records, "offset") + " of values set";
}

template <class Things, class ToJson>
Json listJson(const Things& things, const ToJson& json) {
  Json list = Json::array();
  for (const auto& each : things) {
    list.push_back(json(each));
  }
  return list;
}

}  // namespace

std::string repairSentence(const Repaired& repaired) {
  const Finishing& finishing = repaired.rescue.finishing;
  return "repaired " + repaired.output + ": " + keptWords(finishing) +
         putBackWords(repaired.rescue.relinking) + skippedWords(repaired.rescue.skipped) +
         cutWords(finishing) + setWords(finishing) + offsetWords(repaired.rescue.offsets) +
         (repaired.losses.empty() ? "; nothing lost"
                                  : "; see above for what could not be repaired");
}

std::string repairJson(const Repaired& repaired) {
  const Finishing& finishing = repaired.rescue.finishing;
  Json line;
  line["schema"] = json_schema;
  line["file"] = repaired.file;
  line["output"] = repaired.output;
  line["counts"] = listJson(finishing.counts, [](const Finishing::Count& each) {
    return Json{{"offset", each.block},
                {"of", each.is_reduction ? "reduction" : "group"},
                {"group", textOrNull(each.name)},
                {"records", each.records ? Json(*each.records) : Json()},
                {"stated", each.stated}};
  });
  line["data_blocks"] = listJson(finishing.lengths, [](const Finishing::Length& each) {
    return Json{{"offset", each.block}, {"length", each.bytes}, {"stated", each.stated}};
  });
  line["data_lists"] = listJson(finishing.lists, [](const Finishing::List& each) {
    return Json{{"offset", each.block}, {"entries", each.entries}, {"stated", each.stated}};
  });
  line["put_back"] = listJson(repaired.rescue.relinking.put_back, [](const auto& each) {
    return Json{{"offset", each.block.offset},
                {"type", each.block.letters},
                {"bytes", each.block.bytes},
                {"link", each.role},
                {"of", each.parent.offset}};
  });
  line["skipped"] = listJson(repaired.rescue.skipped, [](const auto& each) {
    return Json{{"offset", each.offset}, {"bytes", each.bytes}};
  });
  line["value_offsets"] = listJson(repaired.rescue.offsets, [](const OffsetsSet& each) {
    return Json{{"offset", each.channel}, {"records", each.records}};
  });
  line["cut"] = listJson(finishing.cuts, [](const Finishing::Cut& each) {
    return Json{{"offset", each.offset},
                {"bytes", each.bytes},
                {"of", each.is_record ? "record" : "value"}};
  });
  line["lost"] = listJson(repaired.losses, [](const Finding& each) {
    return Json{{"code", textOf(each.code).word}, {"offset", each.offset}, {"text", each.sentence}};
  });
  line["more_lost"] = repaired.more_losses;
  return jsonLine(line);
}

}  // namespace mdf_tools
