#ifndef MDF_READER_C_API_REFUSED_H_
#define MDF_READER_C_API_REFUSED_H_

#include <stdexcept>
#include <string>

namespace mdf_reader {

/// A call that asks for what cannot be given.
class Refused : public std::runtime_error {
 public:
  /// @param code one that lasts as long as the program.
  Refused(const char* code, const std::string& sentence)
      : std::runtime_error(sentence), code_(code) {}

  const char* code() const { return code_; }

 private:
  const char* code_;
};

/// A query that is wrong, or does not fit the file.
class WrongQuery : public Refused {
 public:
  explicit WrongQuery(const std::string& sentence) : Refused("query-wrong", sentence) {}
};

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_REFUSED_H_
