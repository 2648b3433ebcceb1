#ifndef MDF_FUZZ_CONTENTS_H_
#define MDF_FUZZ_CONTENTS_H_

#include "mdf_v4_10.h"
#include "reading_oracle/expected_reading.h"

namespace mdf_fuzz {

using namespace mdf_v4_10;
using mdf_tests::oracle::Contents;

/// What every class holds, except the fixed fields.
Contents frameOf(const GENERALBLOCK& block);

/// Adds what the writer puts after links and fixed fields, as it stands in the block's lists. A
/// block of data is written without its links.
inline void addLists(const GENERALBLOCK& /*block*/, Contents& /*contents*/) {}
void addLists(const TXBLOCK& block, Contents& contents);
void addLists(const MDBLOCK& block, Contents& contents);
void addLists(const DTBLOCK& block, Contents& contents);
void addLists(const RDBLOCK& block, Contents& contents);
void addLists(const SDBLOCK& block, Contents& contents);
void addLists(const DZBLOCK& block, Contents& contents);
void addLists(const ATBLOCK& block, Contents& contents);
void addLists(const CHBLOCK& block, Contents& contents);
void addLists(const EVBLOCK& block, Contents& contents);
void addLists(const CNBLOCK& block, Contents& contents);
void addLists(const CCBLOCK& block, Contents& contents);
void addLists(const DLBLOCK& block, Contents& contents);

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_CONTENTS_H_
