#include "reader/summary/names.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace mdf_reader;

namespace {

/// The names of values from 0 on, each after the one before and a comma.
std::string namesOf(const std::function<std::string(unsigned)>& name, unsigned count) {
  std::string text;
  for (unsigned i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ", ") + name(i);
  }
  return text;
}

TEST(Names, OfEachEnumeration) {
  EXPECT_EQ(namesOf(channelTypeName, 8),
            "fixed, variable length, master, virtual master, synchronization, maximum length, "
            "virtual, type 7");
  EXPECT_EQ(namesOf(syncTypeName, 6), "none, time, angle, distance, index, type 5");
  EXPECT_EQ(namesOf(dataTypeName, 18),
            "uint LE, uint BE, int LE, int BE, real LE, real BE, string Latin-1, string UTF-8, "
            "string UTF-16 LE, string UTF-16 BE, byte array, MIME sample, MIME stream, CANopen "
            "date, CANopen time, complex LE, complex BE, type 17");
  EXPECT_EQ(namesOf(conversionTypeName, 12),
            "identity, linear, rational, formula, table, interpolated, table, range table, value "
            "to text, range to text, text to value, text to text, type 11");
  EXPECT_EQ(namesOf(sourceTypeName, 7), "other, ECU, bus, I/O, tool, user, type 6");
  EXPECT_EQ(namesOf(busTypeName, 10),
            "none, other, CAN, LIN, MOST, FlexRay, K-Line, Ethernet, USB, type 9");
  EXPECT_EQ(namesOf(eventTypeName, 8),
            "recording, recording interrupt, acquisition interrupt, start recording trigger, stop "
            "recording trigger, trigger, marker, type 7");
  EXPECT_EQ(namesOf(eventSyncTypeName, 6), "type 0, s, rad, m, index, type 5");
  EXPECT_EQ(namesOf(eventRangeName, 4), "point, begin, end, type 3");
  EXPECT_EQ(namesOf(eventCauseName, 6), "other, error, tool, script, user, type 5");
  EXPECT_EQ(namesOf(hierarchyTypeName, 10),
            "group, function, structure, map list, input, output, local, defined calibration, "
            "referenced calibration, type 9");
}

TEST(Names, OfClocks) {
  EXPECT_EQ(timeClassName(0), "local PC");
  EXPECT_EQ(timeClassName(10), "external source");
  EXPECT_EQ(timeClassName(16), "external absolute");
  EXPECT_EQ(timeClassName(1), "class 1");
}

}  // namespace
