#ifndef MDF_TOOLS_CHECKING_TEXT_CHECK_H_
#define MDF_TOOLS_CHECKING_TEXT_CHECK_H_

#include <cstdint>
#include <string_view>

#include "reader/blocks/raw_block.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Tells whether bytes, given piece by piece, are UTF-8: no surrogates, nothing beyond U+10FFFF, no
/// overlong forms.
class Utf8Check {
 public:
  void take(std::string_view bytes);

  /// Whether everything so far is, and the last character is whole.
  bool isFine() const { return is_fine_ && missing_ == 0; }

 private:
  void takeFirst(unsigned byte);

  bool is_fine_ = true;
  unsigned missing_ = 0;   ///< bytes of the current character that are still to come
  unsigned least_ = 0x80;  ///< bounds of the next one of them
  unsigned most_ = 0xBF;
};

/// Checks the text of a text or metadata block.
void checkText(Subject& subject, const RawBlock& block, std::uint32_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_TEXT_CHECK_H_
