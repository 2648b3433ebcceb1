#ifndef MDF_TOOLS_VIEWING_VIEW_REQUEST_H_
#define MDF_TOOLS_VIEWING_VIEW_REQUEST_H_

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "trace.h"

namespace mdf_tools {

/// The parameters of a request: numbers, of which nothing is taken for granted. What is wrong with
/// one is thrown as a WrongRequest that names it.
class ViewRequest {
 public:
  /// @param find the text of a parameter; nothing where it is not given.
  explicit ViewRequest(std::function<std::optional<std::string>(const std::string& name)> find);

  /// A number from 0 to `most`.
  std::size_t count(const std::string& name, std::size_t most) const;
  /// Numbers from 0 on with commas between them, 64 at most.
  std::vector<std::size_t> counts(const std::string& name) const;
  /// A finite number.
  double number(const std::string& name) const;
  std::optional<double> numberIfGiven(const std::string& name) const;
  /// "from", "to", which is greater, and "pixels" up to 20,000.
  Window window() const;

 private:
  std::string text(const std::string& name) const;

  std::function<std::optional<std::string>(const std::string&)> find_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_VIEW_REQUEST_H_
