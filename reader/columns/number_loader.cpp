#include "number_loader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::reversedBytes;
using mdf_v4_10::detail::UnsignedOfWidth;

namespace {

/// A real number of 16 bits: sign, five bits of exponent, ten of fraction.
float halfOf(std::uint64_t bits) {
  const auto exponent = static_cast<int>((bits >> 10U) & 0x1FU);
  const auto fraction = static_cast<float>(bits & 0x3FFU);
  float number = 0;
  if (exponent == 0) {
    number = std::ldexp(fraction, -24);
  } else if (exponent < 31) {
    number = std::ldexp(1024 + fraction, exponent - 25);
  } else {
    number = fraction == 0 ? std::numeric_limits<float>::infinity()
                           : std::numeric_limits<float>::quiet_NaN();
  }
  return (bits & 0x8000U) != 0 ? -number : number;
}

template <class Real>
Real realOf(std::uint64_t bits) {
  const auto stored = static_cast<UnsignedOfWidth<sizeof(Real)>>(bits);
  Real number;
  std::memcpy(&number, &stored, sizeof number);
  return number;
}

template <class Number, bool is_big>
Number loadOne(const char* at) {
  if constexpr (is_big) {
    return realOf<Number>(reversedBytes(loadLe<UnsignedOfWidth<sizeof(Number)>>(at)));
  } else {
    return loadLe<Number>(at);
  }
}

/// A number of up to 8 bytes, taken one by one.
std::uint64_t loadBytes(const char* at, std::size_t bytes, bool is_big) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    number = (number << 8U) | static_cast<unsigned char>(at[is_big ? i : bytes - 1 - i]);
  }
  return number;
}

/// How many of the first records have so many bytes after a place, in the next records if need be.
std::size_t countWithBytes(const RecordSpan& records, std::size_t begin, std::size_t bytes) {
  const std::size_t all = records.step * (records.count - 1) + records.size;
  return all < begin + bytes ? 0
                             : std::min(records.count, (all - begin - bytes) / records.step + 1);
}

constexpr std::size_t chunk = 512;  // of numbers on their way, which stay in the cache

}  // namespace

/// What a NumberLoader may do.
struct Loading {
  using Load = NumberLoader::Load;
  using Gather = NumberLoader::Gather;

  static void zeros(const NumberLoader& /*loader*/, const RecordSpan& records,
                    std::size_t /*begin*/, std::uint64_t* bits) {
    std::fill_n(bits, records.count, 0);
  }

  /// The bits of numbers that lie in up to 8 bytes. Eight are loaded wherever there are as many.
  template <bool is_big>
  static void gather(const NumberLoader& loader, const RecordSpan& records, std::size_t begin,
                     std::uint64_t* bits) {
    const std::uint64_t mask = std::numeric_limits<std::uint64_t>::max() >> loader.unused_;
    const std::size_t bytes = loader.bytes_;
    const auto below = static_cast<unsigned>(is_big ? 8 * (sizeof(std::uint64_t) - bytes) : 0);
    const unsigned shift = loader.shift_ + below;
    const std::size_t eights = countWithBytes(records, begin, sizeof(std::uint64_t));
    const std::size_t step = records.step;
    const char* at = records.bytes + begin;
    std::size_t i = 0;
    for (; i < eights; ++i, at += step) {
      bits[i] = (loadOne<std::uint64_t, is_big>(at) >> shift) & mask;
    }
    for (; i < records.count; ++i, at += step) {
      bits[i] = (loadBytes(at, bytes, is_big) >> loader.shift_) & mask;
    }
  }

  /// The same of those that lie in nine bytes, which are shifted by 1 bit at least.
  template <bool is_big>
  static void gatherNine(const NumberLoader& loader, const RecordSpan& records, std::size_t begin,
                         std::uint64_t* bits) {
    const std::uint64_t mask = std::numeric_limits<std::uint64_t>::max() >> loader.unused_;
    const char* at = records.bytes + begin;
    for (std::size_t i = 0; i < records.count; ++i, at += records.step) {
      const auto low = loadOne<std::uint64_t, is_big>(at + (is_big ? 1 : 0));
      const std::uint64_t high = static_cast<unsigned char>(at[is_big ? 0 : 8]);
      bits[i] = ((low >> loader.shift_) | (high << (64 - loader.shift_))) & mask;
    }
  }

  static Gather gatherFor(std::size_t bytes, bool is_big) {
    if (bytes > sizeof(std::uint64_t)) {
      return is_big ? gatherNine<true> : gatherNine<false>;
    }
    return is_big ? gather<true> : gather<false>;
  }

  enum class Meaning { unsigned_integer, signed_integer, half, single_real, double_real };

