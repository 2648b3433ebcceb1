#include "healthy_file.h"

#include "support/bytes.h"

namespace mdf_tests {

namespace {

// After each block, where it stands.
std::string frame() {
  return "MDF     4.10    testprog" + zeros(4) + u16(410) + zeros(34) +  // 0
         header("HD", 104, 6) + links(312, 168, 992, 1080, 1184, 224) + u64(1000000007) +
         u16(60, 0) + u8(2, 10, 3, 0) + f64(0.5, 1500.25) +                               // 64
         header("FH", 56, 2) + links(0, 224) + u64(5) + u16(-120, 60) + u8(2, 0, 0, 0) +  // 168
         header("MD", 40, 0) + "<HDcomment/>" + zeros(4) +                                // 224
         header("XX", 48, 2) + links(64, 1288) + "unknown\n";                             // 264
}

std::string description() {
  return header("DG", 64, 4) + links(0, 376, 744, 0) + zeros(8) +  // 312
         header("CG", 104, 6) + links(0, 480, 640, 776, 832, 0) + u64(9, 2) + u16(2, 46) +
         zeros(4) + u32(2, 1) +  // 376
         header("CN", 160, 8) + links(0, 264, 640, 0, 896, 680, 640, 0) + u8(2, 1, 4, 0) +
         u32(0, 16, 4 + 512, 7) + u8(3, 0) + u16(0) + f64(-1.5, 2.5) + zeros(32);  // 480
}

std::string data() {
  return header("TX", 40, 0) + "vehicle speed" + zeros(3) +            // 640
         header("SD", 32, 0) + u32(4) + "abcd" +                       // 680
         header("RD", 31, 0) + u8(1, 2, 3, 4, 5, 6, 7) + zeros(1) +    // 712
         header("DT", 30, 0) + u8(0, 255, 27, 10, 65, 66) + zeros(2);  // 744
}

std::string details() {
  return header("SI", 56, 3) + links(640, 0, 224) + u8(2, 3, 1) + zeros(5) +               // 776
         header("SR", 64, 2) + links(0, 712) + u64(1) + f64(0.25) + u8(1, 1) + zeros(6) +  // 832
         header("CC", 96, 4) + links(0, 640, 0, 0) + u8(1, 2) + u16(1, 0, 2) +
         f64(-1, 1e9, 0.5, 2) +  // 896
         // One element, counted as one link.
         header("CH", 88, 5) + links(0, 0, 640, 224, 312, 376, 480) + u32(1) + zeros(4) +  // 992
         header("AT", 101, 4) + links(0, 640, 640, 224) + u16(5, 0) + zeros(4) +
         u8(0x26, 0x96, 0x05, 0xD4, 0x5C, 0x10, 0x4F, 0x12) +
         u8(0xCB, 0xCD, 0xC8, 0xFB, 0x71, 0x43, 0x4A, 0xCC) + u64(5, 5) + "embed" +
         zeros(3) +  // 1080
         header("EV", 104, 6) + links(0, 0, 0, 640, 224, 480) + u8(5, 1, 2, 4, 1, 0, 0, 0) +
         u32(1) + u16(0, 7) + u64(-3) + f64(0.5);  // 1184
}

std::string zippedData() {
  // The first link is not counted.
  return header("HL", 40, 0) + links(1328) + u16(1) + zeros(6) +              // 1288
         header("DL", 56, 2) + links(0, 1384) + zeros(4) + u32(1) + u64(7) +  // 1328
         header("DZ", 65, 0) + "DT" + u8(1, 0) + u32(3) + u64(6, 17) +
         u8(0x78, 0x01, 0x01, 6, 0, 249, 255, 1, 2, 3, 4, 5, 6, 0x00, 0x3E, 0x00, 0x16);  // 1384
}

}  // namespace

std::string healthyFile() { return frame() + description() + data() + details() + zippedData(); }

}  // namespace mdf_tests
