#include "golden_blocks.h"

#include <cstdint>
#include <map>
#include <stdexcept>

#include "bytes.h"

namespace mdf_tests {

using namespace mdf_v4_10;

namespace {

using Blocks = std::map<std::string, std::vector<std::string>>;

/// A header whose reserved bytes are not zero, as a file may have it.
std::string headerOf(const std::string& letters, std::uint64_t length, std::uint64_t link_count) {
  return header(letters, length, link_count, {0xA1, 0xA2, 0xA3, 0xA4});
}

std::vector<std::string> textBlock(const std::string& letters) {
  return {headerOf(letters, 24 + 41, 0) + "A text of forty letters, not one fewer.." + u8(0)};
}

std::vector<std::string> dataBlock(const std::string& letters) {
  return {headerOf(letters, 24 + 21, 0) + "records, 21 bytes in "};
}

/// A block of two elements with this link count.
std::string hierarchy(std::uint64_t link_count) {
  return headerOf("CH", 64 + 24 * 2, link_count) + links(0x1301, 0x1302, 0x1303, 0x1304) +
         links(0x1311, 0x1312, 0x1313, 0x1321, 0x1322, 0x1323) + u32(2) + u8(1) +
         u8(0xB1, 0xB2, 0xB3);
}

/// A channel with links after its eight fixed ones.
std::string channel(const std::string& more_links, std::uint32_t flags, std::uint16_t attachments) {
  return headerOf("CN", 160 + more_links.size(), 8 + more_links.size() / 8) +
         links(0x2401, 0x2402, 0x2403, 0x2404, 0x2405, 0x2406, 0x2407, 0x2408) + more_links +
         u8(1, 4, 10, 7) + u32(0x11121314, 0x21222324, flags, 0x31323334) + u8(8, 0xB1) +
         u16(attachments) + f64(-1.5, 2.5, -3.5, 4.5, -5.5, 6.5);
}

std::string headerList(std::uint64_t link_count) {
  return headerOf("HL", 40, link_count) + links(0x3201) + u16(0x0103) + u8(1) +
         u8(0xB1, 0xB2, 0xB3, 0xB4, 0xB5);
}

/// Enough values that the block's body needs memory from the heap.
std::string largeConversion() {
  std::string bytes = headerOf("CC", 80 + 8 * 1 + 8 * 70, 5) +
                      links(0x2501, 0x2502, 0x2503, 0x2504, 0x2505) + u8(1, 4) +
                      u16(0x0107, 1, 70) + f64(-9.25, 9.5);
  for (int i = 1; i <= 70; ++i) {
    bytes += f64(i / 7.0);
  }
  return bytes;
}

Blocks fileBlocks() {
  return {
      {"ID",
       {std::string("MDF     ") + "4.10    " + "TESTPROG" + u8(0xB1, 0xB2, 0xB3, 0xB4) + u16(410) +
        "thirty-four bytes that are not 0!!"}},
      {"HD",
       {headerOf("HD", 104, 6) + links(0x1101, 0x1102, 0x1103, 0x1104, 0x1105, 0x1106) +
        u64(0x1718191A1B1C1D1E) + u16(-90, 60) + u8(3, 16, 2, 0xB1) + f64(1.25, -1234.5)}},
      {"TX", textBlock("TX")},
      {"MD", textBlock("MD")},
      {"FH",
       {headerOf("FH", 56, 2) + links(0x1201, 0x1202) + u64(0x2728292A2B2C2D2E) + u16(-120, 61) +
        u8(2) + u8(0xB1, 0xB2, 0xB3)}},
      // All links of the elements counted, and one counted for each element.
      {"CH", {hierarchy(10), hierarchy(6)}},
      {"AT",
       {headerOf("AT", 96 + 19, 4) + links(0x1401, 0x1402, 0x1403, 0x1404) + u16(7, 0x0302) +
        u8(0xB1, 0xB2, 0xB3, 0xB4) + "MD5 checksum, 16" + u64(0x3738393A3B3C3D3E, 19) +
        "19 bytes of content"}},
      {"EV",
       {headerOf("EV", 96 + 8 * 5, 10) + links(0x1501, 0x1502, 0x1503, 0x1504, 0x1505) +
        links(0x1511, 0x1512, 0x1513) + links(0x1521, 0x1522) + u8(6, 4, 2, 5, 1) +
        u8(0xB1, 0xB2, 0xB3) + u32(3) + u16(2, 0x0908) + links(-0x4748494A4B4C4D4E) + f64(0.125)}},
  };
}

Blocks descriptionBlocks() {
  return {
      {"DG",
       {headerOf("DG", 64, 4) + links(0x2101, 0x2102, 0x2103, 0x2104) + u8(3) +
        u8(0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7)}},
      {"CG",
       {headerOf("CG", 104, 6) + links(0x2201, 0x2202, 0x2203, 0x2204, 0x2205, 0x2206) +
        u64(0x5758595A5B5C5D5E, 0x6768696A6B6C6D6E) + u16(0x0106, 46) + u8(0xB1, 0xB2, 0xB3, 0xB4) +
        u32(0x71727374, 0x81828384)}},
      {"SI",
       {headerOf("SI", 56, 3) + links(0x2301, 0x2302, 0x2303) + u8(4, 2, 1) +
        u8(0xB1, 0xB2, 0xB3, 0xB4, 0xB5)}},
      // Two attachments, and one with a default X axis.
      {"CN",
       {channel(links(0x2411, 0x2412), 0x00010FFF, 2),
        channel(links(0x2411, 0x2421, 0x2422, 0x2423), 0x00011FFF, 1)}},
      {"CC",
       {headerOf("CC", 80 + 8 * 3 + 8 * 4, 7) + links(0x2501, 0x2502, 0x2503, 0x2504) +
            links(0x2511, 0x2512, 0x2513) + u8(7, 5) + u16(0x0106, 3, 4) +
            f64(-7.25, 8.75, 0.1, 0.2, 0.3, 0.4),
        largeConversion()}},
  };
}

Blocks blocksOfData() {
  return {
      {"DT", dataBlock("DT")},
      {"RD", dataBlock("RD")},
      {"SD", dataBlock("SD")},
      {"DL",
       {headerOf("DL", 48 + 8 * 3, 4) + links(0x3101, 0x3111, 0x3112, 0x3113) + u8(1) +
            u8(0xB1, 0xB2, 0xB3) + u32(3) + u64(0x010203),
        headerOf("DL", 40 + 16 * 3, 4) + links(0x3102, 0x3121, 0x3122, 0x3123) + u8(0x10) +
            u8(0xB1, 0xB2, 0xB3) + u32(3) + u64(0x010101, 0x020202, 0x030303)}},
      {"DZ",
       {headerOf("DZ", 48 + 14, 0) + "SD" + u8(1, 0xB1) + u32(0x41424344) +
        u64(0x7778797A7B7C7D7E, 14) + "14 bytes of it"}},
      // The link counted, and not counted.
      {"HL", {headerList(1), headerList(0)}},
      {"SR",
       {headerOf("SR", 64, 2) + links(0x3301, 0x3302) + u64(0x8788898A8B8C8D8E) + f64(0.75) +
        u8(4, 3) + u8(0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6)}},
  };
}

}  // namespace

std::vector<std::string> goldenBlocksOf(const std::string& letters) {
  for (const Blocks& blocks : {fileBlocks(), descriptionBlocks(), blocksOfData()}) {
    if (const auto found = blocks.find(letters); found != blocks.end()) {
      return found->second;
    }
  }
  throw std::invalid_argument("no block of type " + letters);
}

}  // namespace mdf_tests
