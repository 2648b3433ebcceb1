// A complete file with at least one block of every type and every link of the format in use. It is
// put together from the library's blocks and compared byte for byte with the image written down by
// hand.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "mdf_v4_10.h"
#include "support/bytes.h"

using namespace mdf_v4_10;
using mdf_tests::Bytes;

namespace {

/// Where each block stands.
namespace at {
constexpr LINK hd = 64, fh1 = 168, fh2 = 224, md = 280, tx = 312;
constexpr LINK ch1 = 344, ch2 = 432, ch3 = 496, at1 = 560, at2 = 664;
constexpr LINK ev1 = 760, ev2 = 872, dg1 = 968, dg2 = 1032, cg1 = 1096, cg2 = 1200, cg3 = 1304;
constexpr LINK si = 1408, cn1 = 1464, cn2 = 1656, cn3 = 1816, cc1 = 1976, cc2 = 2080;
constexpr LINK dt = 2176, sd = 2208, rd = 2248, sr1 = 2280, sr2 = 2344;
constexpr LINK hl = 2408, dl1 = 2448, dl2 = 2504, dz1 = 2560, dz2 = 2616, end = 2672;
}  // namespace at

/// Puts blocks one after another, each on an 8-byte boundary, as their getSize() says.
class ImageBuilder {
 public:
  template <class Block>
  void put(const Block& block, LINK expected_at) {
    EXPECT_EQ(static_cast<LINK>(image_.tellp()), expected_at);
    image_ << block;
    EXPECT_EQ(static_cast<std::uint64_t>(image_.tellp()),
              static_cast<std::uint64_t>(expected_at) + block.getSize());
    image_ << std::string((8 - block.getSize() % 8) % 8, '\0');
  }
  void putIdentification(const IDBLOCK& block) { image_ << block; }
  std::string str() const { return image_.str(); }

