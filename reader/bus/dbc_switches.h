#ifndef MDF_READER_BUS_DBC_SWITCHES_H_
#define MDF_READER_BUS_DBC_SWITCHES_H_

#include <vector>

#include "bus_database.h"
#include "dbc_messages.h"
#include "text_faults.h"

namespace mdf_reader {

/// Finds the switch of each of a message's signals that are not always there. Signals without one
/// are reported; they and those that are to be left out are removed.
void resolveSwitches(std::vector<BusSignal>& signals, std::vector<DbcSignalNotes>& notes,
                     TextFaults& faults);

}  // namespace mdf_reader

#endif  // MDF_READER_BUS_DBC_SWITCHES_H_
