#ifndef MDF_TOOLS_CHANGING_NEW_BLOCKS_H_
#define MDF_TOOLS_CHANGING_NEW_BLOCKS_H_

#include <mdf_writer/stream/storage.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mdf_tools {

/// The blocks of a file that is written: gives them places, and brings what follows on other bytes
/// into the file together with them.
class NewBlocks {
 public:
  explicit NewBlocks(mdf_writer::Output& output) : storage_(output) {}

  /// A place for so many bytes, a multiple of 8 after all others.
  std::uint64_t allocate(std::uint64_t bytes) { return storage_.allocate(bytes); }

  /// Where the file ends.
  std::uint64_t end() const { return storage_.place(); }

  /// @throws CopyFailure where they cannot be written.
  void write(std::uint64_t at, std::string_view bytes);

  /// Writes what waits for more to follow on it.
  void flush();

  /// Gives bytes a place and writes them there.
  std::uint64_t add(std::string_view bytes) {
    const std::uint64_t at = allocate(bytes.size());
    write(at, bytes);
    return at;
  }

 private:
  void put(std::uint64_t at, std::string_view bytes);

  mdf_writer::Storage storage_;
  std::string waiting_;
  std::uint64_t waiting_at_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_NEW_BLOCKS_H_
