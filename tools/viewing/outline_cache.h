#ifndef MDF_TOOLS_VIEWING_OUTLINE_CACHE_H_
#define MDF_TOOLS_VIEWING_OUTLINE_CACHE_H_

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "outline.h"

namespace mdf_tools {

/// Outlines in files of a folder, from one run of the program to the next. What cannot be written
/// is not there later, and what is damaged is removed. Any number of threads and programs may use
/// it.
class OutlineCache {
 public:
  static constexpr std::uint64_t usual_limit = std::uint64_t{4} << 30U;

  /// Makes the folder, for its user alone.
  /// @param most bytes of all files; those not used for longest are removed.
  explicit OutlineCache(std::filesystem::path folder, std::uint64_t most = usual_limit);

  /// Why nothing can be kept, as a sentence; "" when it can.
  const std::string& problem() const { return problem_; }

  /// @param place what is looked at, of which there is one outline at most.
  /// @param key what it was made from.
  std::optional<Outline> find(const std::string& place, const std::string& key);
  void add(const std::string& place, const std::string& key, const Outline& outline);

 private:
  std::string makeFolder() const;
  std::filesystem::path fileOf(const std::string& place) const;
  void makeRoom();

  std::filesystem::path folder_;
  std::uint64_t most_;
  std::string problem_;
  std::mutex mutex_;
  std::uint64_t room_ = 0;   ///< bytes that there was room for when the folder was looked through
  std::uint64_t added_ = 0;  ///< since then
};

/// The folder for what programs keep for their user; nothing where the user has none.
std::optional<std::filesystem::path> userCacheFolder();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_OUTLINE_CACHE_H_
