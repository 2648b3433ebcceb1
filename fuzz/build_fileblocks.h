#ifndef MDF_FUZZ_BUILD_FILEBLOCKS_H_
#define MDF_FUZZ_BUILD_FILEBLOCKS_H_

#include <string>

#include "changes.h"

/// How an input makes and changes each of the blocks that frame a file.
namespace mdf_fuzz {

inline IDBLOCK make(Input& input, const IDBLOCK* /*type*/) {
  return IDBLOCK(input.takeText().c_str());
}
inline void change(IDBLOCK& block, Input& input) {
  block = make(input, &block);
  expect(block.getKenn() + block.getVers() == "MDF     4.10    " && block.getProg().size() == 8,
         "the format's identifiers");
}

inline HDBLOCK make(Input& input, const HDBLOCK* /*type*/) {
  return {input.take<LINK>(),
          input.take<LINK>(),
          input.take<UINT64>(),
          input.take<INT16>(),
          input.take<HDBLOCK::MDF_HD_TIME_QUALITY_t>(),
          input.take<REAL>(),
          input.take<REAL>()};
}
inline void change(HDBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&HDBLOCK::setDGFirstblock, &HDBLOCK::getDGFirstblock>,
                set<&HDBLOCK::setFHFirstblock, &HDBLOCK::getFHFirstblock>,
                set<&HDBLOCK::setCHFirstblock, &HDBLOCK::getCHFirstblock>,
                set<&HDBLOCK::setATFirstblock, &HDBLOCK::getATFirstblock>,
                set<&HDBLOCK::setEVFirstblock, &HDBLOCK::getEVFirstblock>,
                set<&HDBLOCK::setMDCommentblock, &HDBLOCK::getMDCommentblock>,
                set<&HDBLOCK::setTimestamp, &HDBLOCK::getTimeStamp>, changeTime});
}

template <class Text>
Text makeText(Input& input) {
  const std::string text = input.takeText();
  return text.empty() ? Text() : Text(text.data(), text.size());
}
inline TXBLOCK make(Input& input, const TXBLOCK* /*type*/) { return makeText<TXBLOCK>(input); }
inline void change(TXBLOCK& block, Input& input) { setUpText(block, input); }

inline MDBLOCK make(Input& input, const MDBLOCK* /*type*/) { return makeText<MDBLOCK>(input); }
inline void change(MDBLOCK& block, Input& input) { setUpText(block, input); }

inline FHBLOCK make(Input& input, const FHBLOCK* /*type*/) {
  return {input.take<LINK>(), input.take<UINT64>(), input.take<INT16>(), input.take<LINK>()};
}
inline void change(FHBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&FHBLOCK::setNextFHBlock, &FHBLOCK::getNextFHBlock>,
                set<&FHBLOCK::setMDBlock, &FHBLOCK::getMDBlock>,
                set<&FHBLOCK::setTimestamp, &FHBLOCK::getTime>, changeTime});
}

inline CHBLOCK make(Input& input, const CHBLOCK* /*type*/) {
  return CHBLOCK(input.take<CHBLOCK::MDF_CH_TYPE_t>());
}
inline void addElement(CHBLOCK& block, Input& input) {
  const auto group = input.take<LINK>();
  block.addChannelElement({group, input.take<LINK>(), input.take<LINK>()});
  LINK last = 0;
  LINK channel_group = 0;
  LINK channel = 0;
  expect(
      block.getChannelElementAtIndex(block.getElementCount() - 1, last, channel_group, channel) &&
          last == group,
      "one more element at the end");
}
inline void removeElement(CHBLOCK& block, Input& input) {
  const auto index = input.take<UINT8>();
  const UINT32 count = block.getElementCount();
  block.removeChannelAtIndex(index);
  LINK link = 0;
  expect(block.getElementCount() == count - (index < count ? 1 : 0) &&
             !block.getChannelElementAtIndex(block.getElementCount(), link, link, link),
         "the element gone, if there was one");
}
inline void setNextOfHierarchy(CHBLOCK& block, Input& input) {
  const auto next = input.take<LINK>();
  block.setNextCHBlock(next, input.take<CHBLOCK::MDF_CH_TYPE_t>());
  expect(block.getNextCHBlock() == next || block.getNextCHBlock() == 0, "the next block or nil");
}
inline void change(CHBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {addElement, removeElement, setNextOfHierarchy, set<&CHBLOCK::setType, &CHBLOCK::getType>,
       setOrClear<&CHBLOCK::setFirstCHBlock, &CHBLOCK::getFirstCHBlock>,
       setOrClear<&CHBLOCK::setTXNameBlock, &CHBLOCK::getTXNameBlock>,
       set<&CHBLOCK::setMDBlock, &CHBLOCK::getMDBlock>});
}

