#ifndef MDF_TOOLS_PICTURES_EVENT_MARKS_H_
#define MDF_TOOLS_PICTURES_EVENT_MARKS_H_

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "reader/model/events.h"

namespace mdf_tools {

using namespace mdf_reader;

/// An event on the axis of a picture.
struct EventMark {
  std::string name;
  unsigned axis = 1;  ///< its synchronisation type
  double from = 0;
  double to = 0;       ///< the same for a point; infinity for a range that does not end
  std::string zone{};  ///< of the clock that its positions are by, if they are
  bool isRange() const { return to != from; }
};

/// Events as marks in their order: those that begin a range have that of its end, and those that
/// end it are no marks of their own. Events without a position are left out.
/// @param prefix stands in front of their names.
std::vector<EventMark> marksOf(const std::vector<Event>& events, const std::string& prefix = "");

/// Where the name of an event stands, above a panel.
struct Flag {
  std::size_t row = 0;           ///< from 0 on, upwards
  bool is_left_of_pole = false;  ///< near the right edge of the picture
};

/// Places names beside their poles, in rows, so that neither other names nor other poles run
/// through them. Nothing for those without room.
/// @param poles their horizontal positions.
/// @param widths of the names.
/// @param right the edge that no name goes beyond, if it has room on the left of its pole.
std::vector<std::optional<Flag>> placeFlags(const std::vector<double>& poles,
                                            const std::vector<double>& widths, double right,
                                            std::size_t most_rows);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_EVENT_MARKS_H_
