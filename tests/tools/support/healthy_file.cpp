#include "healthy_file.h"

#include <sstream>

#include "mdf_v4_10.h"
#include "support/bytes.h"

namespace mdf_tests {

using namespace mdf_v4_10;

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

namespace {

/// What the class of a block that stands at an offset shows of it. The tests of the classes say
/// what that is.
template <class Block>
std::string shown(std::streamoff offset) {
  std::istringstream is(healthyFile());
  is.seekg(offset);
  std::ostringstream os;
  Block(is).print(os);
  return os.str();
}

std::string dumpUpToTheChannel() {
  return "0 (0x0) identification length 64\n" + shown<IDBLOCK>(0) +
         "64 (0x40) ##HD length 104 links 6: hd_dg_first=312 hd_fh_first=168 hd_ch_first=992 "
         "hd_at_first=1080 hd_ev_first=1184 hd_md_comment=224\n" +
         shown<HDBLOCK>(64) +
         "168 (0xa8) ##FH length 56 links 2: fh_fh_next=0 fh_md_comment=224\n" +
         shown<FHBLOCK>(168) + "224 (0xe0) ##MD length 40 links 0\n" + shown<MDBLOCK>(224) +
         "264 (0x108) ##XX length 48 links 2: 64 1288\n"
         "312 (0x138) ##DG length 64 links 4: dg_dg_next=0 dg_cg_first=376 dg_data=744 "
         "dg_md_comment=0\n" +
         shown<DGBLOCK>(312) +
         "376 (0x178) ##CG length 104 links 6: cg_cg_next=0 cg_cn_first=480 cg_tx_acq_name=640 "
         "cg_si_acq_source=776 cg_sr_first=832 cg_md_comment=0\n" +
         shown<CGBLOCK>(376) +
         "480 (0x1e0) ##CN length 160 links 8: cn_cn_next=0 cn_composition=264 cn_tx_name=640 "
         "cn_si_source=0 cn_cc_conversion=896 cn_data=680 cn_md_unit=640 cn_md_comment=0\n" +
         shown<CNBLOCK>(480);
}

std::string dumpOfTheRest() {
  return "640 (0x280) ##TX length 40 links 0\n" + shown<TXBLOCK>(640) +
         "680 (0x2a8) ##SD length 32 links 0\n" + shown<SDBLOCK>(680) +
         "712 (0x2c8) ##RD length 31 links 0\n" + shown<RDBLOCK>(712) +
         "744 (0x2e8) ##DT length 30 links 0\n" + shown<DTBLOCK>(744) +
         "776 (0x308) ##SI length 56 links 3: si_tx_name=640 si_tx_path=0 si_md_comment=224\n" +
         shown<SIBLOCK>(776) + "832 (0x340) ##SR length 64 links 2: sr_sr_next=0 sr_data=712\n" +
         shown<SRBLOCK>(832) +
         "896 (0x380) ##CC length 96 links 4: cc_tx_name=0 cc_md_unit=640 cc_md_comment=0 "
         "cc_cc_inverse=0\n" +
         shown<CCBLOCK>(896) +
         "992 (0x3e0) ##CH length 88 links 5: ch_ch_next=0 ch_ch_first=0 ch_tx_name=640 "
         "ch_md_comment=224 ch_element[0].dg=312 ch_element[0].cg=376 ch_element[0].cn=480\n" +
         shown<CHBLOCK>(992) +
         "1080 (0x438) ##AT length 101 links 4: at_at_next=0 at_tx_filename=640 at_tx_mimetype=640 "
         "at_md_comment=224\n" +
         shown<ATBLOCK>(1080) +
         "1184 (0x4a0) ##EV length 104 links 6: ev_ev_next=0 ev_ev_parent=0 ev_ev_range=0 "
         "ev_tx_name=640 ev_md_comment=224 ev_scope[0]=480\n" +
         shown<EVBLOCK>(1184) + "1288 (0x508) ##HL length 40 links 0: hl_dl_first=1328\n" +
         shown<HLBLOCK>(1288) +
         "1328 (0x530) ##DL length 56 links 2: dl_dl_next=0 dl_data[0]=1384\n" +
         shown<DLBLOCK>(1328) + "1384 (0x568) ##DZ length 65 links 0\n" + shown<DZBLOCK>(1384);
}

}  // namespace

const std::string& healthyDump() {
  static const std::string dump = dumpUpToTheChannel() + dumpOfTheRest();
  return dump;
}

}  // namespace mdf_tests
