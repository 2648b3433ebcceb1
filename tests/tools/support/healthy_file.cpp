#include "healthy_file.h"

#include "support/bytes.h"

namespace mdf_tests {

namespace {

std::string frame() {
  return Bytes()
      .text("MDF     4.10    testprog")  // 0
      .zeros(4)
      .u16(410)
      .zeros(34)
      .header("HD", 104, 6)  // 64
      .links({312, 168, 992, 1080, 1184, 224})
      .u64(1000000007)
      .i16(60)
      .i16(0)
      .u8s({2, 10, 3, 0})
      .f64(0.5)
      .f64(1500.25)
      .header("FH", 56, 2)  // 168
      .links({0, 224})
      .u64(5)
      .i16(-120)
      .i16(60)
      .u8s({2, 0, 0, 0})
      .header("MD", 40, 0)  // 224
      .text("<HDcomment/>")
      .zeros(4)
      .header("XX", 48, 2)  // 264
      .links({64, 1288})
      .text("unknown\n");
}

std::string description() {
  return Bytes()
      .header("DG", 64, 4)  // 312
      .links({0, 376, 744, 0})
      .zeros(8)
      .header("CG", 104, 6)  // 376
      .links({0, 480, 640, 776, 832, 0})
      .u64(9)
      .u64(2)
      .u16(2)
      .u16(46)
      .zeros(4)
      .u32(2)
      .u32(1)
      .header("CN", 160, 8)  // 480
      .links({0, 264, 640, 0, 896, 680, 640, 0})
      .u8s({2, 1, 4, 0})
      .u32(0)
      .u32(16)
      .u32(4 + 512)
      .u32(7)
      .u8s({3, 0})
      .u16(0)
      .f64(-1.5)
      .f64(2.5)
      .zeros(32);
}

std::string data() {
  return Bytes()
      .header("TX", 40, 0)  // 640
      .text("vehicle speed")
      .zeros(3)
      .header("SD", 32, 0)  // 680
      .u32(4)
      .text("abcd")
      .header("RD", 31, 0)  // 712
      .u8s({1, 2, 3, 4, 5, 6, 7})
      .zeros(1)
      .header("DT", 30, 0)  // 744
      .u8s({0, 255, 27, 10, 65, 66})
      .zeros(2);
}

std::string details() {
  return Bytes()
      .header("SI", 56, 3)  // 776
      .links({640, 0, 224})
      .u8s({2, 3, 1, 0, 0, 0, 0, 0})
      .header("SR", 64, 2)  // 832
      .links({0, 712})
      .u64(1)
      .f64(0.25)
      .u8s({1, 1, 0, 0, 0, 0, 0, 0})
      .header("CC", 96, 4)  // 896
      .links({0, 640, 0, 0})
      .u8s({1, 2})
      .u16(1)
      .u16(0)
      .u16(2)
      .f64(-1)
      .f64(1e9)
      .f64(0.5)
      .f64(2)
      .header("CH", 88, 5)  // 992, one element, counted as one link
      .links({0, 0, 640, 224, 312, 376, 480})
      .u32(1)
      .u8s({0, 0, 0, 0})
      .header("AT", 101, 4)  // 1080
      .links({0, 640, 640, 224})
      .u16(5)
      .u16(0)
      .zeros(4)
      .u8s({0x26, 0x96, 0x05, 0xD4, 0x5C, 0x10, 0x4F, 0x12})
      .u8s({0xCB, 0xCD, 0xC8, 0xFB, 0x71, 0x43, 0x4A, 0xCC})
      .u64(5)
      .u64(5)
      .text("embed")
      .zeros(3)
      .header("EV", 104, 6)  // 1184
      .links({0, 0, 0, 640, 224, 480})
      .u8s({5, 1, 2, 4, 1, 0, 0, 0})
      .u32(1)
      .u16(0)
      .u16(7)
      .i64(-3)
      .f64(0.5);
}

std::string zippedData() {
  return Bytes()
      .header("HL", 40, 0)  // 1288, its link not counted
      .i64(1328)
      .u16(1)
      .u8s({0, 0, 0, 0, 0, 0})
      .header("DL", 56, 2)  // 1328
      .links({0, 1384})
      .u8s({0, 0, 0, 0})
      .u32(1)
      .u64(7)
      .header("DZ", 65, 0)  // 1384
      .text("DT")
      .u8s({1, 0})
      .u32(3)
      .u64(6)
      .u64(17)
      .u8s({0x78, 0x01, 0x01, 6, 0, 249, 255})
      .u8s({1, 2, 3, 4, 5, 6})
      .u8s({0x00, 0x3E, 0x00, 0x16});
}

}  // namespace

std::string healthyFile() { return frame() + description() + data() + details() + zippedData(); }

}  // namespace mdf_tests
