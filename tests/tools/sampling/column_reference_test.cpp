// Columns against a slow reference, which takes every value by itself and every bit of it by
// itself.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "reader/bytes/input_file.h"
#include "reader/columns/column.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_reader;
using mdf_tests::FileBuilder;
using mdf_tests::TempFile;

namespace {

constexpr std::size_t rows = 9;
constexpr std::size_t before = 3;  // bytes of the record in front of the value
constexpr std::uint32_t data_bytes = 16;

/// The bits of a number, of which the first is the least significant one.
std::uint64_t bitsOf(std::string_view bytes, const Channel& channel) {
  const bool is_big = RawType{channel.data_type, 0, 0}.isBigEndian();
  std::uint64_t bits = 0;
  for (unsigned bit = 0; bit < channel.bit_count; ++bit) {
    const unsigned at = channel.bit_offset + bit;
    const auto byte =
        static_cast<unsigned char>(bytes[is_big ? bytes.size() - 1 - at / 8 : at / 8]);
    bits |= std::uint64_t{(byte >> (at % 8)) & 1U} << bit;
  }
  return bits;
}

/// A number as its column prints it, and as a double.
struct Number {
  std::string text;
  double real = 0;
};

Number integerIn(std::string_view bytes, const Channel& channel) {
  std::uint64_t bits = bitsOf(bytes, channel);
  if (channel.data_type < Channel::signed_le) {
    return {std::to_string(bits), static_cast<double>(bits)};
  }
  const bool is_negative = ((bits >> (channel.bit_count - 1)) & 1U) != 0;
  for (unsigned bit = channel.bit_count; is_negative && bit < 64; ++bit) {
    bits |= std::uint64_t{1} << bit;
  }
  std::int64_t number = 0;
  std::memcpy(&number, &bits, sizeof number);
  return {std::to_string(number), static_cast<double>(number)};
}

Number realIn(std::string_view bytes, const Channel& channel) {
  const std::uint64_t bits = bitsOf(bytes, channel);
  Number number;
  if (channel.bit_count == 32) {
    const auto half = static_cast<std::uint32_t>(bits);
    float real = 0;
    std::memcpy(&real, &half, sizeof real);
    number.real = static_cast<double>(real);
  } else {
    std::memcpy(&number.real, &bits, sizeof number.real);
  }
  printNumber(number.real, number.text);
  return number;
}

Number numberIn(std::string_view record, const Channel& channel) {
  const std::size_t count = (channel.bit_offset + channel.bit_count + 7) / 8;
  const std::string_view bytes = record.substr(before, count);
  return channel.data_type < Channel::real_le ? integerIn(bytes, channel) : realIn(bytes, channel);
}

/// Records of any bytes, with the value of a channel whose invalidation bit is the last one.
class Records {
 public:
  Records(unsigned data_type, unsigned bit_offset, unsigned bit_count) {
    channel_.data_type = data_type;
    channel_.byte_offset = before;
    channel_.bit_offset = bit_offset;
    channel_.bit_count = bit_count;
    channel_.flags = Channel::has_invalidation_bit;
    channel_.invalidation_bit = 7;
    group_.data_bytes = data_bytes;
    group_.invalidation_bytes = 1;
    static std::minstd_rand random(1);
    for (std::size_t i = 0; i < rows * (data_bytes + 1); ++i) {
      bytes_ += static_cast<char>(random() >> 8U);
    }
  }

  const Channel& channel() const { return channel_; }
  std::string_view record(std::size_t row) const {
    return std::string_view(bytes_).substr(row * (data_bytes + 1), data_bytes + 1);
  }
  bool isValid(std::size_t row) const {
    return (static_cast<unsigned char>(record(row)[data_bytes]) & 0x80U) == 0;
  }

  /// Its column, taken in two pieces.
  ColumnData column(Conversion* conversion) const {
    ColumnSource source;
    source.group = &group_;
    source.channel = &channel_;
    source.conversion = conversion;
    const FindingSink report = [](const Finding& finding) { ADD_FAILURE() << finding.sentence; };
    Column column("", std::move(source), report);
    ColumnData data(column.head().type);
    const RecordSpan all{bytes_.data(), data_bytes + 1, data_bytes + 1, rows, 0};
    column.append(all.part(0, 5), data);
    column.append(all.part(5, rows - 5), data);
    return data;
  }

