#ifndef MDF_TESTS_READING_ORACLE_ATTEMPT_H_
#define MDF_TESTS_READING_ORACLE_ATTEMPT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reading_oracle/expected_reading.h"

/// Reading once more, slowly and step by step, to know what must come of it.
namespace mdf_tests::oracle {

struct Format;

/// A class that reads a stream.
struct Attempt {
  const Format& format;
  const std::string& stream;
  std::size_t data_limit;
  Contents block;
  ExpectedReading reading;
};

struct Start {
  std::uint64_t length;
  std::uint64_t link_count;
  std::size_t nil_links;
};

enum class WrittenLength { stored, computed };

/// One class: how it is read, what it holds before, the size without variable parts, the widths of
/// its fixed fields with reserved ones negative, what becomes of the rest, and what its writer
/// says.
struct Format {
  void (*read)(Attempt&);
  Start start;
  std::size_t size;
  std::vector<int> section;
  WrittenLength written_length;
  std::uint64_t (*written_link_count)(const Contents&);
  void (*takeRest)(Attempt&, const std::string& rest) = nullptr;
  std::size_t precision_at = SIZE_MAX;  ///< of a precision, which starts as 255
  std::size_t unwritten = 0;
};

/// Bytes of the fixed fields.
std::size_t sectionWidth(const Format& format);

/// Bytes of them up to the last one that reading takes.
std::size_t takenWidth(const Format& format);

/// The fixed fields as an object takes them from these bytes.
std::string takenSection(const Format& format, std::string bytes);

/// What an object holds before anything is read.
Contents startOf(const Format& format);

}  // namespace mdf_tests::oracle

#endif  // MDF_TESTS_READING_ORACLE_ATTEMPT_H_
