#ifndef MDF_TOOLS_COMMANDS_DECODING_OPTION_H_
#define MDF_TOOLS_COMMANDS_DECODING_OPTION_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "file_command.h"
#include "reader/decoding/decoding.h"

namespace mdf_tools {

class CommandLine;

/// How frames are to be decoded, if at all.
struct DecodingRequest {
  std::vector<std::string> databases;  ///< files, with the bus after an @ if not for every one
  bool is_j1939 = false;
};

/// Adds --dbc and --j1939.
std::shared_ptr<DecodingRequest> addDecodingOptions(CommandLine& command);

/// A Decoding, and the exit code that its databases ask for.
struct ReadDecoding {
  Decoding decoding;
  int exit_code;
};

/// Reads the databases, and says on standard error what is wrong with them.
ReadDecoding readDatabases(const DecodingRequest& request);

/// Says which frames of CAN no database knows.
void noteUnknown(const Decoded& decoded, const NoteSink& note);

/// Does a command's work on each file, as onEachFile() does it, or on the signals of each one's
/// frames if databases were named.
int onEachFile(const std::vector<std::string>& paths, const DecodingRequest& request,
               const std::function<void(const FileContext&)>& work);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_DECODING_OPTION_H_
