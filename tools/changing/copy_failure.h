#ifndef MDF_TOOLS_CHANGING_COPY_FAILURE_H_
#define MDF_TOOLS_CHANGING_COPY_FAILURE_H_

#include <stdexcept>

namespace mdf_tools {

/// Why a file cannot be copied, as a sentence.
class CopyFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_COPY_FAILURE_H_
