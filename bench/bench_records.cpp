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

template <class Write>
void copyAndWrite(std::ostream& os, Write write) {
  os.seekp(0);
  for (std::uint32_t i = 0; i < records; ++i) {
    Record record;
    const std::uint64_t value = i * std::uint64_t{0x9E3779B97F4A7C15};
    record[0] = 7;
    std::memcpy(record.data() + 1, &i, sizeof i);
    std::memcpy(record.data() + 5, &value, sizeof value);
    write(os, record);
  }
}

constexpr auto writeOnce = [](std::ostream& os, const Record& record) {
  os.write(record.data(), record_bytes);
};

constexpr auto writeEach = [](std::ostream& os, const Record& record) {
  os.write(record.data(), 1);
  os.write(record.data() + 1, 4);
  os.write(record.data() + 5, 8);
};

template <class Write>
Sides sides(Write write) {
  const auto streams = std::make_shared<Streams>();
  return {[streams](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              writeElements(streams->subject);
            }
          },
          [streams, write](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              copyAndWrite(streams->baseline, write);
            }
          },
          [streams] {
            return streams->subject.good() && streams->subject.str() == streams->baseline.str();
          },
          records};
}

}  // namespace

void registerCases() {
  const std::string name = "write 10 million records to memory/id, time stamp and value";
  compare({name, "memcpy of the same bytes and one write for each record", 2},
          [] { return sides(writeOnce); });
  compare(
      {name + ", each written", "memcpy of the same bytes and three writes for each record", 1.25},
      [] { return sides(writeEach); });
}

}  // namespace mdf_bench
