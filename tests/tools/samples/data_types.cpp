// The fifteen types of stored values, of usual and unusual widths.

#include "sample_file.h"

namespace mdf_tests {

namespace {

enum DataType : unsigned {
  uint_le,
  uint_be,
  int_le,
  int_be,
  real_le,
  real_be,
  latin1,
  utf8,
  utf16_le,
  utf16_be,
  byte_array,
  mime_sample,
  mime_stream,
  canopen_date,
  canopen_time,
};

Samples unsignedLittleEndian() {
  return {
      valueSample("data-type-uint-le-8-bits", "unsigned integers of one byte", stored(uint_le, 8),
                  {{"00", "0"}, {"7f", "127"}, {"80", "128"}, {"ff", "255"}}),
      valueSample("data-type-uint-le-16-bits", "the low byte first", stored(uint_le, 16),
                  {{"0102", "513"}, {"ffff", "65535"}}),
      valueSample("data-type-uint-le-24-bits", "integers of three bytes", stored(uint_le, 24),
                  {{"010000", "1"}, {"000001", "65536"}, {"ffffff", "16777215"}}),
      valueSample("data-type-uint-le-32-bits", "integers of four bytes", stored(uint_le, 32),
                  {{"01020304", "67305985"}, {"ffffffff", "4294967295"}}),
      valueSample("data-type-uint-le-48-bits", "integers of six bytes", stored(uint_le, 48),
                  {{"010203040506", "6618611909121"}, {"ffffffffffff", "281474976710655"}}),
      valueSample("data-type-uint-le-64-bits", "integers that no double holds", stored(uint_le, 64),
                  {{"0102030405060708", "578437695752307201"},
                   {"feffffffffffffff", "18446744073709551614"},
                   {"ffffffffffffffff", "18446744073709551615"}}),
      valueSample("data-type-uint-le-1-bit-at-7", "the highest bit of a byte",
                  stored(uint_le, 1, 7), {{"80", "1"}, {"7f", "0"}, {"ff", "1"}}),
      valueSample("data-type-uint-le-12-bits-at-3", "bits of others on both sides",
                  stored(uint_le, 12, 3), {{"e7d5", "2748"}, {"f87f", "4095"}, {"0780", "0"}}),
      valueSample("data-type-uint-le-64-bits-at-1", "64 bits in nine bytes", stored(uint_le, 64, 1),
                  {{"df9b5713cf8a460200", "81985529216486895"},
                   {"2164a8ec3075b9fd01", "18364758544493064720"}}),
  };
}

Samples unsignedBigEndian() {
  return {
      valueSample("data-type-uint-be-16-bits", "the high byte first", stored(uint_be, 16),
                  {{"0102", "258"}, {"ffff", "65535"}}),
      valueSample("data-type-uint-be-32-bits", "four bytes, the high one first",
                  stored(uint_be, 32), {{"01020304", "16909060"}, {"80000000", "2147483648"}}),
      valueSample("data-type-uint-be-48-bits", "six bytes, the high one first", stored(uint_be, 48),
                  {{"010203040506", "1108152157446"}, {"fedcba987654", "280223976814164"}}),
      valueSample("data-type-uint-be-64-bits", "eight bytes, the high one first",
                  stored(uint_be, 64),
                  {{"0102030405060708", "72623859790382856"},
                   {"fffffffffffffffe", "18446744073709551614"}}),
      valueSample("data-type-uint-be-12-bits-at-3", "bits are counted in the whole number",
                  stored(uint_be, 12, 3), {{"d5e7", "2748"}, {"7ff8", "4095"}, {"8007", "0"}}),
      valueSample("data-type-uint-be-64-bits-at-1", "64 bits in nine bytes, the high one first",
                  stored(uint_be, 64, 1), {{"0002468acf13579bdf", "81985529216486895"}}),
  };
}

Samples signedIntegers() {
  return {
      valueSample("data-type-int-le-8-bits", "the highest bit is the sign", stored(int_le, 8),
                  {{"7f", "127"}, {"80", "-128"}, {"ff", "-1"}}),
      valueSample("data-type-int-le-16-bits", "two bytes with a sign", stored(int_le, 16),
                  {{"feff", "-2"}, {"0080", "-32768"}, {"ff7f", "32767"}}),
      valueSample("data-type-int-le-32-bits", "four bytes with a sign", stored(int_le, 32),
                  {{"00000080", "-2147483648"}, {"ffffff7f", "2147483647"}}),
      valueSample("data-type-int-le-48-bits", "six bytes with a sign", stored(int_le, 48),
                  {{"feffffffffff", "-2"}, {"000000000080", "-140737488355328"}}),
      valueSample("data-type-int-le-64-bits", "integers that no double holds, with a sign",
                  stored(int_le, 64),
                  {{"ffffffffffffff7f", "9223372036854775807"},
                   {"0000000000000080", "-9223372036854775808"}}),
      valueSample("data-type-int-le-12-bits-at-3", "a sign within the bytes", stored(int_le, 12, 3),
                  {{"e7d5", "-1348"}, {"f87f", "-1"}, {"f83f", "2047"}}),
      valueSample("data-type-int-be-16-bits", "two bytes, the one with the sign first",
                  stored(int_be, 16), {{"fffe", "-2"}, {"8000", "-32768"}}),
      valueSample("data-type-int-be-32-bits", "four bytes, the one with the sign first",
                  stored(int_be, 32), {{"80000000", "-2147483648"}, {"7fffffff", "2147483647"}}),
      valueSample("data-type-int-be-48-bits", "six bytes, the one with the sign first",
                  stored(int_be, 48), {{"fedcba987654", "-1250999896492"}, {"000000000001", "1"}}),
      valueSample("data-type-int-be-64-bits", "eight bytes, the one with the sign first",
                  stored(int_be, 64),
                  {{"7fffffffffffffff", "9223372036854775807"}, {"fffffffffffffffe", "-2"}}),
      valueSample("data-type-int-be-12-bits-at-3", "a sign within the bytes, the high one first",
                  stored(int_be, 12, 3), {{"d5e7", "-1348"}, {"7ff8", "-1"}, {"3ff8", "2047"}}),
  };
}

Samples reals() {
  return {
      valueSample("data-type-real-le-16-bits", "half precision", stored(real_le, 16),
                  {{"003e", "1.5"},
                   {"00b4", "-0.25"},
                   {"ff7b", "65504"},
                   {"0100", "5.960464477539063e-08"},
                   {"007c", "inf"},
                   {"00fc", "-inf"},
                   {"007e", "nan"}}),
      valueSample("data-type-real-le-32-bits", "single precision", stored(real_le, 32),
                  {{"0000c03f", "1.5"},
                   {"000080be", "-0.25"},
                   {"ffff7f7f", "3.4028234663852886e+38"},
                   {"01000000", "1.401298464324817e-45"},
                   {"0000807f", "inf"}}),
      valueSample("data-type-real-le-64-bits", "double precision", stored(real_le, 64),
                  {{"9a9999999999b93f", "0.1"},
                   {"ffffffffffffefff", "-1.7976931348623157e+308"},
                   {"0100000000000000", "5e-324"},
                   {"92d54d06cff08044", "1e+22"},
                   {"0000000000000080", "-0"},
                   {"000000000000f0ff", "-inf"},
                   {"010000000000f87f", "nan"}}),
      valueSample("data-type-real-be-16-bits", "half precision, the high byte first",
                  stored(real_be, 16),
                  {{"3e00", "1.5"}, {"b400", "-0.25"}, {"0001", "5.960464477539063e-08"}}),
      valueSample("data-type-real-be-32-bits", "single precision, the high byte first",
                  stored(real_be, 32), {{"3fc00000", "1.5"}, {"be800000", "-0.25"}}),
      valueSample("data-type-real-be-64-bits", "double precision, the high byte first",
                  stored(real_be, 64),
                  {{"3fb999999999999a", "0.1"}, {"4480f0cf064dd592", "1e+22"}}),
  };
}

Samples textsAndBytes() {
  return {
      valueSample("data-type-string-latin1", "a byte for each character, zero bytes after them",
                  stored(latin1, 48),
                  {{"4772fcdf6500", "Grüße"}, {"616263646566", "abcdef"}, {"000000000000", ""}}),
      valueSample("data-type-string-utf8", "characters of one, two, three and four bytes",
                  stored(utf8, 80),
                  {{"4772c3bcc39f65000000", "Grüße"}, {"e282ac f09d849e 616263", "€𝄞abc"}}),
      valueSample("data-type-string-utf16-le", "a pair of surrogates, the low byte first",
                  stored(utf16_le, 64), {{"610034d81eddfc00", "a𝄞ü"}, {"6200630000000000", "bc"}}),
      valueSample("data-type-string-utf16-be", "a pair of surrogates, the high byte first",
                  stored(utf16_be, 64), {{"0061d834dd1e00fc", "a𝄞ü"}, {"0062006300000000", "bc"}}),
      valueSample("data-type-byte-array", "bytes, zero ones too", stored(byte_array, 32),
                  {{"00ff0a2c", "00ff0a2c"}, {"00000000", "00000000"}}),
      valueSample("data-type-mime-sample", "each value is a file of its own",
                  stored(mime_sample, 24), {{"474946", "474946"}, {"000102", "000102"}}),
      valueSample("data-type-mime-stream", "the values together are a stream",
                  stored(mime_stream, 16), {{"ffd8", "ffd8"}, {"ffd9", "ffd9"}}),
  };
}

Samples canopen() {
  return {
      // 56.789 s, 34 min, 12 h, the 29th and a Saturday, February, 20; with reserved bits set.
      valueSample("data-type-canopen-date",
                  "date and time in seven bytes, with the day of the week",
                  stored(canopen_date, 56),
                  {{"d5dd 22 0c dd 02 14", "2020-02-29T12:34:56.789"},
                   {"0000 00 00 21 01 54", "1984-01-01T00:00:00.000"},
                   {"5fea fb f7 ff cc e3", "1999-12-31T23:59:59.999"}}),
      valueSample("data-type-canopen-time", "milliseconds of the day, and days since 1984",
                  stored(canopen_time, 48),
                  {{"952cb302 9833", "2020-02-29T12:34:56.789"},
                   {"00000000 0000", "1984-01-01T00:00:00.000"},
                   {"ff5b26f5 ffff", "2163-06-06T23:59:59.999"}}),
  };
}

}  // namespace

Samples dataTypeSamples() {
  return together({unsignedLittleEndian(), unsignedBigEndian(), signedIntegers(), reals(),
                   textsAndBytes(), canopen()});
}

}  // namespace mdf_tests
