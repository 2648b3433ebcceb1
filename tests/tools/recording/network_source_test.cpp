#include "recording/network_source.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

const std::string heading =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop "
    "fifo colls carrier compressed\n";

std::string interfaceLine(const std::string& name, int from) {
  std::string line = name + ":";
  for (int i = 0; i < 16; ++i) {
    line += " " + std::to_string(from + i);
  }
  return line + "\n";
}

TEST(NetworkSource, HasBytesAndPacketsOfEachInterface) {
  const ScratchFolder root;
  root.write("proc/net/dev", heading + "    lo: 1 2 0 0 0 0 0 0 3 4 0 0 0 0 0 0\n" +
                                 "eth0.7:18446744073709551615 6 0 0 0 0 0 0 7 8 0 0 0 0 0 0\n");
  const NetworkSource source(root.path());
  EXPECT_EQ(linesOf(source.signals()),
            "net_lo_rx_bytes [B] unsigned8\n"
            "net_lo_rx_packets [] unsigned8\n"
            "net_lo_tx_bytes [B] unsigned8\n"
            "net_lo_tx_packets [] unsigned8\n"
            "net_eth0.7_rx_bytes [B] unsigned8\n"
            "net_eth0.7_rx_packets [] unsigned8\n"
            "net_eth0.7_tx_bytes [B] unsigned8\n"
            "net_eth0.7_tx_packets [] unsigned8\n");
  EXPECT_EQ(valuesOf(source),
            "net_lo_rx_bytes 1\nnet_lo_rx_packets 2\nnet_lo_tx_bytes 3\nnet_lo_tx_packets 4\n"
            "net_eth0.7_rx_bytes 18446744073709551615\nnet_eth0.7_rx_packets 6\n"
            "net_eth0.7_tx_bytes 7\nnet_eth0.7_tx_packets 8\n");
}

TEST(NetworkSource, InterfaceThatVanishesKeepsItsLastValuesAndOneThatAppearsIsPassedOver) {
  const ScratchFolder root;
  root.write("proc/net/dev", heading + interfaceLine("a", 100) + interfaceLine("b", 200));
  NetworkSource source(root.path());
  root.write("proc/net/dev", heading + interfaceLine("c", 300) + interfaceLine("b", 400));
  source.sample(0);
  EXPECT_EQ(valuesOf(source),
            "net_a_rx_bytes 100\nnet_a_rx_packets 101\nnet_a_tx_bytes 108\nnet_a_tx_packets 109\n"
            "net_b_rx_bytes 400\nnet_b_rx_packets 401\nnet_b_tx_bytes 408\nnet_b_tx_packets 409\n");
}

TEST(NetworkSource, PassesOverMalformedLines) {
  const ScratchFolder root;
  root.write("proc/net/dev", heading + "a: 1 2 3 4 5 6 7 8 9\n" + "b: 1 2 3 4 5 6 7 8 9 x\n" +
                                 ": 1 2 3 4 5 6 7 8 9 10\n" + "c 1 2 3 4 5 6 7 8 9 10\n" + "\n" +
                                 "d: 1 2 3 4 5 6 7 8 9 10");
  NetworkSource source(root.path());
  const std::string expected =
      "net_d_rx_bytes 1\nnet_d_rx_packets 2\nnet_d_tx_bytes 9\nnet_d_tx_packets 10\n";
  EXPECT_EQ(valuesOf(source), expected);
  root.write("proc/net/dev", "d: 5 6 7");
  source.sample(0);
  EXPECT_EQ(valuesOf(source), expected);
}

}  // namespace
