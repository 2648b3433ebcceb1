#include "sample_options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "number_option.h"

namespace mdf_tools {

std::shared_ptr<Selection> addSelectionOptions(CLI::App& command, bool takes_several) {
  auto selection = std::make_shared<Selection>();
  command
      .add_option("-c,--channel", selection->channels,
                  "Channels whose name matches a pattern with *, ? and [...]; may be repeated")
      ->type_name("GLOB")
      ->allow_extra_args(takes_several);
  command.add_option("-g,--group", selection->group, "The channel group with this number alone")
      ->type_name("N")
      ->check(isCount());
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

void complainOfNothing(const std::string& file_name, const Selection& selection) {
  std::cerr << "mdf: " << file_name << ": no ";
  if (!selection.channels.empty()) {
    std::cerr << "channel matches";
    for (const std::string& pattern : selection.channels) {
      std::cerr << " \"" << pattern << '"';
    }
  } else {
    std::cerr << "channel group with channels";
  }
  if (selection.group) {
    std::cerr << (selection.channels.empty() ? " and the number " : " in channel group ")
              << *selection.group;
  }
  std::cerr << '\n';
}

NoteSink notesOf(const std::string& file_name) {
  return [file_name](const std::string& sentence) {
    std::cerr << "mdf: " << file_name << ": note: " << sentence << '\n';
  };
}

}  // namespace mdf_tools
