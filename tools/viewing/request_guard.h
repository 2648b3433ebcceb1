#ifndef MDF_TOOLS_VIEWING_REQUEST_GUARD_H_
#define MDF_TOOLS_VIEWING_REQUEST_GUARD_H_

#include <optional>
#include <string>

namespace mdf_tools {

/// What of a request tells whom it comes from.
struct Caller {
  std::string host;                   ///< the header of this name; "" for none
  std::optional<std::string> origin;  ///< the same, which browsers send from other pages
  std::string path;                   ///< of the address, with the token
};

/// Lets only the page that was opened with the address in. Whatever else runs on the machine does
/// not know the token; pages of other sites, whose scripts may reach 127.0.0.1, have another host
/// or origin.
class RequestGuard {
 public:
  /// @param token from randomToken().
  RequestGuard(std::string token, int port);

  /// Why a request is refused, as a sentence; "" for one that is not.
  std::string refusal(const Caller& caller) const;

  /// What the paths of all requests begin with: "/TOKEN/".
  const std::string& root() const { return root_; }

  /// The address of the page.
  std::string address() const;

 private:
  bool isOurs(const std::string& host) const;

  std::string root_;
  std::string port_;
};

/// 128 random bits as hexadecimal digits.
std::string randomToken();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_REQUEST_GUARD_H_
