#ifndef MDF_TOOLS_VIEWING_FILE_STAMP_H_
#define MDF_TOOLS_VIEWING_FILE_STAMP_H_

#include <cstdint>
#include <string>
#include <tuple>

namespace mdf_tools {

/// What tells whether a file is as it was.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  std::int64_t time = 0;     ///< nanoseconds since 1970 when it was written to last
  std::int64_t changed = 0;  ///< the same when anything about it was changed; nobody can set it

  /// Of a file as it is now; 0 all over where there is none.
  static FileStamp of(const std::string& path);

  /// Whether the file has been left alone for so long that a change would show in its time.
  bool isAtRest() const;

  /// Whether this can be what a file has become by getting longer.
  bool continues(const FileStamp& earlier) const {
    return device == earlier.device && inode == earlier.inode && size > earlier.size;
  }

  bool operator==(const FileStamp& other) const {
    return std::tie(device, inode, size, time, changed) ==
           std::tie(other.device, other.inode, other.size, other.time, other.changed);
  }
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_FILE_STAMP_H_
