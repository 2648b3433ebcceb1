#include "ccblock.h"

namespace mdf_v4_10 {

void CCBLOCK::startSetup(MDF_CC_TYPE_t type) {
  setConversionType(type);
  cc_refs.clear();
  cc_vals.clear();
}

void CCBLOCK::setupEqualConversion() { startSetup(CC_CONVTYPE_EQUAL); }

void CCBLOCK::setupLinearConversion(REAL _p1, REAL _p2) {
  startSetup(CC_CONVTYPE_LINEAR);
  cc_vals = {_p1, _p2};
}

void CCBLOCK::setupRationalConversion(REAL _p1, REAL _p2, REAL _p3, REAL _p4, REAL _p5, REAL _p6) {
  startSetup(CC_CONVTYPE_RATIONAL);
  cc_vals = {_p1, _p2, _p3, _p4, _p5, _p6};
}

void CCBLOCK::setupAlgebraicConversion(LINK _algebraicTxblock) {
  startSetup(CC_CONVTYPE_ALGEBRAIC);
  addReference(_algebraicTxblock);
}

void CCBLOCK::setupV2VTABConversion(bool _withInterpolation,
                                    const std::map<REAL, REAL>& _keyValuePairs) {
  startSetup(_withInterpolation ? CC_CONVTYPE_V2VTAB_INTERPOL : CC_CONVTYPE_V2VTAB_NOINTERPOL);
  for (const auto& [key, value] : _keyValuePairs) {
    addValue(key);
    addValue(value);
  }
}

void CCBLOCK::setupVRANGE2VTABConversion(
    const std::map<std::pair<REAL, REAL>, REAL>& _rangeValuePairs, REAL _defaultValue) {
  startSetup(CC_CONVTYPE_VRANGE2VTAB);
  for (const auto& [range, value] : _rangeValuePairs) {
    addValue(range.first);
    addValue(range.second);
    addValue(value);
  }
  addValue(_defaultValue);
}

void CCBLOCK::setupV2TEXT_SCALETABConversion(const std::map<REAL, LINK>& _keyLinkPairs,
                                             LINK _defaultLink) {
  startSetup(CC_CONVTYPE_V2TEXT_SCALETAB);
  for (const auto& [key, link] : _keyLinkPairs) {
    addValue(key);
    addReference(link);
  }
  addReference(_defaultLink);
}

void CCBLOCK::setupVRANGE2TEXT_SCALETABConversion(
    const std::map<std::pair<REAL, REAL>, LINK>& _rangeLinkPairs, LINK _defaultLink) {
  startSetup(CC_CONVTYPE_VRANGE2TEXT_SCALETAB);
  for (const auto& [range, link] : _rangeLinkPairs) {
    addValue(range.first);
    addValue(range.second);
    addReference(link);
  }
  addReference(_defaultLink);
}

void CCBLOCK::setupTEXT2VTABConversion(const std::map<LINK, REAL>& _keyLinkPairs,
                                       REAL _defaultValue) {
  startSetup(CC_CONVTYPE_TEXT2VTAB);
  for (const auto& [key_link, value] : _keyLinkPairs) {
    addReference(key_link);
    addValue(value);
  }
  addValue(_defaultValue);
}

void CCBLOCK::setupTEXT2TEXTTABConversion(const std::map<LINK, LINK>& _keyLinkPairs,
                                          LINK _defaultLink) {
  startSetup(CC_CONVTYPE_TEXT2TEXTTAB);
  for (const auto& [key_link, result_link] : _keyLinkPairs) {
    addReference(key_link);
    addReference(result_link);
  }
  addReference(_defaultLink);
}

}  // namespace mdf_v4_10