inline ATBLOCK make(Input& input, const ATBLOCK* /*type*/) {
  const std::string data = input.takeText();
  return data.empty() ? ATBLOCK() : ATBLOCK(data.data(), data.size());
}
inline void setUpEmbedded(ATBLOCK& block, Input& input) {
  const std::string data = input.takeText();
  block.setup(data.data(), data.size());
  expect(block.getSize() == ATBLOCK::ATBLOCK_CONSTANT_SIZE + data.size(), "the embedded bytes");
}
inline void setChecksum(ATBLOCK& block, Input& input) {
  const std::size_t size = block.at_embedded_data.size();
  const auto checksum = block.getMD5Checksum();
  block.setMD5Checksum(input.takeText().c_str());
  expect(block.at_embedded_data.size() == size && block.getMD5Checksum() == checksum,
         "a checksum over the embedded bytes alone");
}
inline void change(ATBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {setUpEmbedded, setChecksum, set<&ATBLOCK::setNextATBlock, &ATBLOCK::getNextATBlock>,
       set<&ATBLOCK::setTXFilenameBlock, &ATBLOCK::getTXFilenameBlock>,
       set<&ATBLOCK::setTXMimetypeBlock, &ATBLOCK::getTXMimetypeBlock>,
       set<&ATBLOCK::setMDBlock, &ATBLOCK::getMDBlock>,
       set<&ATBLOCK::setCreatorIndex, &ATBLOCK::getCreatorIndex>,
       set<&ATBLOCK::setOriginalSize, &ATBLOCK::getOriginalSize>,
       setFlag<&ATBLOCK::setEmbeddedDataFlag, &ATBLOCK::isEmbeddedData>,
       setFlag<&ATBLOCK::setMD5ChecksumFlag, &ATBLOCK::isMD5Checksum>,
       setOrClear<&ATBLOCK::setCompressedEmbeddedDataFlag, &ATBLOCK::isCompressedEmbeddedData>});
}

inline EVBLOCK make(Input& input, const EVBLOCK* /*type*/) {
  return {input.take<EVBLOCK::MDF_EV_TYPE_t>(), input.take<EVBLOCK::MDF_EV_SYNCTYPE_t>(),
          input.take<EVBLOCK::MDF_EV_RANGETYPE_t>(), input.take<EVBLOCK::MDF_EV_CAUSETYPE_t>()};
}
inline void change(EVBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {add<&EVBLOCK::ev_scope, &EVBLOCK::addScope>,
       remove<&EVBLOCK::ev_scope, &EVBLOCK::removeScopeAt>,
       add<&EVBLOCK::ev_at_reference, &EVBLOCK::addAttachment>,
       remove<&EVBLOCK::ev_at_reference, &EVBLOCK::removeAttachmentAt>,
       set<&EVBLOCK::setNextEVBlock, &EVBLOCK::getNextEVBlock>,
       set<&EVBLOCK::setParentEVBlock, &EVBLOCK::getParentEVBlock>,
       set<&EVBLOCK::setEVRangeBlock, &EVBLOCK::getEVRangeBlock>,
       set<&EVBLOCK::setTXNameBlock, &EVBLOCK::getTXNameBlock>,
       set<&EVBLOCK::setMDBlock, &EVBLOCK::getMDBlock>, set<&EVBLOCK::setType, &EVBLOCK::getType>,
       set<&EVBLOCK::setSyncType, &EVBLOCK::getSyncType>,
       set<&EVBLOCK::setRangeType, &EVBLOCK::getRangeType>,
       set<&EVBLOCK::setCause, &EVBLOCK::getCause>,
       setFlag<&EVBLOCK::setPostProcessedFlag, &EVBLOCK::isPostProcessed>,
       set<&EVBLOCK::setCreatorIndex, &EVBLOCK::getCreatorIndex>,
       set<&EVBLOCK::setSyncBaseValue, &EVBLOCK::getSyncBaseValue>,
       set<&EVBLOCK::setSyncBaseFactor, &EVBLOCK::getSyncBaseFactor>});
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_BUILD_FILEBLOCKS_H_
