#include "decoded_json.h"

#include <utility>

#include "../bus/bus_frame.h"
#include "json.h"

namespace mdf_reader {

Json decodedAsJson(const Decoded& decoded) {
  Json ids = Json::array();
  for (const UnknownId& id : decoded.unknown) {
    BusFrame frame;
    frame.id = id.id;
    frame.is_extended = id.is_extended;
    ids.push_back({{"bus", id.bus},
                   {"id", id.id},
                   {"hex", idText(frame)},
                   {"extended", id.is_extended},
                   {"frames", id.frames}});
  }
  return {{"frames", decoded.frames},
          {"groups", decoded.groups},
          {"unknown_frames", decoded.unknown_frames},
          {"unknown", std::move(ids)},
          {"all_unknown_listed", decoded.is_complete},
          {"other_frames", decoded.other_frames}};
}

}  // namespace mdf_reader
