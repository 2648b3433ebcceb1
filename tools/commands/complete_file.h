#ifndef MDF_TOOLS_COMMANDS_COMPLETE_FILE_H_
#define MDF_TOOLS_COMMANDS_COMPLETE_FILE_H_

#include <mdf_writer/files/file_output.h>

#include <string>

namespace mdf_tools {

/// A file that appears under its name when it is complete, and not before.
class CompleteFile : public mdf_writer::FileOutput {
 public:
  CompleteFile(const std::string& path, bool replaces);

  /// Why it cannot be made: a sentence that names it; "" when it can.
  const std::string& problem() const { return problem_; }

  bool publish() override { return true; }

  /// False when it cannot be written, as problem() says.
  bool appear();

 private:
  std::string path_;
  std::string problem_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_COMPLETE_FILE_H_
