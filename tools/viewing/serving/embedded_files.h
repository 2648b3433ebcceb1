#ifndef MDF_TOOLS_VIEWING_SERVING_EMBEDDED_FILES_H_
#define MDF_TOOLS_VIEWING_SERVING_EMBEDDED_FILES_H_

#include <string_view>
#include <vector>

namespace mdf_tools {

/// A file of the page, which is part of the program.
struct EmbeddedFile {
  std::string_view name;  ///< such as "main.js"
  std::string_view contents;
};

/// All of them, in a source that is made when the program is built.
const std::vector<EmbeddedFile>& embeddedFiles();

/// Its type, as HTTP names it.
std::string_view mimeTypeOf(std::string_view name);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERVING_EMBEDDED_FILES_H_
