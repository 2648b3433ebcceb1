#ifndef MDF_FUZZ_EXPECT_H_
#define MDF_FUZZ_EXPECT_H_

#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace mdf_fuzz {

/// An input has shown that something is wrong; what() says what should have happened.
class Violation : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

template <class Text>
void expect(bool holds, const Text& what_should_be) {
  if (!holds) {
    throw Violation(what_should_be);
  }
}

/// Equal bit by bit, so that NaN equals itself.
template <class Value>
bool same(const Value& a, const Value& b) {
  static_assert(std::is_arithmetic_v<Value> || std::is_enum_v<Value>, "padding has no value");
  return std::memcmp(&a, &b, sizeof a) == 0;
}

template <class Value>
bool same(const std::vector<Value>& a, const std::vector<Value>& b) {
  static_assert(std::is_arithmetic_v<Value>, "padding has no value");
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Value)) == 0);
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_EXPECT_H_
