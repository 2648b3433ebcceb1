#ifndef MDF_FUZZ_BUILD_DESCRIPTION_H_
#define MDF_FUZZ_BUILD_DESCRIPTION_H_

#include <map>
#include <utility>

#include "changes.h"

/// How an input makes and changes each of the blocks that describe records.
namespace mdf_fuzz {

inline DGBLOCK make(Input& input, const DGBLOCK* /*type*/) {
  return {input.take<LINK>(), input.take<LINK>(), input.take<LINK>(),
          input.take<DGBLOCK::MDF_DG_REC_ID_SIZE_t>()};
}
inline void change(DGBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&DGBLOCK::setNextDgblock, &DGBLOCK::getNextDgblock>,
                set<&DGBLOCK::setFirstCgblock, &DGBLOCK::getFirstCgblock>,
                set<&DGBLOCK::setDatablock, &DGBLOCK::getDatablock>,
                set<&DGBLOCK::setComment, &DGBLOCK::getComment>,
                set<&DGBLOCK::setRecordIdSize, &DGBLOCK::getRecordIdSize>});
}

inline void setUpGroup(CGBLOCK& block, Input& input) { call(block, &CGBLOCK::setup, input); }
inline CGBLOCK make(Input& input, const CGBLOCK* /*type*/) {
  return {input.take<LINK>(),
          input.take<CGBLOCK::CG_FLAGS_t>(),
          input.take<UINT64>(),
          input.take<LINK>(),
          input.take<LINK>(),
          input.take<LINK>(),
          input.take<LINK>(),
          input.take<UINT64>(),
          input.take<CGBLOCK::CG_PATHSEPARATOR_t>(),
          input.take<UINT32>(),
          input.take<UINT32>()};
}
inline void countCycle(CGBLOCK& block, Input& /*input*/) {
  const UINT64 count = block.getCycleCount();
  block.incCycleCount();
  expect(block.getCycleCount() == count + 1, "one cycle more");
}
inline void change(CGBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {setUpGroup, countCycle, set<&CGBLOCK::setNextCgblock, &CGBLOCK::getNextCgblock>,
       set<&CGBLOCK::setFirstCnblock, &CGBLOCK::getFirstCnblock>,
       set<&CGBLOCK::setAcqTxNameblock, &CGBLOCK::getAcqTxNameblock>,
       set<&CGBLOCK::setAcqSourceSiblock, &CGBLOCK::getAcqSourceSiblock>,
       set<&CGBLOCK::setFirstSrblock, &CGBLOCK::getFirstSrblock>,
       set<&CGBLOCK::setComment, &CGBLOCK::getComment>,
       set<&CGBLOCK::setRecordId, &CGBLOCK::getRecordId>,
       set<&CGBLOCK::setCycleCount, &CGBLOCK::getCycleCount>,
       set<&CGBLOCK::setPathSeparator, &CGBLOCK::getPathSeparator>,
       set<&CGBLOCK::setDataBytes, &CGBLOCK::getDataBytes>,
       set<&CGBLOCK::setInvalidBytes, &CGBLOCK::getInvalidBytes>,
       setFlag<&CGBLOCK::setVLSDChannelGroup, &CGBLOCK::isVLSDChannelGroup>,
       setFlag<&CGBLOCK::setBusEventGroup, &CGBLOCK::isBusEventGroup>,
       setFlag<&CGBLOCK::setPlainBusEventChannelGroup, &CGBLOCK::isPlainBusEventChannelGroup>});
}

inline SIBLOCK make(Input& input, const SIBLOCK* /*type*/) {
  return {input.take<SIBLOCK::MDF_SI_SOURCETYPE_t>(), input.take<SIBLOCK::MDF_SI_BUSTYPE_t>(),
          input.take<bool>(), input.take<LINK>(), input.take<LINK>()};
}
inline void change(SIBLOCK& block, Input& input) {
  changeOneWay(block, input,
               {set<&SIBLOCK::setNameTxblock, &SIBLOCK::getNameTxblock>,
                set<&SIBLOCK::setPathTxblock, &SIBLOCK::getPathTxblock>,
                set<&SIBLOCK::setComment, &SIBLOCK::getComment>,
                set<&SIBLOCK::setSourceType, &SIBLOCK::getSourceType>,
                set<&SIBLOCK::setBusType, &SIBLOCK::getBusType>,
                setOrClear<&SIBLOCK::setSimulatedSource, &SIBLOCK::isSimulatedSource>});
}

