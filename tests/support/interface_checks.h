#ifndef MDF_TESTS_SUPPORT_INTERFACE_CHECKS_H_
#define MDF_TESTS_SUPPORT_INTERFACE_CHECKS_H_

#include <cstdint>
#include <fstream>
#include <initializer_list>
#include <istream>
#include <ostream>
#include <type_traits>
#include <utility>

#include "mdf_v4_10.h"

/// Checks, made by the compiler, that a class offers a name with exactly the stated type, so that
/// programs written against it keep compiling. Each is meant for a static_assert. A name that is
/// missing or has another type does not compile, and the compiler shows the line that lists it.
namespace mdf_tests {

/// Data members of exactly that type, or operations of exactly that signature:
/// `has<LINK() const>(&DGBLOCK::getComment)`. Picks from overloaded operations.
template <class Type, class... Classes>
constexpr bool has([[maybe_unused]] Type Classes::*... members) {
  return true;
}

/// The same for a static operation.
template <class Signature>
constexpr bool hasStatic(Signature* /*operation*/) {
  return true;
}

/// The getter and the setter of a value.
template <class Value, class Get, class Set>
constexpr bool hasValue(Value (Get::* /*get*/)() const, void (Set::* /*set*/)(Value)) {
  return true;
}

/// A constant of exactly that type and value.
template <class Type, class Actual>
constexpr bool isConstant(const Actual& actual, Type expected) {
  return std::is_same_v<Actual, Type> && actual == expected;
}

template <class Enumeration>
struct Enumerator {
  Enumeration member;
  std::int64_t value;
};

/// An enumeration with these members and values.
template <class Enumeration>
constexpr bool isEnumeration(std::initializer_list<Enumerator<Enumeration>> enumerators) {
  static_assert(std::is_enum_v<Enumeration>);
  for (const Enumerator<Enumeration>& enumerator : enumerators) {
    if (static_cast<std::int64_t>(enumerator.member) != enumerator.value) {
      return false;
    }
  }
  return true;
}

/// Stands for an argument: converts to `Type` and to nothing else.
template <class Type>
struct Exactly {
  template <class Parameter, class = std::enable_if_t<std::is_same_v<Parameter, Type>>>
  operator Parameter() const;
};

/// A constructor that takes exactly these types by value.
template <class Class, class... Parameters>
constexpr bool constructs() {
  return std::is_constructible_v<Class, Exactly<Parameters>...>;
}

/// `os << value` that returns the stream.
template <class Class>
constexpr bool writes() {
  using Result = decltype(std::declval<std::ostream&>() << std::declval<const Class&>());
  return std::is_same_v<Result, std::ostream&>;
}

/// Copied and destroyed member-wise, without virtual operations.
template <class Class>
constexpr bool isPlainValue() {
  static_assert(!std::is_polymorphic_v<Class>);
  static_assert(std::is_copy_constructible_v<Class>);
  static_assert(std::is_copy_assignable_v<Class>);
  return true;
}

/// What every block class offers: it is a plain value derived publicly from GENERALBLOCK, read by a
/// constructor, written with `<<` and dumped with `print`, and knows its size in a file.
template <class Block>
constexpr bool isBlock() {
  static_assert(isPlainValue<Block>());
  static_assert(std::is_convertible_v<Block*, mdf_v4_10::GENERALBLOCK*>);
  static_assert(std::is_constructible_v<Block, std::istream&>);
  static_assert(writes<Block>());
  static_assert(has<void(std::ostream&) const>(&Block::print));
  static_assert(has<std::uint64_t() const>(&Block::getSize));
  return true;
}

/// Whether a use of an object, stated in the return type of a generic lambda, compiles for `Class`.
template <class Class, class Use>
constexpr bool allows(Use /*use*/) {
  return std::is_invocable_v<Use, Class&>;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_INTERFACE_CHECKS_H_
