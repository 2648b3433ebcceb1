// What a measurement has besides its signals: attached files, events during the recording, and who
// wrote it.

#include <fstream>

#include "append.h"

using namespace mdf_v4_10;

static LINK appendXml(std::ostream& file, const std::string& xml) {
  return append(file, MDBLOCK(xml.data(), xml.size()));
}

/// An event at a time since the start, given in milliseconds.
static EVBLOCK eventAt(EVBLOCK::MDF_EV_TYPE_t type, EVBLOCK::MDF_EV_RANGETYPE_t range,
                       EVBLOCK::MDF_EV_CAUSETYPE_t cause, INT64 milliseconds) {
  EVBLOCK event(type, EVBLOCK::EV_SYNCTYPE_SECONDS, range, cause);
  event.setSyncBaseValue(milliseconds);
  event.setSyncBaseFactor(0.001);  // the base value times this is in seconds
  return event;
}

int main() {
  std::ofstream file("attachments.mf4", std::ios::binary);
  HDBLOCK hd(0, 0, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  file << IDBLOCK("example ") << hd;

  // The file history's first entry, number 0: the creator index of what it made.
  FHBLOCK history(appendXml(file,
                            "<FHcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>created</TX>"
                            "<tool_id>example</tool_id><tool_vendor>nobody</tool_vendor>"
                            "<tool_version>1.0</tool_version></FHcomment>"),
                  1700000000000000000, 0, 0);
  hd.setFHFirstblock(append(file, history));

  // One attachment holds its file's bytes, the other says where the file is.
  ATBLOCK outside;
  outside.setTXFilenameBlock(appendText(file, "camera/front.mp4"));
  outside.setTXMimetypeBlock(appendText(file, "video/mp4"));
  const std::string settings = "rate = 100\nfilter = on\n";
  ATBLOCK inside(settings.data(), settings.size());  // flagged as embedded
  inside.setOriginalSize(settings.size());
  inside.setNextATBlock(append(file, outside));
  inside.setTXFilenameBlock(appendText(file, "settings.ini"));
  inside.setTXMimetypeBlock(appendText(file, "text/plain"));
  const LINK settings_at = append(file, inside);
  hd.setATFirstblock(settings_at);

  // A signal that the events are about.
  CNBLOCK cn(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
             CNBLOCK::CN_DATATYPE_UINT_LE, 0, appendText(file, "speed"), 0);
  cn.setBitCount(8);
  const LINK cg_at = append(file, CGBLOCK(0, CGBLOCK::no_flag, 0, append(file, cn), 0, 0, 0, 0,
                                          CGBLOCK::CG_PATHSEPARATOR_NONE, 1, 0));
  hd.setDGFirstblock(append(file, DGBLOCK(0, cg_at, 0, DGBLOCK::DG_WITHOUT)));

  // A trigger, and a marked range: its end links to its beginning.
  EVBLOCK end =
      eventAt(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_RANGETYPE_END, EVBLOCK::EV_CAUSETYPE_USER, 4500);
  EVBLOCK begin = eventAt(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_RANGETYPE_BEGIN,
                          EVBLOCK::EV_CAUSETYPE_USER, 2000);
  begin.setTXNameBlock(appendText(file, "overtaking"));
  begin.addScope(cg_at);  // without a scope an event is about the whole file
  const LINK begin_at = append(file, begin);
  end.setEVRangeBlock(begin_at);
  begin.setNextEVBlock(append(file, end));
  rewrite(file, begin_at, begin);
  EVBLOCK trigger = eventAt(EVBLOCK::EV_TYPE_START_RECORDING_TRIGGER, EVBLOCK::EV_RANGETYPE_POINT,
                            EVBLOCK::EV_CAUSETYPE_SCRIPT, 0);
  trigger.setNextEVBlock(begin_at);
  trigger.addAttachment(settings_at);
  hd.setEVFirstblock(append(file, trigger));

  rewrite(file, IDBLOCK::IDBLOCK_SIZE, hd);
  return file.flush() ? 0 : 1;
}
