// Two channel groups whose records arrive mixed, and a channel for each type of conversion.

#include <fstream>
#include <sstream>
#include <utility>
#include <vector>

#include "append.h"

using namespace mdf_v4_10;
using Signals = std::vector<std::pair<std::string, CCBLOCK>>;

/// A time in milliseconds and the signals, which all read the same bytes after it, each in its own
/// way.
static LINK appendChannels(std::ostream& file, const Signals& signals,
                           CNBLOCK::MDF_CN_DATATYPES_t type, UINT32 bits) {
  LINK next = 0;  // a channel links to the next one, which therefore comes first
  for (auto signal = signals.rbegin(); signal != signals.rend(); ++signal) {
    CNBLOCK cn(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE, type, next,
               appendText(file, signal->first), 0);
    cn.setConversionCcblock(append(file, signal->second));
    cn.setByteOffset(4);
    cn.setBitCount(bits);
    next = append(file, cn);
  }
  CCBLOCK seconds(CCBLOCK::CC_CONVTYPE_LINEAR);
  seconds.setupLinearConversion(0, 0.001);
  CNBLOCK time(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
               CNBLOCK::CN_DATATYPE_UINT_LE, next, appendText(file, "time"), 0);
  time.setConversionCcblock(append(file, seconds));
  time.setUnitblock(appendText(file, "s"));
  time.setBitCount(32);
  return append(file, time);
}

int main() {
  std::ofstream file("conversions.mf4", std::ios::binary);
  HDBLOCK hd(0, 0, 1700000000000000000, 60, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << hd;

  // Texts stand in blocks of their own. A table of texts is sorted by their places in the file.
  const LINK off = appendText(file, "off"), run = appendText(file, "run"),
             fault = appendText(file, "fault"), formula = appendText(file, "X*X+1");
  Signals numbers, texts;
  const auto setUp = [](Signals& signals, const char* name) -> CCBLOCK& {
    return signals.emplace_back(name, CCBLOCK(CCBLOCK::CC_CONVTYPE_EQUAL)).second;
  };
  setUp(numbers, "equal").setupEqualConversion();
  setUp(numbers, "linear").setupLinearConversion(-40, 0.5);
  setUp(numbers, "rational").setupRationalConversion(0, 0, 100, 0, 1, 1);
  setUp(numbers, "algebraic").setupAlgebraicConversion(formula);
  setUp(numbers, "interpolated").setupV2VTABConversion(true, {{0, 0}, {4, 400}});
  setUp(numbers, "table").setupV2VTABConversion(false, {{0, 0}, {4, 400}});
  setUp(numbers, "ranges").setupVRANGE2VTABConversion({{{0, 1}, 10}, {{2, 3}, 20}}, -1);
  setUp(numbers, "text").setupV2TEXT_SCALETABConversion({{0, off}, {1, run}}, fault);
  setUp(numbers, "range_text")
      .setupVRANGE2TEXT_SCALETABConversion({{{0, 1}, off}, {{2, 3}, run}}, fault);
  setUp(texts, "text_number").setupTEXT2VTABConversion({{off, 0}, {run, 1}}, -1);
  setUp(texts, "text_text").setupTEXT2TEXTTABConversion({{off, run}, {run, off}}, fault);

  // A record id, one byte before each record, tells which group the record is of.
  const LINK number_cn = appendChannels(file, numbers, CNBLOCK::CN_DATATYPE_UINT_LE, 8);
  const LINK text_cn = appendChannels(file, texts, CNBLOCK::CN_DATATYPE_STRING_UTF8, 24);
  const CGBLOCK second(0, CGBLOCK::no_flag, 2, text_cn, appendText(file, "texts"), 0, 0, 5,
                       CGBLOCK::CG_PATHSEPARATOR_NONE, 4 + 3, 0);
  const LINK numbers_at = appendText(file, "numbers");
  const CGBLOCK first(append(file, second), CGBLOCK::no_flag, 1, number_cn, numbers_at, 0, 0, 5,
                      CGBLOCK::CG_PATHSEPARATOR_NONE, 4 + 1, 0);
  std::ostringstream records;
  for (UINT32 i = 0; i < 5; ++i) {
    records << IDTSDATABLOCK(1, 100 * i) << VALUEDATABLOCK(i, 1);
    records << IDTSDATABLOCK(2, 100 * i + 50) << (i % 2 == 0 ? "off" : "run");
  }
  const std::string bytes = records.str();
  const DTBLOCK dt(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  const LINK first_at = append(file, first), data_at = append(file, dt);
  hd.setDGFirstblock(append(file, DGBLOCK(0, first_at, data_at, DGBLOCK::DG_UINT8)));
  rewrite(file, IDBLOCK::IDBLOCK_SIZE, hd);
  return file.flush() ? 0 : 1;
}
