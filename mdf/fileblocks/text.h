#ifndef MDF_FILEBLOCKS_TEXT_H_
#define MDF_FILEBLOCKS_TEXT_H_

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "../framework/dump.h"
#include "../framework/header_section.h"
#include "../framework/types.h"

/// What the two text-carrying blocks, plain text and XML metadata, have in common: everything but
/// their identifier and the end of their dump.
namespace mdf_v4_10::detail {

void setUpText(const char* text, std::size_t count, HeaderSection& header,
               std::vector<UINT8>& data);

void readText(std::istream& is, HeaderSection& header, std::vector<UINT8>& data);

std::ostream& writeText(std::ostream& os, const HeaderSection& header,
                        const std::vector<UINT8>& data);

/// Shows the size and the text; returns the text's last character, or a zero for an empty text.
char printText(Dump& dump, const std::vector<UINT8>& data);

}  // namespace mdf_v4_10::detail

#endif  // MDF_FILEBLOCKS_TEXT_H_
