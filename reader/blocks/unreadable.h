#ifndef MDF_READER_BLOCKS_UNREADABLE_H_
#define MDF_READER_BLOCKS_UNREADABLE_H_

#include <stdexcept>
#include <string>
#include <utility>

#include "finding.h"

namespace mdf_reader {

/// A file that cannot be read at all. Apart from std::bad_alloc nothing else is thrown here.
class Unreadable : public std::runtime_error {
 public:
  /// @param sentence names the file and says why, as what() does.
  /// @param finding the same as a finding.
  Unreadable(const std::string& sentence, Finding finding)
      : std::runtime_error(sentence), finding_(std::move(finding)) {}

  const Finding& finding() const { return finding_; }

 private:
  Finding finding_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_UNREADABLE_H_
