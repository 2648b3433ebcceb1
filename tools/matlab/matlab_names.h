#ifndef MDF_TOOLS_MATLAB_MATLAB_NAMES_H_
#define MDF_TOOLS_MATLAB_MATLAB_NAMES_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

namespace mdf_tools {

/// Names that MATLAB takes, each of which is given once.
class MatlabNames {
 public:
  /// A name as MATLAB wants it: letters of ASCII, digits and underscores, a letter first, at most
  /// 63, and no word of the language. Each run of other characters becomes an underscore, and
  /// disappears at the end; what does not begin with a letter then, or is a word of the language,
  /// gets an x in front. The second one of a name ends in _2.
  std::string add(std::string_view name);

 private:
  std::unordered_set<std::string> given_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MATLAB_MATLAB_NAMES_H_
