#include <array>
#include <utility>

#include "embedded_files.h"

namespace mdf_tools {

std::string_view mimeTypeOf(std::string_view name) {
  using Type = std::pair<std::string_view, std::string_view>;
  constexpr std::array<Type, 4> types = {
      Type{".html", "text/html; charset=utf-8"}, Type{".js", "text/javascript; charset=utf-8"},
      Type{".css", "text/css; charset=utf-8"}, Type{".svg", "image/svg+xml"}};
  for (const auto& [ending, type] : types) {
    if (name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending) {
      return type;
    }
  }
  return "application/octet-stream";
}

}  // namespace mdf_tools
