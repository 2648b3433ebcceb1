#include "new_blocks.h"

#include "copy_failure.h"

namespace mdf_tools {

void NewBlocks::write(std::uint64_t at, std::string_view bytes) {
  constexpr std::size_t most_waiting = std::size_t{1} << 18U;
  constexpr std::uint64_t most_padding = 7;
  const std::uint64_t end = waiting_at_ + waiting_.size();
  if (at < end || at - end > most_padding || waiting_.size() + bytes.size() > most_waiting) {
    flush();
    waiting_at_ = at;
  }
  if (bytes.size() >= most_waiting / 2) {
    flush();
    put(at, bytes);
    waiting_at_ = at + bytes.size();
    return;
  }
  waiting_.resize(static_cast<std::size_t>(at - waiting_at_), '\0');
  waiting_ += bytes;
}

void NewBlocks::flush() {
  put(waiting_at_, waiting_);
  waiting_at_ += waiting_.size();
  waiting_.clear();
}

void NewBlocks::put(std::uint64_t at, std::string_view bytes) {
  if (!bytes.empty() && storage_.write(at, bytes.data(), bytes.size()) < bytes.size()) {
    throw CopyFailure("cannot write the new file: " + storage_.cause());
  }
}

}  // namespace mdf_tools
