// Composing the bytes of records from their elements.

#include <array>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

#include "support/comparison.h"
#include "support/sample_blocks.h"

namespace mdf_bench {

namespace {

using mdf_v4_10::IDTSDATABLOCK;
using mdf_v4_10::VALUEDATABLOCK;

constexpr std::size_t records = 10000000;
constexpr std::size_t record_bytes = 1 + 4 + 8;
using Record = std::array<char, record_bytes>;

struct Streams {
  std::ostringstream subject{std::string(records * record_bytes, '\0')};
  std::ostringstream baseline{std::string(records * record_bytes, '\1')};
};

void writeElements(std::ostream& os) {
  os.seekp(0);
  for (std::uint32_t i = 0; i < records; ++i) {
    os << IDTSDATABLOCK(7, i) << VALUEDATABLOCK(i * std::uint64_t{0x9E3779B97F4A7C15}, 8);
  }
}

void copyAndWrite(std::ostream& os) {
  os.seekp(0);
  for (std::uint32_t i = 0; i < records; ++i) {
    Record record;
    const std::uint64_t value = i * std::uint64_t{0x9E3779B97F4A7C15};
    record[0] = 7;
    std::memcpy(record.data() + 1, &i, sizeof i);
    std::memcpy(record.data() + 5, &value, sizeof value);
    os.write(record.data(), record.size());
  }
}

Sides sides() {
  const auto streams = std::make_shared<Streams>();
  return {[streams](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              writeElements(streams->subject);
            }
          },
          [streams](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              copyAndWrite(streams->baseline);
            }
          },
          [streams] {
            return streams->subject.good() && streams->subject.str() == streams->baseline.str();
          },
          records};
}

}  // namespace

void registerCases() {
  compare({"write 10 million records to memory/id, time stamp and value",
           "memcpy of the same bytes and one write for each record", 2},
          sides);
}

}  // namespace mdf_bench