 private:
  Channel channel_;
  ChannelGroup group_;
  std::string bytes_;
};

std::string shown(const ColumnData& column, std::size_t row) {
  std::string text;
  column.print(row, text);
  return text;
}

void expectRawValues(const Records& records) {
  const ColumnData column = records.column(nullptr);
  ASSERT_EQ(column.rows(), rows);
  for (std::size_t row = 0; row < rows; ++row) {
    const std::string expected =
        records.isValid(row) ? numberIn(records.record(row), records.channel()).text : "";
    EXPECT_EQ(shown(column, row), expected);
    EXPECT_EQ(column.isValid(row), records.isValid(row));
  }
}

std::string physical(Conversion& conversion, const Number& raw, bool is_integer) {
  const Conversion::Result result = conversion.of(raw.real, is_integer);
  if (result.kind == Conversion::Result::text) {
    return *result.characters;
  }
  std::string text;
  if (result.kind == Conversion::Result::number ||
      conversion.ofNumbers() != Conversion::Effect::texts) {
    printNumber(result.kind == Conversion::Result::number ? result.real : raw.real, text);
    return text;
  }
  return raw.text;
}

void expectPhysicalValues(const Records& records, Conversion& conversion) {
  const ColumnData column = records.column(&conversion);
  ASSERT_EQ(column.rows(), rows);
  const bool is_integer = records.channel().data_type < Channel::real_le;
  for (std::size_t row = 0; row < rows; ++row) {
    const Number raw = numberIn(records.record(row), records.channel());
    EXPECT_EQ(shown(column, row),
              records.isValid(row) ? physical(conversion, raw, is_integer) : "");
  }
}

/// A conversion of each type that takes numbers.
class AllConversions {
 public:
  AllConversions() {
    FileBuilder file;
    const auto text = [&](const char* words) { return file.text(words); };
    const std::uint64_t linear = file.addConversion({1, {}, {-40, 0.25}});
    offsets_ = {linear,
                file.addConversion({2, {}, {1, 2, 3, 0, 1, 2}}),
                file.addConversion({3, {text("2*X+1")}, {}}),
                file.addConversion({4, {}, {0, 0, 100, 50, 1000, 60}}),
                file.addConversion({5, {}, {0, 0, 100, 50, 1000, 60}}),
                file.addConversion({6, {}, {0, 9, 1, 10, 99, 2, -1}}),
                file.addConversion({6, {}, {0, 9, 1, 10, 99, 2}}),
                file.addConversion({7, {text("none"), text("one"), linear}, {0, 1}}),
                file.addConversion({8, {text("few"), linear, 0}, {0, 9, 10, 99}})};
    path_ = std::make_unique<TempFile>(file.bytes());
    input_ = std::make_unique<InputFile>(path_->path());
    conversions_ = std::make_unique<Conversions>(*input_, report_);
  }

  template <class Visit>
  void forEach(const Visit& visit) {
    for (const std::uint64_t offset : offsets_) {
      Conversion* const conversion = conversions_->at(offset);
      ASSERT_NE(conversion, nullptr);
      visit(*conversion);
    }
  }

 private:
  FindingSink report_ = [](const Finding& finding) { ADD_FAILURE() << finding.sentence; };
  std::vector<std::uint64_t> offsets_;
  std::unique_ptr<TempFile> path_;
  std::unique_ptr<InputFile> input_;
  std::unique_ptr<Conversions> conversions_;
};

template <class Visit>
void forEachKindOfNumber(const Visit& visit) {
  for (unsigned bit_offset = 0; bit_offset < 8; ++bit_offset) {
    for (unsigned bit_count = 1; bit_count <= 64; ++bit_count) {
      for (const unsigned data_type : {0U, 1U, 2U, 3U}) {
        visit(Records(data_type, bit_offset, bit_count));
      }
    }
    for (const unsigned bit_count : {32U, 64U}) {
      visit(Records(4, bit_offset, bit_count));
      visit(Records(5, bit_offset, bit_count));
    }
  }
}

TEST(ColumnReference, RawNumbers) { forEachKindOfNumber(expectRawValues); }

TEST(ColumnReference, PhysicalValues) {
  AllConversions conversions;
  forEachKindOfNumber([&](const Records& records) {
    conversions.forEach([&](Conversion& conversion) { expectPhysicalValues(records, conversion); });
  });
}

}  // namespace
