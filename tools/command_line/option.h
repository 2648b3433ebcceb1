#ifndef MDF_TOOLS_COMMAND_LINE_OPTION_H_
#define MDF_TOOLS_COMMAND_LINE_OPTION_H_

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace mdf_tools {

/// What is wrong with a value, as a sentence; "" for nothing.
using Check = std::function<std::string(const std::string&)>;

/// An option of a command line, or a word that is known by its place. A copy is the same one.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  /// The word for the value in the help; "" for none.
  Option& typeName(const std::string& word);

  Option& check(const Check& problem);
  /// A check that also puts the value into the form that is taken.
  Option& transform(const std::function<std::string(std::string&)>& problem);
  /// Refuses other values; the help lists these after the type's name.
  Option& oneOf(const std::vector<std::string>& values);
  /// Refuses other values; the help lists these in place of the type's name.
  Option& choice(const std::vector<std::string>& values);
  Option& existingFolder();

  /// Narrow the check that there is; the help says so after the type's name.
  Option& within(int least, int most);
  Option& within(std::size_t least, std::size_t most);
  Option& positive();
  Option& notNegative();
  /// Has the help say nothing of the check.
  Option& silent();

  Option& required(bool is_required = true);
  Option& excludes(const Option& other);
  Option& needs(const Option& other);
  /// A value may be several with this between them.
  Option& delimiter(char between);
  /// An option of several values is repeated for each; without this, all words after it are values.
  Option& oneEachTime();

  /// Has the help show the value that the variable has now, or a text.
  Option& showDefault();
  Option& showDefault(const std::string& text);

  /// Its forms, with their dashes, the long ones first.
  std::vector<std::string> names() const;
  std::string description() const;
  /// The type's name, and what checks add to it.
  std::string type() const;
  bool takesValue() const;
  /// Whether the command line that was read has it.
  bool isGiven() const;

 private:
  CLI::Option* option_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMAND_LINE_OPTION_H_
