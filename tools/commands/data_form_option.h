#ifndef MDF_TOOLS_COMMANDS_DATA_FORM_OPTION_H_
#define MDF_TOOLS_COMMANDS_DATA_FORM_OPTION_H_

#include <optional>
#include <string>

#include "changing/data_writer.h"

namespace mdf_tools {

class CommandLine;

/// How data is to be written anew, as far as that was asked for.
struct DataFormChoice {
  std::string zip;  ///< "" where data stays in the blocks that it is in
  DataForm form{};

  std::optional<DataForm> chosen() const;
};

/// Adds --zip, --level and --block-size.
void addDataFormOptions(CommandLine& command, DataFormChoice& choice);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_DATA_FORM_OPTION_H_
