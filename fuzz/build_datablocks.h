#ifndef MDF_FUZZ_BUILD_DATABLOCKS_H_
#define MDF_FUZZ_BUILD_DATABLOCKS_H_

#include "changes.h"

/// How an input makes and changes each of the blocks that hold data or list them.
namespace mdf_fuzz {

template <class Data>
Data makeData(Input& input) {
  const std::string data = input.takeText();
  return {dataOf(data), data.size()};
}
inline DTBLOCK make(Input& input, const DTBLOCK* /*type*/) { return makeData<DTBLOCK>(input); }
inline void change(DTBLOCK& block, Input& input) {
  changeOneWay<DTBLOCK>(block, input, {setUpData, growData});
}

inline RDBLOCK make(Input& input, const RDBLOCK* /*type*/) { return makeData<RDBLOCK>(input); }
inline void change(RDBLOCK& block, Input& input) { setUpData(block, input); }

inline SDBLOCK make(Input& input, const SDBLOCK* /*type*/) { return makeData<SDBLOCK>(input); }
inline void change(SDBLOCK& block, Input& input) {
  changeOneWay<SDBLOCK>(block, input, {setUpData, growData});
}

inline DLBLOCK make(Input& input, const DLBLOCK* /*type*/) {
  return {input.take<bool>(), input.take<LINK>()};
}
inline void addPair(DLBLOCK& block, Input& input) {
  const UINT32 count = block.getDataLength();
  const auto link = input.take<LINK>();
  block.addData(link, input.take<UINT64>());
  expect(block.getDataLength() == count + (link == 0 ? 0 : 1), "one more pair, without nil links");
  LINK last = 0;
  UINT64 offset = 0;
  expect(link == 0 || (block.getDataAtIndex(count, last, offset) && last == link),
         "one more pair at the end");
}
inline void removePair(DLBLOCK& block, Input& input) {
  const auto index = input.take<UINT8>();
  const UINT32 count = block.getDataLength();
  block.removeDataAtIndex(index);
  LINK link = 0;
  UINT64 offset = 0;
  expect(block.getDataLength() == count - (index < count ? 1 : 0) &&
             !block.getDataAtIndex(block.getDataLength(), link, offset),
         "the pair gone, if there was one");
}
inline void change(DLBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {addPair, removePair, set<&DLBLOCK::setNextDlblock, &DLBLOCK::getNextDlblock>,
                set<&DLBLOCK::setEqualLength, &DLBLOCK::getEqualLength>,
                set<&DLBLOCK::setEqualLengthFlag, &DLBLOCK::isEqualLengthFlag>});
}

inline DZBLOCK make(Input& input, const DZBLOCK* /*type*/) {
  const auto type = input.take<UINT16>();
  const auto zip_type = input.take<DZBLOCK::DZ_ZIPTYPE_t>();
  const std::string data = input.takeText();
  return {type, zip_type, dataOf(data), data.size()};
}
inline void setUpZipped(DZBLOCK& block, Input& input) {
  const std::string data = input.takeText();
  block.setupZipData(dataOf(data), data.size());
  expect(block.dz_data.size() == data.size(), "the zipped data");
}
inline void change(DZBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {setUpZipped, set<&DZBLOCK::setOriginalBlockType, &DZBLOCK::getOriginalBlockType>,
                set<&DZBLOCK::setZipType, &DZBLOCK::getZipType>,
                set<&DZBLOCK::setZipParameter, &DZBLOCK::getZipParameter>,
                set<&DZBLOCK::setOriginalLength, &DZBLOCK::getOriginalLength>});
}

inline HLBLOCK make(Input& input, const HLBLOCK* /*type*/) {
  return {input.take<LINK>(), input.take<bool>(), input.take<DZBLOCK::DZ_ZIPTYPE_t>()};
}
inline void change(HLBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&HLBLOCK::setFirstDlblock, &HLBLOCK::getFirstDlblock>,
                setFlag<&HLBLOCK::setEqualLengthFlag, &HLBLOCK::isEqualLengthFlag>,
                set<&HLBLOCK::setZipType, &HLBLOCK::getZipType>});
}

inline SRBLOCK make(Input& input, const SRBLOCK* /*type*/) {
  return {input.take<UINT64>(), input.take<REAL>(), input.take<SRBLOCK::MDF_SR_SYNCTYPE_t>(),
          input.take<LINK>(), input.take<LINK>()};
}
inline void change(SRBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&SRBLOCK::setNextSrblock, &SRBLOCK::getNextSrblock>,
                set<&SRBLOCK::setDatablock, &SRBLOCK::getDatablock>,
                set<&SRBLOCK::setCycleCount, &SRBLOCK::getCycleCount>,
                set<&SRBLOCK::setInterval, &SRBLOCK::getInterval>,
                set<&SRBLOCK::setSyncType, &SRBLOCK::getSyncType>,
                setFlag<&SRBLOCK::setValidationBytesFlag, &SRBLOCK::isValidationBytesFlag>});
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_BUILD_DATABLOCKS_H_
