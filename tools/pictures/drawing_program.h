#ifndef MDF_TOOLS_PICTURES_DRAWING_PROGRAM_H_
#define MDF_TOOLS_PICTURES_DRAWING_PROGRAM_H_

#include <stdexcept>
#include <string>
#include <vector>

namespace mdf_tools {

/// A picture that could not be drawn; what() is one sentence.
class DrawingFailed : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A program that makes a picture of a text: it reads one on its standard input and writes the
/// other to its standard output.
struct DrawingProgram {
  std::vector<std::string> command;  ///< the program, looked up like a shell does, and arguments
  std::string remedy;                ///< what to do when it is not installed
};

/// The picture that a program makes of a text. No shell is involved, so nothing in the text or in a
/// file's name becomes a command. The program's complaints go to standard error.
/// @throws DrawingFailed
std::string drawnBy(const DrawingProgram& program, const std::string& text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_DRAWING_PROGRAM_H_
