#ifndef MDF_READER_BYTES_PAGED_FILE_H_
#define MDF_READER_BYTES_PAGED_FILE_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "descriptor.h"

namespace mdf_reader {

/// A file read through a cache of its pages, which takes 4 MiB however large the file is. Going
/// elsewhere costs nothing, and blocks that lie together, in either direction, share a system call.
///
/// The file is not mapped: when another program cuts a mapped file, touching what is gone raises
/// SIGBUS, and no check beforehand can rule that out. A read returns less instead. Nor do large
/// files fit into the address space of a 32-bit machine.
class PagedFile {
 public:
  explicit PagedFile(Descriptor file);

  /// The file's bytes now.
  std::uint64_t size() const;

  /// Bytes from an offset on, as far as the cache has them in one piece: none only where the file
  /// has ended or cannot be read. They last until the next call of bytesAt() or read().
  std::string_view bytesAt(std::uint64_t offset);

  /// Copies up to `count` bytes and returns how many there were. Large pieces pass by the cache.
  std::size_t read(std::uint64_t offset, char* bytes, std::size_t count);

  /// Reads no more than these few bytes ahead of a call that wants them, where the cache has none
  /// near them.
  void expect(std::uint64_t offset, std::size_t count);

  /// Bytes that have been read from the file so far, counted each time. Other threads may call
  /// this.
  std::uint64_t bytesRead() const { return bytes_read_.load(std::memory_order_relaxed); }

 private:
  struct Page {
    std::uint64_t number;  ///< offset in the file / page size
    std::size_t begin;     ///< of the bytes that were read, in the page
    std::size_t end;
    bool is_whole;  ///< all that the file has of it was read
  };

  bool has(std::uint64_t offset) const;
  std::string_view there(std::uint64_t offset) const;
  bool isCached(std::uint64_t number) const;
  std::size_t cachedBefore(std::uint64_t number) const;
  std::size_t cachedAfter(std::uint64_t number) const;
  void load(std::uint64_t offset, std::size_t wanted);
  bool isApart(std::uint64_t number) const;
  void loadSome(std::uint64_t offset, std::size_t wanted);
  void loadPart(std::uint64_t number, std::size_t begin, std::size_t end);
  void loadRun(std::uint64_t first, std::size_t count);
  std::size_t readFile(std::uint64_t offset, char* bytes, std::size_t count);

  Descriptor file_;
  std::vector<Page> pages_;  ///< each page has one place in it where it may be
  std::unique_ptr<char[]> bytes_;
  std::atomic<std::uint64_t> bytes_read_{0};
};

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_PAGED_FILE_H_
