#include <sstream>

#include "healthy_file.h"
#include "mdf_v4_10.h"

namespace mdf_tests {

using namespace mdf_v4_10;

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
