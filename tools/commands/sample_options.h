#ifndef MDF_TOOLS_COMMANDS_SAMPLE_OPTIONS_H_
#define MDF_TOOLS_COMMANDS_SAMPLE_OPTIONS_H_

#include <memory>
#include <string>

#include "reader/columns/tables.h"

namespace mdf_tools {

class CommandLine;

struct FileContext;

using namespace mdf_reader;

/// Adds the options that choose samples: --channel, --group, --from, --to, --raw.
/// @param takes_several whether one --channel may be followed by several patterns.
std::shared_ptr<Query> addSelectionOptions(CommandLine& command, bool takes_several);

/// Adds --from and --to.
/// @param what is chosen by time.
void addRangeOptions(CommandLine& command, const std::shared_ptr<Query>& query,
                     const std::string& what = "Samples");

/// Adds --first and --last.
void addEndOptions(CommandLine& command, Query& query);

/// "no channel matches ...", for a file that has none of the samples that are wanted.
std::string nothingChosen(const Query& query);

/// Says notes about a file on standard error.
NoteSink notesOf(const FileContext& context);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_SAMPLE_OPTIONS_H_
