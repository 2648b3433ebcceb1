#include "sample_options.h"

#include "command_line/command_line.h"
#include "file_command.h"
#include "group_option.h"
#include "number_option.h"

namespace mdf_tools {

void addRangeOptions(CommandLine& command, const std::shared_ptr<Query>& query,
                     const std::string& what) {
  command.addOption("--from", query->from, what + " from this time (master value) on")
      .typeName("T")
      .check(expectNumber);
  command.addOption("--to", query->to, what + " up to this time (master value)")
      .typeName("T")
      .check(expectNumber);
  command.check([query] {
    const bool is_reversed = query->from && query->to && *query->from > *query->to;
    return is_reversed ? "--from is after --to" : "";
  });
}

void addEndOptions(CommandLine& command, Query& query) {
  const Option first =
      command.addOption("--first", query.first, "The first N records of each channel group")
          .typeName("N")
          .check(expectCount);
  command.addOption("--last", query.last, "The last N records of each channel group")
      .typeName("N")
      .check(expectCount)
      .excludes(first);
}

std::shared_ptr<Query> addSelectionOptions(CommandLine& command, bool takes_several) {
  auto query = std::make_shared<Query>();
  Option channel =
      command
          .addOption("-c,--channel", query->channels,
                     "Channels whose name matches a pattern with *, ? and [...]; may be repeated")
          .typeName("GLOB");
  if (!takes_several) {
    channel.oneEachTime();
  }
  addGroupOption(command, query->group);
  addRangeOptions(command, query);
  addEndOptions(command, *query);
  command.addOption("--skip", query->skip, "Leave out the first N records before those")
      .typeName("N")
      .check(expectCount);
  command.addOption("--stride", query->stride, "Of those, each N-th record only")
      .typeName("N")
      .check(expectCount)
      .positive();
  command.addFlag("--raw", query->raw, "Values as they are stored, without conversions");
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
