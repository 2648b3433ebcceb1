#include "markers.h"

#include <utility>

#include "stop_request.h"

namespace mdf_tools {

using mdf_v4_10::EVBLOCK;

void Markers::add(Recorder& recorder, std::int64_t now) {
  if (takeMarkerRequest()) {
    add(recorder, now, {}, EVBLOCK::EV_CAUSETYPE_SCRIPT);
  }
  while (const auto line = lines_.next()) {
    add(recorder, now, std::string(*line), EVBLOCK::EV_CAUSETYPE_USER);
  }
}

/// One without a text, or with one that no file can hold, has a number.
void Markers::add(Recorder& recorder, std::int64_t now, std::string name,
                  mdf_writer::Event::Cause cause) {
  ++count_;
  if (name.empty() || !mdf_writer::isUtf8(name)) {
    name = "marker " + std::to_string(count_);
  }
  mdf_writer::Event event{std::move(name), now};
  event.cause = cause;
  recorder.add(event);
}

}  // namespace mdf_tools
