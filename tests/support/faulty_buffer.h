#ifndef MDF_TESTS_SUPPORT_FAULTY_BUFFER_H_
#define MDF_TESTS_SUPPORT_FAULTY_BUFFER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

namespace mdf_tests {

/// What goes wrong in a stream buffer: the call that comes to a certain byte, or a certain call.
struct Fault {
  enum class Unit { byte, call };
  enum class Manner { refuses, throws };

  Unit unit = Unit::byte;
  Manner manner = Manner::refuses;
  std::size_t at = SIZE_MAX;
};

/// What a buffer throws.
class BufferFailure : public std::exception {};

/// A stream buffer, for either direction, that meets one fault. The bytes in front of the fault are
/// moved. After it everything is well again, so that a caller who goes on all the same is seen.
/// Nothing is allocated while bytes are moved.
class FaultyBuffer : public std::streambuf {
 public:
  /// A buffer that gives these bytes and has room for others.
  explicit FaultyBuffer(std::string source = "") : source_(std::move(source)) {
    received.reserve(std::size_t{1} << 16U);
    call_starts.reserve(1U << 14U);
  }

  /// Begins anew, with another fault.
  void start(const Fault& fault) {
    fault_ = fault;
    met_ = false;
    moved = 0;
    received.clear();
    call_starts.clear();
  }

  std::string received;
  /// The number of bytes moved so far, and how many those were at the beginning of each call. A
  /// flush is a call as well; moving no bytes, or reading at the end of all bytes, is none.
  std::size_t moved = 0;
  std::vector<std::size_t> call_starts;

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    return transfer(static_cast<std::size_t>(count),
                    [&](std::size_t granted) { received.append(bytes, granted); });
  }

  int_type overflow(int_type character) override {
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
  }

  int sync() override {
    return call(0, [](std::size_t) {}) ? 0 : -1;
  }

  std::streamsize xsgetn(char* to, std::streamsize count) override {
    const std::size_t position = moved;
    return transfer(std::min(static_cast<std::size_t>(count), source_.size() - position),
                    [&](std::size_t granted) { source_.copy(to, granted, position); });
  }

 private:
  template <class Move>
  std::streamsize transfer(std::size_t wanted, Move move) {
    const std::size_t before = moved;
    if (wanted != 0) {
      call(wanted, move);
    }
    return static_cast<std::streamsize>(moved - before);
  }

  /// Moves so many bytes, or those in front of the fault. Whether it went without one.
  template <class Move>
  bool call(std::size_t wanted, Move move) {
    const bool fails = meetsFault(wanted);
    if (fails) {
      wanted = fault_.unit == Fault::Unit::byte ? fault_.at - moved : 0;
    }
    move(wanted);
    moved += wanted;
    if (fails && fault_.manner == Fault::Manner::throws) {
      throw BufferFailure();
    }
    return !fails;
  }

  bool meetsFault(std::size_t wanted) {
    const std::size_t number = call_starts.size();
    call_starts.push_back(moved);
    const bool here =
        fault_.unit == Fault::Unit::call ? number == fault_.at : fault_.at - moved < wanted;
    const bool first = !met_;
    met_ = met_ || here;
    return here && first;
  }

  std::string source_;
  Fault fault_;
  bool met_ = false;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_FAULTY_BUFFER_H_
