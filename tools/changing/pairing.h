#ifndef MDF_TOOLS_CHANGING_PAIRING_H_
#define MDF_TOOLS_CHANGING_PAIRING_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace mdf_tools {

/// What entries of a list are known by: for each, keys from the most particular one on.
using Keys = std::vector<std::vector<std::string>>;

/// Which entries of two lists belong together.
struct Pairing {
  std::vector<std::optional<std::size_t>> partners;  ///< of the entries of A, in B
  std::vector<std::size_t> only_b;
};

/// Pairs entries with the same first key in their order, then those left over by their second keys,
/// and so on. All entries have as many keys.
Pairing pairUp(const Keys& a, const Keys& b);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_PAIRING_H_
