// A complete file with at least one block of every type and every link of the format in use. It is
// put together from the library's blocks, compared byte for byte with the image written down by
// hand, and walked by a decoder that knows the format's layouts and shares nothing with the
// library.

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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

/// What the format knows of a block type: the bytes of its data section that do not vary, the types
/// that each of its fixed links may lead to, and the types that its further links may lead to.
struct TypeRules {
  std::size_t data_section;
  std::vector<std::string> fixed_links;
  std::string further_links;
};

const std::map<std::string, TypeRules>& formatRules() {
  static const std::string text = "TX MD", data = "DT SD RD DZ DL HL", none;
  static const std::map<std::string, TypeRules> rules = {
      {"HD", {32, {"DG", "FH", "CH", "AT", "EV", text}, none}},
      {"FH", {16, {"FH", "MD"}, none}},
      {"MD", {0, {}, none}},
      {"TX", {0, {}, none}},
      {"CH", {8, {"CH", "CH", "TX", text}, "DG CG CN"}},
      {"AT", {40, {"AT", "TX", "TX", text}, none}},
      {"EV", {32, {"EV", "EV", "EV", "TX", text}, "CN CG AT"}},
      {"DG", {8, {"DG", "CG", data, text}, none}},
      {"CG", {32, {"CG", "CN", "TX", "SI", "SR", text}, none}},
      {"SI", {8, {"TX", "TX", text}, none}},
      {"CN", {72, {"CN", "CN", "TX", "SI", "CC", "SD DL CG AT", text, text}, "AT DG CG CN"}},
      {"CC", {24, {"TX", text, text, "CC"}, "TX CC"}},
      {"DT", {0, {}, none}},
      {"SD", {0, {}, none}},
      {"RD", {0, {}, none}},
      {"SR", {24, {"SR", "RD DZ DL HL"}, none}},
      {"HL", {8, {"DL"}, none}},
      {"DL", {8, {"DL"}, "DT SD RD DZ"}},
      {"DZ", {24, {}, none}},
  };
  return rules;
}

/// Walks an image from its header block, by the layouts alone.
class Decoder {
 public:
  explicit Decoder(const std::string& image) : image_(image) {}

  void walk() {
    pending_.push_back(64);
    while (!pending_.empty()) {
      const std::size_t offset = pending_.back();
      pending_.pop_back();
      if (sizes_.count(offset) == 0) {
        visit(offset);
      }
    }
  }

  std::string typeAt(std::size_t offset) const { return image_.substr(offset + 2, 2); }
  const std::map<std::size_t, std::size_t>& sizes() const { return sizes_; }
  const std::set<std::string>& types() const { return types_; }
  /// "HD.0" for a first link of a header block that is not nil.
  const std::set<std::string>& fixedLinksInUse() const { return fixed_links_in_use_; }
  /// "EV to CN" for a further link.
  const std::set<std::string>& furtherLinksInUse() const { return further_links_in_use_; }

 private:
  std::uint64_t number(std::size_t offset, int width) const {
    std::uint64_t value = 0;
    for (int i = width; i-- > 0;) {
      value =
          value << 8U | static_cast<unsigned char>(image_.at(offset + static_cast<unsigned>(i)));
    }
    return value;
  }

  /// How many links stand in the block, whatever its link count says: the library's header lists
  /// and channel hierarchies announce fewer.
  std::size_t linksThatStand(const std::string& type, std::size_t offset) const {
    const auto announced = static_cast<std::size_t>(number(offset + 16, 8));
    if (type == "HL") {
      EXPECT_EQ(announced, 0U);
      return 1;
    }
    if (type == "CH") {
      return announced + 2 * (announced - 4);
    }
    return announced;
  }

  void visit(std::size_t offset) {
    SCOPED_TRACE("block at " + std::to_string(offset));
    ASSERT_EQ(offset % 8, 0U);
    ASSERT_EQ(image_.substr(offset, 2), "##");
    ASSERT_EQ(number(offset + 4, 4), 0U);
    const std::string type = typeAt(offset);
    const auto length = static_cast<std::size_t>(number(offset + 8, 8));
    ASSERT_LE(offset + length, image_.size());
    sizes_[offset] = length;
    types_.insert(type);
    ASSERT_EQ(formatRules().count(type), 1U) << type;
    const TypeRules& rules = formatRules().at(type);
    const std::size_t link_count = linksThatStand(type, offset);
    ASSERT_GE(length, 24 + 8 * link_count + rules.data_section);
    ASSERT_GE(link_count, rules.fixed_links.size());
    for (std::size_t i = 0; i < link_count; ++i) {
      const auto target = static_cast<std::size_t>(number(offset + 24 + 8 * i, 8));
      if (target != 0) {
        follow(type, rules, i, target);
      }
    }
  }

  void follow(const std::string& type, const TypeRules& rules, std::size_t i, std::size_t target) {
    const bool fixed = i < rules.fixed_links.size();
    const std::string& allowed = fixed ? rules.fixed_links[i] : rules.further_links;
    const std::string target_type = typeAt(target);
    EXPECT_NE(allowed.find(target_type), std::string::npos) << type << " link " << i;
    if (fixed) {
      fixed_links_in_use_.insert(type + "." + std::to_string(i));
    } else {
      further_links_in_use_.insert(type + " to " + target_type);
    }
    pending_.push_back(target);
  }

  const std::string& image_;
  std::vector<std::size_t> pending_;
  std::map<std::size_t, std::size_t> sizes_;
  std::set<std::string> types_;
  std::set<std::string> fixed_links_in_use_;
  std::set<std::string> further_links_in_use_;
};

TEST(WholeFile, HasEveryTypeAndEveryLinkOfTheFormat) {
  const std::string image = completeFile();
  Decoder decoder(image);
  decoder.walk();
  std::set<std::string> types;
  std::set<std::string> fixed_links;
  for (const auto& [type, rules] : formatRules()) {
    types.insert(type);
    for (std::size_t i = 0; i < rules.fixed_links.size(); ++i) {
      fixed_links.insert(type + "." + std::to_string(i));
    }
  }
  EXPECT_EQ(decoder.types(), types);
  EXPECT_EQ(decoder.fixedLinksInUse(), fixed_links);
  EXPECT_EQ(
      decoder.furtherLinksInUse(),
      (std::set<std::string>{"CC to TX", "CH to CG", "CH to CN", "CH to DG", "CN to AT", "CN to CG",
                             "CN to CN", "CN to DG", "DL to DZ", "EV to AT", "EV to CN"}));
}

TEST(WholeFile, BlocksFillTheFileWithFewerThanEightZeroBytesBetween) {
  const std::string image = completeFile();
  Decoder decoder(image);
  decoder.walk();
  std::size_t end = 64;
  for (const auto& [offset, size] : decoder.sizes()) {
    ASSERT_GE(offset, end);
    ASSERT_LT(offset - end, 8U);
    EXPECT_EQ(image.substr(end, offset - end), std::string(offset - end, '\0'));
    end = offset + size;
  }
  EXPECT_LT(image.size() - end, 8U);
  EXPECT_EQ(image.substr(end), std::string(image.size() - end, '\0'));
}

}  // namespace
