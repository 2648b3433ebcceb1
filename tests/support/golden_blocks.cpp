#include "golden_blocks.h"

#include <cstdint>

#include "bytes.h"

namespace mdf_tests {

using namespace mdf_v4_10;

namespace {

/// A header whose reserved bytes are not zero, as a file may have it.
Bytes header(const std::string& letters, std::uint64_t length, std::uint64_t link_count) {
  return Bytes().text("##" + letters).u8s({0xA1, 0xA2, 0xA3, 0xA4}).u64(length).u64(link_count);
}

std::vector<std::string> textBlock(const std::string& letters) {
  return {header(letters, 24 + 41, 0).text("A text of forty letters, not one fewer..").u8(0)};
}

std::vector<std::string> dataBlock(const std::string& letters) {
  return {header(letters, 24 + 21, 0).text("records, 21 bytes in ").str()};
}

/// A block of two elements with this link count.
std::string hierarchy(std::uint64_t link_count) {
  return header("CH", 64 + 24 * 2, link_count)
      .links({0x1301, 0x1302, 0x1303, 0x1304})
      .links({0x1311, 0x1312, 0x1313, 0x1321, 0x1322, 0x1323})
      .u32(2)
      .u8(1)
      .u8s({0xB1, 0xB2, 0xB3});
}

/// A channel with links after its eight fixed ones.
std::string channel(const std::string& more_links, std::uint32_t flags, std::uint16_t attachments) {
  return header("CN", 160 + more_links.size(), 8 + more_links.size() / 8)
      .links({0x2401, 0x2402, 0x2403, 0x2404, 0x2405, 0x2406, 0x2407, 0x2408})
      .text(more_links)
      .u8(1)
      .u8(4)
      .u8(10)
      .u8(7)
      .u32(0x11121314)
      .u32(0x21222324)
      .u32(flags)
      .u32(0x31323334)
      .u8(8)
      .u8(0xB1)
      .u16(attachments)
      .f64(-1.5)
      .f64(2.5)
      .f64(-3.5)
      .f64(4.5)
      .f64(-5.5)
      .f64(6.5);
}

std::string headerList(std::uint64_t link_count) {
  return header("HL", 40, link_count)
      .links({0x3201})
      .u16(0x0103)
      .u8(1)
      .u8s({0xB1, 0xB2, 0xB3, 0xB4, 0xB5});
}

/// Enough values that the block's body needs memory from the heap.
std::string largeConversion() {
  Bytes bytes = header("CC", 80 + 8 * 1 + 8 * 70, 5)
                    .links({0x2501, 0x2502, 0x2503, 0x2504, 0x2505})
                    .u8(1)
                    .u8(4)
                    .u16(0x0107)
                    .u16(1)
                    .u16(70)
                    .f64(-9.25)
                    .f64(9.5);
  for (int i = 1; i <= 70; ++i) {
    bytes.f64(i / 7.0);
  }
  return bytes;
}

}  // namespace

template <>
std::vector<std::string> goldenBlocks<IDBLOCK>() {
  return {Bytes()
              .text("MDF     ")
              .text("4.10    ")
              .text("TESTPROG")
              .u8s({0xB1, 0xB2, 0xB3, 0xB4})
              .u16(410)
              .text("thirty-four bytes that are not 0!!")};
}

template <>
std::vector<std::string> goldenBlocks<HDBLOCK>() {
  return {header("HD", 104, 6)
              .links({0x1101, 0x1102, 0x1103, 0x1104, 0x1105, 0x1106})
              .u64(0x1718191A1B1C1D1E)
              .i16(-90)
              .i16(60)
              .u8(3)
              .u8(16)
              .u8(2)
              .u8(0xB1)
              .f64(1.25)
              .f64(-1234.5)};
}

template <>
std::vector<std::string> goldenBlocks<TXBLOCK>() {
  return textBlock("TX");
}

template <>
std::vector<std::string> goldenBlocks<MDBLOCK>() {
  return textBlock("MD");
}

template <>
std::vector<std::string> goldenBlocks<FHBLOCK>() {
  return {header("FH", 56, 2)
              .links({0x1201, 0x1202})
              .u64(0x2728292A2B2C2D2E)
              .i16(-120)
              .i16(61)
              .u8(2)
              .u8s({0xB1, 0xB2, 0xB3})};
}

template <>
std::vector<std::string> goldenBlocks<CHBLOCK>() {
  // All links of the elements counted, and one counted for each element.
  return {hierarchy(10), hierarchy(6)};
}

template <>
std::vector<std::string> goldenBlocks<ATBLOCK>() {
  return {header("AT", 96 + 19, 4)
              .links({0x1401, 0x1402, 0x1403, 0x1404})
              .u16(7)
              .u16(0x0302)
              .u8s({0xB1, 0xB2, 0xB3, 0xB4})
              .text("MD5 checksum, 16")
              .u64(0x3738393A3B3C3D3E)
              .u64(19)
              .text("19 bytes of content")};
}

template <>
std::vector<std::string> goldenBlocks<EVBLOCK>() {
  return {header("EV", 96 + 8 * 5, 10)
              .links({0x1501, 0x1502, 0x1503, 0x1504, 0x1505})
              .links({0x1511, 0x1512, 0x1513})
              .links({0x1521, 0x1522})
              .u8(6)
              .u8(4)
              .u8(2)
              .u8(5)
              .u8(1)
              .u8s({0xB1, 0xB2, 0xB3})
              .u32(3)
              .u16(2)
              .u16(0x0908)
              .i64(-0x4748494A4B4C4D4E)
              .f64(0.125)};
}

template <>
std::vector<std::string> goldenBlocks<DGBLOCK>() {
  return {header("DG", 64, 4)
              .links({0x2101, 0x2102, 0x2103, 0x2104})
              .u8(3)
              .u8s({0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7})};
}

template <>
std::vector<std::string> goldenBlocks<CGBLOCK>() {
  return {header("CG", 104, 6)
              .links({0x2201, 0x2202, 0x2203, 0x2204, 0x2205, 0x2206})
              .u64(0x5758595A5B5C5D5E)
              .u64(0x6768696A6B6C6D6E)
              .u16(0x0106)
              .u16(46)
              .u8s({0xB1, 0xB2, 0xB3, 0xB4})
              .u32(0x71727374)
              .u32(0x81828384)};
}

template <>
std::vector<std::string> goldenBlocks<SIBLOCK>() {
  return {header("SI", 56, 3)
              .links({0x2301, 0x2302, 0x2303})
              .u8(4)
              .u8(2)
              .u8(1)
              .u8s({0xB1, 0xB2, 0xB3, 0xB4, 0xB5})};
}

template <>
std::vector<std::string> goldenBlocks<CNBLOCK>() {
  const std::string two_attachments = Bytes().links({0x2411, 0x2412});
  const std::string attachment_and_x_axis = Bytes().links({0x2411, 0x2421, 0x2422, 0x2423});
  return {channel(two_attachments, 0x00010FFF, 2), channel(attachment_and_x_axis, 0x00011FFF, 1)};
}

template <>
std::vector<std::string> goldenBlocks<CCBLOCK>() {
  return {header("CC", 80 + 8 * 3 + 8 * 4, 7)
              .links({0x2501, 0x2502, 0x2503, 0x2504})
              .links({0x2511, 0x2512, 0x2513})
              .u8(7)
              .u8(5)
              .u16(0x0106)
              .u16(3)
              .u16(4)
              .f64(-7.25)
              .f64(8.75)
              .f64(0.1)
              .f64(0.2)
              .f64(0.3)
              .f64(0.4),
          largeConversion()};
}

template <>
std::vector<std::string> goldenBlocks<DTBLOCK>() {
  return dataBlock("DT");
}

template <>
std::vector<std::string> goldenBlocks<RDBLOCK>() {
  return dataBlock("RD");
}

template <>
std::vector<std::string> goldenBlocks<SDBLOCK>() {
  return dataBlock("SD");
}

template <>
std::vector<std::string> goldenBlocks<DLBLOCK>() {
  return {header("DL", 48 + 8 * 3, 4)
              .links({0x3101, 0x3111, 0x3112, 0x3113})
              .u8(1)
              .u8s({0xB1, 0xB2, 0xB3})
              .u32(3)
              .u64(0x010203),
          header("DL", 40 + 16 * 3, 4)
              .links({0x3102, 0x3121, 0x3122, 0x3123})
              .u8(0x10)
              .u8s({0xB1, 0xB2, 0xB3})
              .u32(3)
              .u64(0x010101)
              .u64(0x020202)
              .u64(0x030303)};
}

template <>
std::vector<std::string> goldenBlocks<DZBLOCK>() {
  return {header("DZ", 48 + 14, 0)
              .text("SD")
              .u8(1)
              .u8(0xB1)
              .u32(0x41424344)
              .u64(0x7778797A7B7C7D7E)
              .u64(14)
              .text("14 bytes of it")};
}

template <>
std::vector<std::string> goldenBlocks<HLBLOCK>() {
  // The link counted, and not counted.
  return {headerList(1), headerList(0)};
}

template <>
std::vector<std::string> goldenBlocks<SRBLOCK>() {
  return {header("SR", 64, 2)
              .links({0x3301, 0x3302})
              .u64(0x8788898A8B8C8D8E)
              .f64(0.75)
              .u8(4)
              .u8(3)
              .u8s({0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6})};
}

}  // namespace mdf_tests
