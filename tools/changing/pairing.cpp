#include "pairing.h"

#include <deque>
#include <string_view>
#include <unordered_map>

namespace mdf_tools {

namespace {

void pairByKey(const Keys& a, const Keys& b, std::size_t key, Pairing& pairing,
               std::vector<bool>& is_taken) {
  std::unordered_map<std::string_view, std::deque<std::size_t>> left;
  for (std::size_t i = 0; i < b.size(); ++i) {
    if (!is_taken[i]) {
      left[b[i][key]].push_back(i);
    }
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    const auto found = pairing.partners[i] ? left.end() : left.find(a[i][key]);
    if (found != left.end() && !found->second.empty()) {
      pairing.partners[i] = found->second.front();
      is_taken[found->second.front()] = true;
      found->second.pop_front();
    }
  }
}

}  // namespace

Pairing pairUp(const Keys& a, const Keys& b) {
  Pairing pairing{std::vector<std::optional<std::size_t>>(a.size()), {}};
  std::vector<bool> is_taken(b.size());
  const std::size_t keys = a.empty() ? 0 : a.front().size();
  for (std::size_t key = 0; key < keys; ++key) {
    pairByKey(a, b, key, pairing, is_taken);
  }
  for (std::size_t i = 0; i < b.size(); ++i) {
    if (!is_taken[i]) {
      pairing.only_b.push_back(i);
    }
  }
  return pairing;
}

}  // namespace mdf_tools
