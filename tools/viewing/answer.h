#ifndef MDF_TOOLS_VIEWING_ANSWER_H_
#define MDF_TOOLS_VIEWING_ANSWER_H_

#include <string>

namespace mdf_tools {

/// What a request gets.
struct Answer {
  int status = 200;
  std::string type = "text/plain; charset=utf-8";
  std::string body;
};

/// A sentence that says why there is nothing else.
inline Answer sentence(int status, const std::string& text) {
  return {status, "text/plain; charset=utf-8", text + ".\n"};
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_ANSWER_H_
