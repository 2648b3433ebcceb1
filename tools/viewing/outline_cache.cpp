#include "outline_cache.h"

#include <mdf_writer/files/file_output.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <system_error>
#include <utility>
#include <vector>

#include "outline_file.h"
#include "reader/bytes/digest.h"

namespace mdf_tools {

namespace fs = std::filesystem;

namespace {

constexpr const char* extension = ".view";
constexpr const char* extension_while_written = ".part";

/// One file is no larger than what fits into memory twice.
constexpr std::uint64_t most_of_one = std::uint64_t{1} << 29U;

struct CachedFile {
  fs::path path;
  std::uint64_t size = 0;
  fs::file_time_type used;
};

std::vector<CachedFile> filesIn(const fs::path& folder) {
  std::vector<CachedFile> files;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& path = entry->path();
    const bool is_ours =
        path.extension() == extension || path.extension() == extension_while_written;
    std::error_code gone;
    if (is_ours && fs::is_regular_file(entry->symlink_status(gone))) {
      const std::uint64_t size = entry->file_size(gone);
      const auto used = entry->last_write_time(gone);
      if (!gone) {
        files.push_back({path, size, used});
      }
    }
  }
  return files;
}

std::optional<std::string> contentsOf(const fs::path& path) {
  std::error_code error;
  const std::uint64_t size = fs::file_size(path, error);
  if (error || size > most_of_one) {
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

OutlineCache::OutlineCache(fs::path folder, std::uint64_t most)
    : folder_(std::move(folder)), most_(most), problem_(makeFolder()) {}

std::string OutlineCache::makeFolder() const {
  std::error_code error;
  fs::create_directories(folder_.parent_path(), error);
  struct stat status {};
  const bool is_there = (mkdir(folder_.c_str(), S_IRWXU) == 0 || errno == EEXIST) &&
                        lstat(folder_.c_str(), &status) == 0;
  if (!is_there) {
    return "cannot make the folder " + folder_.string() + ": " +
           std::generic_category().message(errno);
  }
  if (!S_ISDIR(status.st_mode) || status.st_uid != geteuid() ||
      chmod(folder_.c_str(), S_IRWXU) != 0) {
    return "cannot use " + folder_.string() + ": it is no folder of this user's own";
  }
  return {};
}

fs::path OutlineCache::fileOf(const std::string& place) const {
  Md5 digest;
  digest.add(place);
  return folder_ / (hexDigest(digest.digest()) + extension);
}

std::optional<Outline> OutlineCache::find(const std::string& place, const std::string& key) {
  const fs::path path = fileOf(place);
  std::error_code error;
  if (!problem_.empty() || !fs::is_regular_file(fs::symlink_status(path, error))) {
    return std::nullopt;
  }
  const std::optional<std::string> bytes = contentsOf(path);
  std::optional<Outline> outline = bytes ? OutlineFile::unpack(*bytes, key) : std::nullopt;
  if (outline) {
    fs::last_write_time(path, fs::file_time_type::clock::now(), error);
  } else {
    fs::remove(path, error);
  }
  return outline;
}

void OutlineCache::add(const std::string& place, const std::string& key, const Outline& outline) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!problem_.empty() || outline.size() > most_of_one) {
    return;
  }
  const std::string bytes = OutlineFile::pack(key, outline);
  const fs::path path = fileOf(place);
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(path, error))) {
    fs::remove(path, error);  // a link or a pipe leads elsewhere
  }
  mdf_writer::FileOutput file(path.string(), mdf_writer::Existing::replace);
  if (bytes.size() > most_of_one || !file.isOpen() ||
      file.write(0, bytes.data(), bytes.size()) != bytes.size() || !file.publish()) {
    return;
  }
  added_ += bytes.size();
  makeRoom();
}

/// The folder is looked through when as much was added as there was room for.
void OutlineCache::makeRoom() {
  if (added_ <= room_) {
    return;
  }
  std::vector<CachedFile> files = filesIn(folder_);
  std::sort(files.begin(), files.end(),
            [](const CachedFile& a, const CachedFile& b) { return a.used < b.used; });
  std::uint64_t all =
      std::accumulate(files.begin(), files.end(), std::uint64_t{0},
                      [](std::uint64_t sum, const CachedFile& file) { return sum + file.size; });
  for (const CachedFile& file : files) {
    std::error_code error;
    if (all > most_ && fs::remove(file.path, error)) {
      all -= file.size;
    }
  }
  room_ = all > most_ ? 0 : most_ - all;
  added_ = 0;
}

std::optional<fs::path> userCacheFolder() {
  const auto absolute = [](const char* name) -> std::optional<fs::path> {
    const char* const value = std::getenv(name);
    const fs::path path = value == nullptr ? "" : value;
    return path.is_absolute() ? std::optional(path) : std::nullopt;
  };
  if (const auto folder = absolute("XDG_CACHE_HOME")) {
    return *folder / "mdf";
  }
  const auto home = absolute("HOME");
  return home ? std::optional(*home / ".cache" / "mdf") : std::nullopt;
}

}  // namespace mdf_tools
