#include "sample_options.h"

#include <CLI/CLI.hpp>

#include "file_command.h"
#include "group_option.h"
#include "number_option.h"

namespace mdf_tools {

void addRangeOptions(CLI::App& command, const std::shared_ptr<Query>& query) {
  command.add_option("--from", query->from, "Samples from this time (master value) on")
      ->type_name("T")
      ->check(isNumber());
  command.add_option("--to", query->to, "Samples up to this time (master value)")
      ->type_name("T")
      ->check(isNumber());
  command.parse_complete_callback([query] {
    if (query->from && query->to && *query->from > *query->to) {
      throw CLI::ValidationError("--from is after --to");
    }
  });
}

std::shared_ptr<Query> addSelectionOptions(CLI::App& command, bool takes_several) {
  auto query = std::make_shared<Query>();
  command
      .add_option("-c,--channel", query->channels,
                  "Channels whose name matches a pattern with *, ? and [...]; may be repeated")
      ->type_name("GLOB")
      ->allow_extra_args(takes_several);
  addGroupOption(command, query->group);
  addRangeOptions(command, query);
  CLI::Option* const first =
      command.add_option("--first", query->first, "The first N records of each channel group")
          ->type_name("N")
          ->check(isCount());
  command.add_option("--last", query->last, "The last N records of each channel group")
      ->type_name("N")
      ->check(isCount())
      ->excludes(first);
  command.add_option("--stride", query->stride, "Of those, each N-th record only")
      ->type_name("N")
      ->check(isCount() & CLI::PositiveNumber);
  command.add_flag("--raw", query->raw, "Values as they are stored, without conversions");
  return query;
}

std::string nothingChosen(const Query& query) {
  if (query.channels.empty()) {
    return noGroupChosen(query.group);
  }
  std::string sentence = "no channel matches";
  for (const std::string& pattern : query.channels) {
    sentence += " \"" + pattern + '"';
  }
  return sentence + (query.group.empty() ? "" : " in a channel group \"" + query.group + '"');
}

NoteSink notesOf(const FileContext& context) {
  return [&context](const std::string& sentence) { context.say("note: " + sentence); };
}

}  // namespace mdf_tools
