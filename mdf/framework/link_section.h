#ifndef MDF_FRAMEWORK_LINK_SECTION_H_
#define MDF_FRAMEWORK_LINK_SECTION_H_

#include <iosfwd>
#include <utility>
#include <vector>

#include "export.h"
#include "types.h"

namespace mdf_v4_10 {

/// A block's links, in the order of its link index enumeration.
class MDF_EXPORT LinkSection : public std::vector<LINK> {
 public:
  using std::vector<LINK>::vector;
  LinkSection() = default;
  LinkSection(std::vector<LINK> links) : std::vector<LINK>(std::move(links)) {}

  /// Number of links that are not nil, wherever they stand.
  UINT64 getValidLinkLength() const;
};

/// Writes every link, 8 bytes each.
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const LinkSection& links);

}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_LINK_SECTION_H_