inline CNBLOCK make(Input& input, const CNBLOCK* /*type*/) {
  return {input.take<CNBLOCK::MDF_CN_CHANNELTYPE_t>(),
          input.take<CNBLOCK::MDF_CN_SYNCTYPE_t>(),
          input.take<CNBLOCK::MDF_CN_DATATYPES_t>(),
          input.take<LINK>(),
          input.take<LINK>(),
          input.take<LINK>()};
}
inline void setUpXAxis(CNBLOCK& block, Input& input) {
  call(block, &CNBLOCK::setupDefaultXAxis, input);
  expect(block.isDefaultXAxis(), "the default X axis");
}
inline void setUpChannel(CNBLOCK& block, Input& input) {
  call(block, &CNBLOCK::setup, input);
  expect(block.getInvalidBitPos() == 0, "no invalidation bit position after a setup");
}
inline void change(CNBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {add<&CNBLOCK::cc_attachements, &CNBLOCK::addAttachement>,
       remove<&CNBLOCK::cc_attachements, &CNBLOCK::removeAttachementeAt>,
       setUpXAxis,
       setUpChannel,
       set<&CNBLOCK::setNextCnblock, &CNBLOCK::getNextCnblock>,
       set<&CNBLOCK::setCompositionblock, &CNBLOCK::getCompositionblock>,
       set<&CNBLOCK::setNameTxblock, &CNBLOCK::getNameTxblock>,
       set<&CNBLOCK::setSourceSiblock, &CNBLOCK::getSourceSiblock>,
       set<&CNBLOCK::setConversionCcblock, &CNBLOCK::getConversionCcblock>,
       set<&CNBLOCK::setDatablock, &CNBLOCK::getDatablock>,
       set<&CNBLOCK::setUnitblock, &CNBLOCK::getUnitblock>,
       set<&CNBLOCK::setCommentblock, &CNBLOCK::getCommentblock>,
       set<&CNBLOCK::setChannelType, &CNBLOCK::getChannelType>,
       set<&CNBLOCK::setSyncType, &CNBLOCK::getSyncType>,
       set<&CNBLOCK::setDataType, &CNBLOCK::getDataType>,
       set<&CNBLOCK::setBitOffset, &CNBLOCK::getBitOffset>,
       set<&CNBLOCK::setByteOffset, &CNBLOCK::getByteOffset>,
       set<&CNBLOCK::setBitCount, &CNBLOCK::getBitCount>,
       set<&CNBLOCK::setInvalidBitPos, &CNBLOCK::getInvalidBitPos>,
       set<&CNBLOCK::setPrecision, &CNBLOCK::getPrecision>,
       set<&CNBLOCK::setValueRangeMin, &CNBLOCK::getValueRangeMin>,
       set<&CNBLOCK::setValueRangeMax, &CNBLOCK::getValueRangeMax>,
       set<&CNBLOCK::setLimitMin, &CNBLOCK::getLimitMin>,
       set<&CNBLOCK::setLimitMax, &CNBLOCK::getLimitMax>,
       set<&CNBLOCK::setLimitExtendedMin, &CNBLOCK::getLimitExtendedMin>,
       set<&CNBLOCK::setLimitExtendedMax, &CNBLOCK::getLimitExtendedMax>,
       setFlag<&CNBLOCK::setInvalidFlag, &CNBLOCK::isInvalid>,
       setFlag<&CNBLOCK::setInvalidationBitFlag, &CNBLOCK::isInvalidationBit>,
       setFlag<&CNBLOCK::setPrecisionValidFlag, &CNBLOCK::isPrecisionValid>,
       setFlag<&CNBLOCK::setValueRangeValidFlag, &CNBLOCK::isValueRangeValid>,
       setFlag<&CNBLOCK::setLimitRangeValidFlag, &CNBLOCK::isLimitRangeValid>,
       setFlag<&CNBLOCK::setExtendedLimitRangeValidFlag, &CNBLOCK::isExtendedLimitRangeValid>,
       setFlag<&CNBLOCK::setDiscreteValueFlag, &CNBLOCK::isDiscreteValue>,
       setFlag<&CNBLOCK::setCalibrationFlag, &CNBLOCK::isCalibration>,
       setFlag<&CNBLOCK::setCalculatedFlag, &CNBLOCK::isCalculated>,
       setFlag<&CNBLOCK::setVirtualFlag, &CNBLOCK::isVirtual>,
       setFlag<&CNBLOCK::setBusEventFlag, &CNBLOCK::isBusEvent>,
       setFlag<&CNBLOCK::setMonotonousFlag, &CNBLOCK::isMonotonous>,
       setFlag<&CNBLOCK::setDefaultXAxisFlag, &CNBLOCK::isDefaultXAxis>});
}

