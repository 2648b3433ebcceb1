#ifndef MDF_TOOLS_REPORTING_BASE64_H_
#define MDF_TOOLS_REPORTING_BASE64_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace mdf_tools {

/// Bytes as characters that stand in a text of any kind.
std::string base64Of(std::string_view bytes);

/// How many characters that takes.
constexpr std::size_t base64Size(std::size_t bytes) { return (bytes + 2) / 3 * 4; }

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_BASE64_H_