  template <Meaning meaning>
  static auto meant(const NumberLoader& loader, std::uint64_t bits) {
    if constexpr (meaning == Meaning::unsigned_integer) {
      return bits;
    } else if constexpr (meaning == Meaning::signed_integer) {
      return static_cast<std::int64_t>(bits << loader.unused_) >> loader.unused_;
    } else if constexpr (meaning == Meaning::half) {
      return halfOf(bits);
    } else if constexpr (meaning == Meaning::single_real) {
      return realOf<float>(bits);
    } else {
      return realOf<double>(bits);
    }
  }

  template <Meaning meaning, class Number>
  static void anywhere(const NumberLoader& loader, const RecordSpan& records, std::size_t begin,
                       void* to) {
    std::array<std::uint64_t, chunk> bits;
    auto* numbers = static_cast<Number*>(to);
    for (std::size_t done = 0; done < records.count; done += chunk) {
      const std::size_t count = std::min(chunk, records.count - done);
      loader.gather_(loader, records.part(done, count), begin, bits.data());
      for (std::size_t i = 0; i < count; ++i) {
        numbers[done + i] = static_cast<Number>(meant<meaning>(loader, bits[i]));
      }
    }
  }

  /// The same of numbers that a processor has as they stand.
  template <class Stored, bool is_big, class Number>
  static void aligned(const NumberLoader& /*loader*/, const RecordSpan& records, std::size_t begin,
                      void* to) {
    auto* numbers = static_cast<Number*>(to);
    const char* at = records.bytes + begin;
    for (std::size_t i = 0; i < records.count; ++i, at += records.step) {
      numbers[i] = static_cast<Number>(loadOne<Stored, is_big>(at));
    }
  }

  static Meaning meaningOf(const RawType& type) {
    if (!type.isReal() || type.bit_count == 0) {
      return type.isSigned() ? Meaning::signed_integer : Meaning::unsigned_integer;
    }
    return type.bit_count == 16   ? Meaning::half
           : type.bit_count == 32 ? Meaning::single_real
                                  : Meaning::double_real;
  }

  template <class Number>
  static Load anywhereFor(Meaning meaning) {
    switch (meaning) {
      case Meaning::unsigned_integer:
        return anywhere<Meaning::unsigned_integer, Number>;
      case Meaning::signed_integer:
        return anywhere<Meaning::signed_integer, Number>;
      case Meaning::half:
        return anywhere<Meaning::half, Number>;
      case Meaning::single_real:
        return anywhere<Meaning::single_real, Number>;
      default:
        return anywhere<Meaning::double_real, Number>;
    }
  }

  template <class Stored>
  static Load alignedFor(bool is_big, ColumnType wanted) {
    if (wanted == ColumnType::float64) {
      return is_big ? aligned<Stored, true, double> : aligned<Stored, false, double>;
    }
    return is_big ? aligned<Stored, true, Stored> : aligned<Stored, false, Stored>;
  }

  static Load loadFor(const RawType& type, ColumnType wanted) {
    const ColumnType own = columnTypeOf(type);
    const bool is_aligned = type.bit_offset == 0 && type.bit_count == 8 * widthOf(own) &&
                            (wanted == own || wanted == ColumnType::float64);
    if (is_aligned) {
      return withNumberType(
          own, [&](auto zero) { return alignedFor<decltype(zero)>(type.isBigEndian(), wanted); });
    }
    return withNumberType(wanted,
                          [&](auto zero) { return anywhereFor<decltype(zero)>(meaningOf(type)); });
  }
};

ColumnType columnTypeOf(const RawType& type) {
  if (type.isText() || type.isDate()) {
    return ColumnType::text;
  }
  if (type.isComplex()) {
    const std::uint64_t half = type.bit_count / 2;
    const bool is_usual = half == 16 || half == 32 || half == 64;
    return is_usual && type.bit_offset == 0 && type.bit_count % 16 == 0 ? ColumnType::text
                                                                        : ColumnType::bytes;
  }
  if (!type.isNumber() || (type.bit_count > 0 && (type.bit_count > 64 || type.bit_offset > 7))) {
    return ColumnType::bytes;
  }
  if (type.isReal() && type.bit_count > 0) {
    const bool is_single = type.bit_count == 16 || type.bit_count == 32;
    return is_single              ? ColumnType::float32
           : type.bit_count == 64 ? ColumnType::float64
                                  : ColumnType::bytes;
  }
  const int power = type.bit_count <= 8    ? 0
                    : type.bit_count <= 16 ? 1
                    : type.bit_count <= 32 ? 2
                                           : 3;
  return static_cast<ColumnType>(power + (type.isSigned() ? 4 : 0));
}

NumberLoader::NumberLoader(const RawType& type, ColumnType wanted)
    : load_(Loading::loadFor(type, wanted)), gather_(Loading::zeros) {
  if (type.bit_count > 0) {
    bytes_ = static_cast<std::size_t>(type.bytes());
    gather_ = Loading::gatherFor(bytes_, type.isBigEndian());
    shift_ = type.bit_offset;
    unused_ = static_cast<unsigned>(64 - type.bit_count);
  }
}

}  // namespace mdf_reader
