#ifndef MDF_BENCH_SUPPORT_SAMPLE_BLOCKS_H_
#define MDF_BENCH_SUPPORT_SAMPLE_BLOCKS_H_

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "mdf_v4_10.h"

namespace mdf_bench {

template <class Block>
std::string written(const Block& block) {
  std::ostringstream os;
  os << block;
  return os.str();
}

inline mdf_v4_10::CNBLOCK sampleChannel() {
  using B = mdf_v4_10::CNBLOCK;
  B block(B::CN_CHANNELTYPE_FIXEDLENGTH, B::CN_SYNCTYPE_NONE, B::CN_DATATYPE_FLOAT_LE, 0x2100,
          0x2200, 0x2300);
  block.setBitCount(64);
  block.setValueRangeMax(250.25);
  return block;
}

inline mdf_v4_10::HDBLOCK sampleHeader() {
  using B = mdf_v4_10::HDBLOCK;
  return {1, 2, 1700000000000000000, 60, B::TIME_LOCAL_PC, 0.5, 2.5};
}

inline mdf_v4_10::DGBLOCK sampleDataGroup() { return {1, 2, 3, mdf_v4_10::DGBLOCK::DG_UINT8}; }

inline mdf_v4_10::CGBLOCK sampleChannelGroup() {
  using B = mdf_v4_10::CGBLOCK;
  return {1, B::no_flag, 2, 3, 4, 5, 6, 7, B::CG_PATHSEPARATOR_POINT, 8, 9};
}

inline mdf_v4_10::SIBLOCK sampleSource() {
  using B = mdf_v4_10::SIBLOCK;
  return {B::SI_SOURCETYPE_ECU, B::SI_BUSTYPE_CAN, true, 1, 2};
}

inline mdf_v4_10::CCBLOCK sampleConversion(std::size_t values) {
  mdf_v4_10::CCBLOCK block(mdf_v4_10::CCBLOCK::CC_CONVTYPE_EQUAL);
  for (std::size_t i = 1; i <= values; ++i) {
    block.addValue(static_cast<mdf_v4_10::REAL>(i) / 7);
  }
  return block;
}

inline mdf_v4_10::EVBLOCK sampleEvent(std::size_t scopes) {
  using B = mdf_v4_10::EVBLOCK;
  B block(B::EV_TYPE_MARKER, B::EV_SYNCTYPE_SECONDS, B::EV_RANGETYPE_POINT, B::EV_CAUSETYPE_USER);
  for (std::size_t i = 1; i <= scopes; ++i) {
    block.addScope(static_cast<mdf_v4_10::LINK>(i));
  }
  return block;
}

/// Calls visit(name, block) with a block of each class whose blocks are all of one size.
template <class Visit>
void forEachFixedBlock(Visit visit) {
  using namespace mdf_v4_10;
  visit("IDBLOCK", IDBLOCK("example "));
  visit("HDBLOCK", sampleHeader());
  visit("FHBLOCK", FHBLOCK(1, 1700000000000000000, 60, 2));
  visit("DGBLOCK", sampleDataGroup());
  visit("CGBLOCK", sampleChannelGroup());
  visit("SIBLOCK", sampleSource());
  visit("HLBLOCK", HLBLOCK(1, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  visit("SRBLOCK", SRBLOCK(1, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 2, 3));
}

/// Calls visit(name, block) with a block of `count` bytes of each class that holds bytes.
template <class Visit>
void forEachBlockOfBytes(std::size_t count, Visit visit) {
  using namespace mdf_v4_10;
  const std::string text(count, 'x');
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  visit("TXBLOCK", TXBLOCK(text.data(), count));
  visit("MDBLOCK", MDBLOCK(text.data(), count));
  visit("ATBLOCK", ATBLOCK(text.data(), count));
  visit("DTBLOCK", DTBLOCK(bytes, count));
  visit("RDBLOCK", RDBLOCK(bytes, count));
  visit("SDBLOCK", SDBLOCK(bytes, count));
  visit("DZBLOCK", DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, bytes, count));
}

/// Calls visit(name, block) with a block of `count` entries of each class that holds a list.
template <class Visit>
void forEachBlockOfEntries(std::size_t count, Visit visit) {
  using namespace mdf_v4_10;
  CHBLOCK hierarchy(CHBLOCK::CH_TYPE_GROUP);
  CNBLOCK channel = sampleChannel();
  DLBLOCK offsets(false, 1);
  DLBLOCK equal(true, 1);
  for (std::size_t i = 1; i <= count; ++i) {
    const auto link = static_cast<LINK>(0x1000 + i);
    hierarchy.addChannelElement(link, link + 1, link + 2);
    channel.addAttachement(link);
    offsets.addData(link, i);
    equal.addData(link, i);
  }
  visit("CHBLOCK", hierarchy);
  visit("EVBLOCK", sampleEvent(count));
  visit("CNBLOCK", channel);
  visit("CCBLOCK", sampleConversion(count));
  visit("DLBLOCK", offsets);
  visit("DLBLOCK of equal length", equal);
}

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_SAMPLE_BLOCKS_H_
