/// The reader library: files of MDF 4 by any program, finished or not, whole or damaged.
///
/// Measurement opens a file. What its blocks say comes as plain values: DataGroup, ChannelGroup,
/// Channel, Attachment, Event, HierarchyEntry, HistoryEntry. Values come as columns,
/// in batches. What is wrong with a file becomes a Finding; what cannot be read at all throws
/// Unreadable. Functions in these headers that take an InputFile are the library's own.
#ifndef MDF_READER_MDF_READER_H_
#define MDF_READER_MDF_READER_H_

#include "measurement/measurement.h"

#endif  // MDF_READER_MDF_READER_H_
