#ifndef MDF_TOOLS_DRAWING_GRAPHVIZ_H_
#define MDF_TOOLS_DRAWING_GRAPHVIZ_H_

#include <stdexcept>
#include <string>
#include <vector>

namespace mdf_tools {

/// A picture that could not be drawn; what() is one sentence.
class DrawingFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What one of Graphviz's programs makes of a text in the DOT language. What it complains about
/// goes to standard error.
/// @param command the program, looked up like a shell does, and its arguments.
/// @throws DrawingFailed
std::string drawnByGraphviz(const std::string& dot, const std::vector<std::string>& command);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_DRAWING_GRAPHVIZ_H_
