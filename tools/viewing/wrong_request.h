#ifndef MDF_TOOLS_VIEWING_WRONG_REQUEST_H_
#define MDF_TOOLS_VIEWING_WRONG_REQUEST_H_

#include <stdexcept>

namespace mdf_tools {

/// A request that cannot be served, as a sentence.
class WrongRequest : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_WRONG_REQUEST_H_
