#ifndef MDF_TOOLS_VIEWING_FINDING_JSON_H_
#define MDF_TOOLS_VIEWING_FINDING_JSON_H_

#include "reader/blocks/finding.h"
#include "reader/summary/json.h"

namespace mdf_tools {

/// A finding as the page shows it.
inline mdf_reader::Json findingAsJson(const mdf_reader::Finding& finding) {
  const mdf_reader::CodeText& code = mdf_reader::textOf(finding.code);
  return {{"code", code.word},
          {"severity", mdf_reader::severityWord(code.severity)},
          {"offset", finding.offset},
          {"path", finding.path},
          {"text", finding.sentence}};
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_FINDING_JSON_H_
