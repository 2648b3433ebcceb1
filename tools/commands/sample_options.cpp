#include "sample_options.h"

#include <CLI/CLI.hpp>

#include "file_command.h"
#include "group_option.h"
#include "number_option.h"

namespace mdf_tools {

std::shared_ptr<Selection> addSelectionOptions(CLI::App& command, bool takes_several) {
  auto selection = std::make_shared<Selection>();
  command
      .add_option("-c,--channel", selection->channels,
                  "Channels whose name matches a pattern with *, ? and [...]; may be repeated")
      ->type_name("GLOB")
      ->allow_extra_args(takes_several);
  addGroupOption(command, selection->group);
  command.add_option("--from", selection->from, "Samples from this time (master value) on")
      ->type_name("T")
      ->check(isNumber());
  command.add_option("--to", selection->to, "Samples up to this time (master value)")
      ->type_name("T")
      ->check(isNumber());
  command.parse_complete_callback([selection] {
    if (selection->from && selection->to && *selection->from > *selection->to) {
      throw CLI::ValidationError("--from is after --to");
    }
  });
  command.add_flag("--raw", selection->is_raw, "Values as they are stored, without conversions");
  return selection;
}

std::string nothingChosen(const Selection& selection) {
  if (selection.channels.empty()) {
    return noGroupChosen(selection.group);
  }
  std::string sentence = "no channel matches";
  for (const std::string& pattern : selection.channels) {
    sentence += " \"" + pattern + '"';
  }
  return sentence +
         (selection.group.empty() ? "" : " in a channel group \"" + selection.group + '"');
}

NoteSink notesOf(const FileContext& context) {
  return [&context](const std::string& sentence) { context.say("note: " + sentence); };
}

}  // namespace mdf_tools
