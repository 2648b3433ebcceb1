#ifndef EXAMPLES_APPEND_H_
#define EXAMPLES_APPEND_H_

#include <ostream>
#include <string>

#include "mdf_v4_10.h"

// Files are easiest to write from the leaves to the root: a block is written after those that it
// links to, and the header block, whose place is fixed, last.

/// Appends a block to the file, on an 8-byte boundary as the format wants it. Returns its offset:
/// the link for other blocks. The stream stands at the file's end.
template <class Block>
mdf_v4_10::LINK append(std::ostream& file, const Block& block) {
  auto at = static_cast<mdf_v4_10::LINK>(file.tellp());
  for (; at % 8 != 0; ++at) {
    file.put('\0');
  }
  file << block;
  return at;
}

inline mdf_v4_10::LINK appendText(std::ostream& file, const std::string& text) {
  return append(file, mdf_v4_10::TXBLOCK(text.data(), text.size()));
}

/// Writes a block once more in its place, with what has become known since.
template <class Block>
void rewrite(std::ostream& file, mdf_v4_10::LINK at, const Block& block) {
  file.seekp(at);
  file << block;
  file.seekp(0, std::ios::end);
}

#endif  // EXAMPLES_APPEND_H_