 private:
  std::ostringstream image_;
};

const std::uint8_t* bytesOf(const char* text) {
  return reinterpret_cast<const std::uint8_t*>(text);
}

void putFileBlocks(ImageBuilder& image) {
  image.putIdentification(IDBLOCK("complete"));
  HDBLOCK hd(at::fh1, at::dg1, 1700000000000000000, 60, HDBLOCK::TIME_EXT_SOURCE, 0, 0);
  hd.setCHFirstblock(at::ch1);
  hd.setATFirstblock(at::at1);
  hd.setEVFirstblock(at::ev1);
  hd.setMDCommentblock(at::md);
  image.put(hd, at::hd);
  image.put(FHBLOCK(at::md, 1, 60, at::fh2), at::fh1);
  image.put(FHBLOCK(at::md, 2, 60, 0), at::fh2);
  image.put(MDBLOCK("<a/>", 4), at::md);
  image.put(TXBLOCK("name", 4), at::tx);

  CHBLOCK ch1(CHBLOCK::CH_TYPE_GROUP);
  ch1.setNextCHBlock(at::ch2, CHBLOCK::CH_TYPE_STRUCTURE);
  ch1.setFirstCHBlock(at::ch3);
  ch1.setTXNameBlock(at::tx);
  ch1.setMDBlock(at::md);
  ch1.addChannelElement(at::dg1, at::cg1, at::cn2);
  image.put(ch1, at::ch1);
  image.put(CHBLOCK(CHBLOCK::CH_TYPE_STRUCTURE), at::ch2);
  image.put(CHBLOCK(CHBLOCK::CH_TYPE_FUNCTION), at::ch3);

  ATBLOCK at1("embed", 5);
  at1.setNextATBlock(at::at2);
  at1.setTXFilenameBlock(at::tx);
  at1.setTXMimetypeBlock(at::tx);
  at1.setMDBlock(at::md);
  at1.setCreatorIndex(1);
  at1.setOriginalSize(5);
  image.put(at1, at::at1);
  ATBLOCK at2;
  at2.setTXFilenameBlock(at::tx);
  image.put(at2, at::at2);

  EVBLOCK ev1(EVBLOCK::EV_TYPE_TRIGGER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_END,
              EVBLOCK::EV_CAUSETYPE_USER);
  ev1.setNextEVBlock(at::ev2);
  ev1.setParentEVBlock(at::ev2);
  ev1.setEVRangeBlock(at::ev2);
  ev1.setTXNameBlock(at::tx);
  ev1.setMDBlock(at::md);
  ev1.addScope(at::cn1);
  ev1.addAttachment(at::at1);
  ev1.setSyncBaseValue(-3);
  ev1.setSyncBaseFactor(0.5);
  image.put(ev1, at::ev1);
  image.put(EVBLOCK(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS,
                    EVBLOCK::EV_RANGETYPE_BEGIN, EVBLOCK::EV_CAUSETYPE_TOOL),
            at::ev2);
}

void putGroups(ImageBuilder& image) {
  DGBLOCK dg1(at::dg2, at::cg1, at::dt, DGBLOCK::DG_UINT8);
  dg1.setComment(at::md);
  image.put(dg1, at::dg1);
  image.put(DGBLOCK(0, at::cg3, at::hl, DGBLOCK::DG_WITHOUT), at::dg2);

  CGBLOCK cg1(at::cg2, CGBLOCK::no_flag, 1, at::cn1, at::tx, at::si, at::sr1, 2,
              CGBLOCK::CG_PATHSEPARATOR_POINT, 1, 1);
  cg1.setComment(at::md);
  image.put(cg1, at::cg1);
  image.put(CGBLOCK(0, CGBLOCK::vlsd_channel_group, 2, 0, 0, 0, 0, 0,
                    CGBLOCK::CG_PATHSEPARATOR_NONE, 0, 0),
            at::cg2);
  image.put(CGBLOCK(0, CGBLOCK::bus_event_group, 0, at::cn3, 0, 0, 0, 12,
                    CGBLOCK::CG_PATHSEPARATOR_SLASH, 1, 0),
            at::cg3);

  SIBLOCK si(SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN, true, at::tx, at::tx);
  si.setComment(at::md);
  image.put(si, at::si);
}

void putChannels(ImageBuilder& image) {
  CNBLOCK cn1(CNBLOCK::CN_CHANNELTYPE_VARLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
              CNBLOCK::CN_DATATYPE_STRING_UTF8, at::cn2, at::tx, at::sd);
  cn1.setCompositionblock(at::cn3);
  cn1.setSourceSiblock(at::si);
  cn1.setConversionCcblock(at::cc1);
  cn1.setUnitblock(at::md);
  cn1.setCommentblock(at::md);
  cn1.addAttachement(at::at1);
  cn1.setupDefaultXAxis(at::dg1, at::cg1, at::cn2);
  cn1.setBitCount(8);
  image.put(cn1, at::cn1);
  CNBLOCK cn2(CNBLOCK::CN_CHANNELTYPE_VIRTUALMASTER, CNBLOCK::CN_SYNCTYPE_TIME,
              CNBLOCK::CN_DATATYPE_UINT_LE, 0, at::tx, 0);
  image.put(cn2, at::cn2);
  CNBLOCK cn3(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
              CNBLOCK::CN_DATATYPE_UINT_BE, 0, at::tx, 0);
  cn3.setConversionCcblock(at::cc2);
  cn3.setBitCount(8);
  image.put(cn3, at::cn3);

  CCBLOCK cc1(CCBLOCK::CC_CONVTYPE_EQUAL);
  cc1.setupV2TEXT_SCALETABConversion({{1.0, at::tx}}, at::tx);
  cc1.setNameTxblock(at::tx);
  cc1.setUnitblock(at::md);
  cc1.setCommentblock(at::md);
  cc1.setInverseCcblock(at::cc2);
  image.put(cc1, at::cc1);
  CCBLOCK cc2(CCBLOCK::CC_CONVTYPE_EQUAL);
  cc2.setupLinearConversion(0.5, 2.0);
  image.put(cc2, at::cc2);
}

void putData(ImageBuilder& image) {
  image.put(DTBLOCK(bytesOf("\1a\0\1b\0"), 6), at::dt);
  image.put(SDBLOCK(bytesOf("\5\0\0\0hello"), 9), at::sd);
  image.put(RDBLOCK(bytesOf("reduced!"), 8), at::rd);
  image.put(SRBLOCK(1, 0.25, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, at::rd, at::sr2), at::sr1);
  image.put(SRBLOCK(1, 2.0, SRBLOCK::SR_SYNCTYPE_INDEX_RECORDINDEX, at::rd, 0), at::sr2);
  image.put(HLBLOCK(at::dl1, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE), at::hl);
  DLBLOCK dl1(false, at::dl2);
  dl1.addData(at::dz1, 0);
  image.put(dl1, at::dl1);
  DLBLOCK dl2(true, 0);
  dl2.addData(at::dz2, 6);
  dl2.setEqualLength(6);
  image.put(dl2, at::dl2);
  DZBLOCK dz1(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, bytesOf("one"), 3);
  dz1.setOriginalLength(6);
  image.put(dz1, at::dz1);
  DZBLOCK dz2(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, bytesOf("two"), 3);
  dz2.setOriginalLength(6);
  dz2.setZipParameter(3);
  image.put(dz2, at::dz2);
}

std::string completeFile() {
  ImageBuilder image;
  putFileBlocks(image);
  putGroups(image);
  putChannels(image);
  putData(image);
  return image.str();
}

void expectFileBlocks(Bytes& image) {
  image.text("MDF     4.10    complete").zeros(4).u16(410).zeros(34);
  image.header("HD", 104, 6).links({968, 168, 344, 560, 760, 280});
  image.u64(1700000000000000000).i16(60).i16(0).u8s({2, 10, 0, 0}).f64(0).f64(0);
  image.header("FH", 56, 2).links({224, 280}).u64(1).i16(60).i16(0).u8(2).zeros(3);
  image.header("FH", 56, 2).links({0, 280}).u64(2).i16(60).i16(0).u8(2).zeros(3);
  image.header("MD", 29, 0).text("<a/>").zeros(4);
  image.header("TX", 29, 0).text("name").zeros(4);
  image.header("CH", 88, 5).links({432, 496, 312, 280, 968, 1096, 1656}).u32(1).zeros(4);
  image.header("CH", 64, 4).zeros(32).u32(0).u8(2).zeros(3);
  image.header("CH", 64, 4).zeros(32).u32(0).u8(1).zeros(3);
  image.header("AT", 101, 4).links({664, 312, 312, 280}).u16(1).u16(1).zeros(4).zeros(16);
  image.u64(5).u64(5).text("embed").zeros(3);
  image.header("AT", 96, 4).links({0, 312, 0, 0}).u16(0).u16(0).zeros(20).u64(0).u64(0);
  image.header("EV", 112, 7).links({872, 872, 872, 312, 280, 1464, 560}).u8s({5, 1, 2, 4, 0});
  image.zeros(3).u32(1).u16(1).u16(0).i64(-3).f64(0.5);
  image.header("EV", 96, 5).zeros(40).u8s({6, 1, 1, 2, 0}).zeros(3).zeros(24);
}

void expectGroups(Bytes& image) {
  image.header("DG", 64, 4).links({1032, 1096, 2176, 280}).u8(1).zeros(7);
  image.header("DG", 64, 4).links({0, 1304, 2408, 0}).u8(0).zeros(7);
  image.header("CG", 104, 6).links({1200, 1464, 312, 1408, 2280, 280});
  image.u64(1).u64(2).u16(0).u16(46).zeros(4).u32(1).u32(1);
  image.header("CG", 104, 6).zeros(48).u64(2).u64(0).u16(1).u16(0).zeros(4).u32(0).u32(0);
  image.header("CG", 104, 6).links({0, 1816, 0, 0, 0, 0});
  image.u64(0).u64(12).u16(2).u16(47).zeros(4).u32(1).u32(0);
  image.header("SI", 56, 3).links({312, 312, 280}).u8s({2, 2, 1}).zeros(5);
}

void expectChannels(Bytes& image) {
  image.header("CN", 192, 12).links({1656, 1816, 312, 1408, 1976, 2208, 280, 280});
  image.links({560, 968, 1096, 1656}).u8s({1, 0, 7, 0}).u32(0).u32(8).u32(4096).u32(0);
  image.u8s({255, 0}).u16(1).zeros(48);
  image.header("CN", 160, 8).links({0, 0, 312, 0, 0, 0, 0, 0}).u8s({3, 1, 0, 0}).zeros(16);
  image.u8s({255, 0}).u16(0).zeros(48);
  image.header("CN", 160, 8).links({0, 0, 312, 0, 2080, 0, 0, 0}).u8s({0, 0, 1, 0});
  image.u32(0).u32(8).u32(0).u32(0).u8s({255, 0}).u16(0).zeros(48);
  image.header("CC", 104, 6).links({312, 280, 280, 2080, 312, 312}).u8s({7, 255}).u16(0);
  image.u16(2).u16(1).f64(0).f64(0).f64(1.0);
  image.header("CC", 96, 4).zeros(32).u8s({1, 255}).u16(0).u16(0).u16(2).f64(0).f64(0);
  image.f64(0.5).f64(2.0);
}

void expectData(Bytes& image) {
  image.header("DT", 30, 0).u8s({1, 'a', 0, 1, 'b', 0}).zeros(2);
  image.header("SD", 33, 0).u32(5).text("hello").zeros(7);
  image.header("RD", 32, 0).text("reduced!");
  image.header("SR", 64, 2).links({2344, 2248}).u64(1).f64(0.25).u8s({1, 0}).zeros(6);
  image.header("SR", 64, 2).links({0, 2248}).u64(1).f64(2.0).u8s({4, 0}).zeros(6);
  image.header("HL", 40, 0).links({2448}).u16(1).u8(0).zeros(5);
  image.header("DL", 56, 2).links({2504, 2560}).u8(0).zeros(3).u32(1).u64(0);
  image.header("DL", 56, 2).links({0, 2616}).u8(1).zeros(3).u32(1).u64(6);
  image.header("DZ", 51, 0).text("DT").u8s({0, 0}).u32(0).u64(6).u64(3).text("one").zeros(5);
  image.header("DZ", 51, 0).text("DT").u8s({1, 0}).u32(3).u64(6).u64(3).text("two").zeros(5);
}

TEST(WholeFile, EveryByteStandsAsTheFormatSays) {
  Bytes expected;
  expectFileBlocks(expected);
  expectGroups(expected);
  expectChannels(expected);
  expectData(expected);
  ASSERT_EQ(expected.str().size(), static_cast<std::size_t>(at::end));
  EXPECT_BYTES(completeFile(), expected);
}

}  // namespace