inline CCBLOCK make(Input& input, const CCBLOCK* /*type*/) {
  return CCBLOCK(input.take<CCBLOCK::MDF_CC_TYPE_t>());
}
/// A number that a table can be ordered by.
inline REAL takeKey(Input& input) {
  const auto key = input.take<REAL>();
  return key == key ? key : 0;
}
template <class Value>
std::map<std::pair<REAL, REAL>, Value> takeRanges(Input& input) {
  std::map<std::pair<REAL, REAL>, Value> table;
  for (UINT8 count = input.take<UINT8>() % 8; count > 0; --count) {
    const REAL minimum = takeKey(input);
    const REAL maximum = takeKey(input);
    table[{minimum, maximum}] = input.take<Value>();
  }
  return table;
}
template <class Value>
std::map<REAL, Value> takeKeys(Input& input) {
  std::map<REAL, Value> table;
  for (const auto& [range, value] : takeRanges<Value>(input)) {
    table[range.first] = value;
  }
  return table;
}
template <class Value>
std::map<LINK, Value> takeTexts(Input& input) {
  std::map<LINK, Value> table;
  for (UINT8 count = input.take<UINT8>() % 8; count > 0; --count) {
    const auto text = input.take<LINK>();
    table[text] = input.take<Value>();
  }
  return table;
}
inline void expectConversion(const CCBLOCK& block, CCBLOCK::MDF_CC_TYPE_t type,
                             std::size_t references, std::size_t values) {
  expect(block.getConversionType() == type && block.cc_refs.size() == references &&
             block.cc_vals.size() == values,
         "the conversion's type, references and values");
}
inline void setUpFormula(CCBLOCK& block, Input& input) {
  switch (input.take<UINT8>() % 4) {
    case 0:
      block.setupEqualConversion();
      return expectConversion(block, CCBLOCK::CC_CONVTYPE_EQUAL, 0, 0);
    case 1:
      call(block, &CCBLOCK::setupLinearConversion, input);
      return expectConversion(block, CCBLOCK::CC_CONVTYPE_LINEAR, 0, 2);
    case 2:
      call(block, &CCBLOCK::setupRationalConversion, input);
      return expectConversion(block, CCBLOCK::CC_CONVTYPE_RATIONAL, 0, 6);
    default:
      block.setupAlgebraicConversion(input.take<LINK>());
      return expectConversion(block, CCBLOCK::CC_CONVTYPE_ALGEBRAIC, 1, 0);
  }
}
inline void setUpKeyTable(CCBLOCK& block, Input& input) {
  if (input.take<bool>()) {
    const auto table = takeKeys<LINK>(input);
    block.setupV2TEXT_SCALETABConversion(table, input.take<LINK>());
    expectConversion(block, CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB, table.size() + 1, table.size());
    return;
  }
  const auto interpolated = input.take<bool>();
  const auto table = takeKeys<REAL>(input);
  block.setupV2VTABConversion(interpolated, table);
  expectConversion(
      block,
      interpolated ? CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL : CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL,
      0, 2 * table.size());
}
inline void setUpRangeTable(CCBLOCK& block, Input& input) {
  if (input.take<bool>()) {
    const auto table = takeRanges<LINK>(input);
    block.setupVRANGE2TEXT_SCALETABConversion(table, input.take<LINK>());
    expectConversion(block, CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB, table.size() + 1,
                     2 * table.size());
    return;
  }
  const auto table = takeRanges<REAL>(input);
  block.setupVRANGE2VTABConversion(table, input.take<REAL>());
  expectConversion(block, CCBLOCK::CC_CONVTYPE_VRANGE2VTAB, 0, 3 * table.size() + 1);
}
inline void setUpTextTable(CCBLOCK& block, Input& input) {
  if (input.take<bool>()) {
    const auto table = takeTexts<LINK>(input);
    block.setupTEXT2TEXTTABConversion(table, input.take<LINK>());
    expectConversion(block, CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB, 2 * table.size() + 1, 0);
    return;
  }
  const auto table = takeTexts<REAL>(input);
  block.setupTEXT2VTABConversion(table, input.take<REAL>());
  expectConversion(block, CCBLOCK::CC_CONVTYPE_TEXT2VTAB, table.size(), table.size() + 1);
}
inline void change(CCBLOCK& block, Input& input) {
  changeOneWay(
      block, input,
      {setUpFormula, setUpKeyTable, setUpRangeTable, setUpTextTable,
       add<&CCBLOCK::cc_refs, &CCBLOCK::addReference>,
       remove<&CCBLOCK::cc_refs, &CCBLOCK::removeReferenceAtIndex>,
       add<&CCBLOCK::cc_vals, &CCBLOCK::addValue>,
       remove<&CCBLOCK::cc_vals, &CCBLOCK::removeValueAtIndex>,
       set<&CCBLOCK::setNameTxblock, &CCBLOCK::getNameTxblock>,
       set<&CCBLOCK::setUnitblock, &CCBLOCK::getUnitblock>,
       set<&CCBLOCK::setCommentblock, &CCBLOCK::getCommentblock>,
       set<&CCBLOCK::setInverseCcblock, &CCBLOCK::getInverseCcblock>,
       set<&CCBLOCK::setConversionType, &CCBLOCK::getConversionType>,
       set<&CCBLOCK::setPrecision, &CCBLOCK::getPrecision>,
       setFlag<&CCBLOCK::setPrecisionValidFlag, &CCBLOCK::isPrecisionValid>,
       setFlag<&CCBLOCK::setPhysicalValueRangeValidFlag, &CCBLOCK::isPhysicalValueRangeValid>,
       setFlag<&CCBLOCK::setStatusStringFlag, &CCBLOCK::isStatusString>,
       set<&CCBLOCK::setPhysicalValueRangeMin, &CCBLOCK::getPhysicalValueRangeMin>,
       set<&CCBLOCK::setPhysicalValueRangeMax, &CCBLOCK::getPhysicalValueRangeMax>});
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_BUILD_DESCRIPTION_H_
