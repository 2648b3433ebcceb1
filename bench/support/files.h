#ifndef MDF_BENCH_SUPPORT_FILES_H_
#define MDF_BENCH_SUPPORT_FILES_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace mdf_bench {

/// A file in the folder for temporary files, removed with the object. Timed writes go over existing
/// bytes.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& contents);
  /// So many bytes.
  explicit ScratchFile(std::size_t size) : ScratchFile(std::string(size, '\1')) {}
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string& path() const { return path_; }
  std::string contents() const;

 private:
  std::string path_;
};

/// A file by its system calls; every call must do all that it is asked for.
class Descriptor {
 public:
  explicit Descriptor(const std::string& path);
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  void goTo(std::size_t offset) const;
  void write(const char* bytes, std::size_t count) const;
  void read(char* bytes, std::size_t count) const;
  int number() const { return number_; }

 private:
  int number_;
};

/// Calls of write(2) and its like that this thread has made.
std::uint64_t writeCalls();

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_FILES_H_
