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
      .links({312, 168, 0, 0, 0, 224})
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
      .links({64, 712})
      .text("unknown\n");
}

std::string description() {
  return Bytes()
      .header("DG", 64, 4)  // 312
      .links({0, 376, 744, 0})
      .zeros(8)
      .header("CG", 104, 6)  // 376
      .links({0, 480, 640, 0, 0, 0})
      .u64(9)
      .u64(2)
      .u16(2)
      .u16(46)
      .zeros(4)
      .u32(3)
      .u32(1)
      .header("CN", 160, 8)  // 480
      .links({0, 264, 640, 0, 0, 680, 640, 0})
      .u8s({2, 1, 4, 0})
      .u32(16)
      .u32(32)
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
      .header("RD", 30, 0)  // 712
      .u8s({1, 2, 3, 4, 5, 6})
      .zeros(2)
      .header("DT", 28, 0)  // 744
      .u8s({0, 255, 27, 10});
}

const char* const frame_dump =
    "0 (0x0) identification length 64\n"
    "[DEBUG] ==================== IDBLOCK ===================\n"
    "file identifier = MDF     \n"
    "format identifier = 4.10    \n"
    "programm identfier = testprog\n"
    "version number = 410\n"
    "[DEBUG] ==================== End of IDBLOCK ===================\n"
    "64 (0x40) ##HD length 104 links 6: 312 168 0 0 0 224\n"
    "[DEBUG] ==================== HDBLOCK ===================\n"
    "block size = 104\n"
    "first data group block (pointer) = 312\n"
    "first file history block (pointer) = 168\n"
    "first channel hierarchy block (pointer) = 0\n"
    "first attachement block (pointer) = 0\n"
    "first event block (pointer) = 0\n"
    "file comment (pointer) = 224\n"
    "start time = 1000000007\n"
    "UTC time offset = 60\n"
    "DST time offset = 0\n"
    "time flags = 2\n"
    "time quality class = 10\n"
    "flags = 3\n"
    "start angle = 0.5\n"
    "start distance = 1500.25\n"
    "[DEBUG] ==================== End of HDBLOCK ===================\n"
    "168 (0xa8) ##FH length 56 links 2: 0 224\n"
    "[DEBUG] ==================== FHBLOCK ===================\n"
    "block size = 56\n"
    "next file history block (pointer) = 0\n"
    "file comment (pointer) = 224\n"
    "time = 5\n"
    "UTC time offset = -120\n"
    "DST time offset = 60\n"
    "time flags = 2\n"
    "[DEBUG] ==================== End of FHBLOCK ===================\n"
    "224 (0xe0) ##MD length 40 links 0\n"
    "[DEBUG] ==================== MDBLOCK ===================\n"
    "block size = 40\n"
    "text data = \n"
    "ZZZZZZZZ<HDcomm[DEBUG] ==================== End of MDBLOCK ===================\n"
    "264 (0x108) ##XX length 48 links 2: 64 712\n";

const char* const description_dump =
    "312 (0x138) ##DG length 64 links 4: 0 376 744 0\n"
    "[DEBUG] ==================== DGBLOCK ===================\n"
    "block size = 64\n"
    "next data group block = 0\n"
    "first channel group block = 0\n"
    "data block = 0\n"
    "comment block = 0\n"
    "record ID size = 0\n"
    "[DEBUG] ==================== End of DGBLOCK ===================\n"
    "376 (0x178) ##CG length 104 links 6: 0 480 640 0 0 0\n"
    "[DEBUG] ==================== CGBLOCK ===================\n"
    "block size = 104\n"
    "next channel group block = 0\n"
    "first channel block = 0\n"
    "acq name tx block = 0\n"
    "acq source si block = 0\n"
    "first sr block = 0\n"
    "comment block = 0\n"
    "record id = 9\n"
    "cycle cnt = 2\n"
    "flags : vlsd(0), busEvent(1), plainBusEventChannel(0)\n"
    "path separator = 46\n"
    "size of data records = 3\n"
    "size of invalid bytes = 1\n"
    "[DEBUG] ==================== End of CGBLOCK ===================\n"
    "480 (0x1e0) ##CN length 160 links 8: 0 264 640 0 0 680 640 0\n"
    "[DEBUG] ==================== CNBLOCK ===================\n"
    "block size = 168\n"
    "next channel block = 0\n"
    "composition block = 0\n"
    "name tx block = 0\n"
    "source si block = 0\n"
    "channel conversion block = 0\n"
    "data block = 0\n"
    "unit block = 0\n"
    "comment block = 0\n"
    "channel type = 2\n"
    "sync type = 1\n"
    "data type = 4\n"
    "bit offset = 0\n"
    "byte offset = 16\n"
    "bit count = 32\n"
    "flags: invalid(0), invalidationBit(0), precisionValid(1), valueRangeValid(0), "
    "limitRangeValid(0)\n"
    "flags 2: extendedLimitRangeValid(0), discreteValue(0), calibration(0), calculated(0), "
    "virtual(1)\n"
    "flags 3: busEvent(0), monotonous(0), defaultXAxis(0\n"
    "invalid bit pos = 7\n"
    "precision = 3\n"
    "value range min = -1.5 max = 2.5\n"
    "limit min = 0 max = 0\n"
    "limit extended range min = 0 max = 0\n"
    "attachements : 1\n"
    "attachement:0\n"
    "[DEBUG] ==================== End of CNBLOCK ===================\n";

const char* const data_dump =
    "640 (0x280) ##TX length 40 links 0\n"
    "[DEBUG] ==================== TXBLOCK ===================\n"
    "block size = 40\n"
    "text data = \n"
    "ZZZZZZZZvehicle\n"
    "[DEBUG] ==================== End of TXBLOCK ===================\n"
    "680 (0x2a8) ##SD length 32 links 0\n"
    "[DEBUG] ==================== SDBLOCK ===================\n"
    "block size = 32\n"
    "data size = 8\n"
    "data hex dump: \x04ZZZabcd[DEBUG] ==================== End of SDBLOCK ===================\n"
    "712 (0x2c8) ##RD length 30 links 0\n"
    "[DEBUG] ==================== RDBLOCK ===================\n"
    "block size = 30\n"
    "data size = 6\n"
    "data hex dump: \x01\x02\x03\x04\x05\x06"
    "[DEBUG] ==================== End of RDBLOCK ===================\n"
    "744 (0x2e8) ##DT length 28 links 0\n"
    "[DEBUG] ==================== DTBLOCK ===================\n"
    "block size = 28\n"
    "data size = 4\n"
    "data hex dump: Z\xff\x1b\n"
    "[DEBUG] ==================== End of DTBLOCK ===================\n";

}  // namespace

std::string healthyFile() { return frame() + description() + data(); }

std::string healthyDump() {
  std::string dump = std::string(frame_dump) + description_dump + data_dump;
  // Z stands for a byte of zero.
  for (char& character : dump) {
    character = character == 'Z' ? '\0' : character;
  }
  return dump;
}

}  // namespace mdf_tests
