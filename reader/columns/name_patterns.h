#ifndef MDF_READER_COLUMNS_NAME_PATTERNS_H_
#define MDF_READER_COLUMNS_NAME_PATTERNS_H_

#include <fnmatch.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace mdf_reader {

/// The patterns that choose channels, and which of them have matched.
class NamePatterns {
 public:
  /// @param patterns which must outlast it.
  explicit NamePatterns(const std::vector<std::string>& patterns)
      : patterns_(patterns), has_found_(patterns.size()) {}

  /// Whether a channel matches one of them, or there are none.
  /// @param path the name with the structures that the channel is a member of.
  bool fit(const std::string& name, const std::string& path) {
    bool fits = patterns_.empty();
    for (std::size_t i = 0; i < patterns_.size(); ++i) {
      const char* const pattern = patterns_[i].c_str();
      if (fnmatch(pattern, name.c_str(), 0) == 0 || fnmatch(pattern, path.c_str(), 0) == 0) {
        has_found_[i] = true;
        fits = true;
      }
    }
    return fits;
  }

  void noteThoseWithoutAny(const std::function<void(const std::string& sentence)>& note) const {
    for (std::size_t i = 0; i < patterns_.size(); ++i) {
      if (!has_found_[i]) {
        note("no channel matches \"" + patterns_[i] + '"');
      }
    }
  }

 private:
  const std::vector<std::string>& patterns_;
  std::vector<bool> has_found_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_NAME_PATTERNS_H_
