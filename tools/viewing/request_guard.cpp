#include "request_guard.h"

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>

namespace mdf_tools {

namespace {

/// Whether a text begins with another one, in a time that does not tell how far it does.
bool beginsWith(const std::string& text, const std::string& beginning) {
  if (text.size() < beginning.size()) {
    return false;
  }
  unsigned difference = 0;
  for (std::size_t i = 0; i < beginning.size(); ++i) {
    difference |= static_cast<unsigned char>(text[i]) ^
                  static_cast<unsigned>(static_cast<unsigned char>(beginning[i]));
  }
  return difference == 0;
}

}  // namespace

RequestGuard::RequestGuard(std::string token, int port)
    : root_('/' + std::move(token) + '/'), port_(std::to_string(port)) {}

bool RequestGuard::isOurs(const std::string& host) const {
  return host == "127.0.0.1:" + port_ || host == "localhost:" + port_;
}

std::string RequestGuard::refusal(const Caller& caller) const {
  if (!isOurs(caller.host)) {
    return "the host of this request is not the one that mdf view listens on";
  }
  constexpr std::size_t scheme = 7;  // "http://"
  if (caller.origin && (caller.origin->compare(0, scheme, "http://") != 0 ||
                        !isOurs(caller.origin->substr(scheme)))) {
    return "this request comes from another page";
  }
  if (!beginsWith(caller.path, root_)) {
    return "the address lacks its token; use the one that mdf view printed";
  }
  return "";
}

std::string RequestGuard::address() const { return "http://127.0.0.1:" + port_ + root_; }

std::string randomToken() {
  std::random_device random;  // of the operating system
  std::string token;
  for (int word = 0; word < 4; ++word) {
    std::uint32_t bits = random();
    for (int digit = 0; digit < 8; ++digit, bits >>= 4U) {
      token += "0123456789abcdef"[bits & 15U];
    }
  }
  return token;
}

}  // namespace mdf_tools
