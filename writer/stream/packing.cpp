#include "packing.h"

#include <utility>

#include "data_stream.h"

namespace mdf_writer {

bool Packing::add(FullBlock block, std::string_view data, std::uint32_t row_bytes,
                  std::vector<char>& empty) {
  waiting_.push_back(std::move(block));
  packer_.give(data, row_bytes);
  ++given_;
  if (!placeUpTo(packer_.ahead())) {
    return false;
  }
  empty = std::move(spare_.back());
  spare_.pop_back();
  return true;
}

bool Packing::placeUpTo(std::size_t left) {
  while (waiting_.size() > left) {
    FullBlock& first = waiting_.front();
    --given_;
    if (!first.stream->place(first, packer_.take())) {
      return false;
    }
    spare_.push_back(std::move(first.buffer));
    waiting_.erase(waiting_.begin());
  }
  return true;
}

void Packing::giveBack() {
  for (; given_ > 0; --given_) {
    packer_.take();
  }
  for (; !waiting_.empty(); waiting_.pop_back()) {
    waiting_.back().stream->takeBack(waiting_.back());
  }
}

}  // namespace mdf_writer
