#include "json_difference.h"

#include <algorithm>
#include <cstddef>

#include "printing/json_output.h"

namespace mdf_tools {

namespace {

const Json none;

const Json& memberOf(const Json& object, const std::string& name) {
  const auto member = object.find(name);
  return member == object.end() ? none : *member;
}

void compare(const std::string& path, const Json& a, const Json& b, const MemberSink& report);

template <class Visit>
void forEachMember(const Json& a, const Json& b, const Visit& visit) {
  for (const auto& [name, member] : a.items()) {
    visit(name, member, memberOf(b, name));
  }
  for (const auto& [name, member] : b.items()) {
    if (!a.contains(name)) {
      visit(name, none, member);
    }
  }
}

void compareElements(const std::string& path, const Json& a, const Json& b,
                     const MemberSink& report) {
  const auto [different_a, different_b] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  const auto index = different_a - a.begin();
  compare(path + '[' + std::to_string(index) + ']', different_a == a.end() ? none : *different_a,
          different_b == b.end() ? none : *different_b, report);
}

void compare(const std::string& path, const Json& a, const Json& b, const MemberSink& report) {
  if (a == b) {
    return;
  }
  if (a.is_object() && b.is_object()) {
    forEachMember(a, b, [&](const std::string& name, const Json& of_a, const Json& of_b) {
      compare(path + '.' + name, of_a, of_b, report);
    });
  } else if (a.is_array() && b.is_array()) {
    compareElements(path, a, b, report);
  } else {
    report(path, a, b);
  }
}

}  // namespace

void compareMembers(const Json& a, const Json& b, const std::set<std::string>& ignored,
                    const MemberSink& report) {
  if (a == b) {
    return;
  }
  forEachMember(a, b, [&](const std::string& name, const Json& of_a, const Json& of_b) {
    if (ignored.count(name) == 0) {
      compare(name, of_a, of_b, report);
    }
  });
}

}  // namespace mdf_tools
