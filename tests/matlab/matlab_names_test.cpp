#include "matlab/matlab_names.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using mdf_tools::MatlabNames;

namespace {

const std::string long_name(70, 'n');

TEST(MatlabNames, AreValidAndGivenOnce) {
  MatlabNames names;
  std::vector<std::pair<std::string, std::string>> given;
  const std::vector<std::pair<std::string, std::string>> expected{
      {"rpm", "rpm"},
      {"RPM_2", "RPM_2"},
      {"engine.rpm", "engine_rpm"},
      {"v[0][12]", "v_0_12"},
      {"v[0].member", "v_0_member"},
      {"rpm", "rpm_2"},
      {"rpm (2)", "rpm_2_2"},
      {"a__b", "a__b"},
      {"2nd gear", "x2nd_gear"},
      {"_hidden", "x_hidden"},
      {"Öl °C", "x_l_C"},
      {"速度", "x"},
      {"", "x_2"},
      {"while", "xwhile"},
      {"end!", "xend"},
      {"While", "While"},
      {std::string("zero\0byte", 9), "zero_byte"},
      {long_name, std::string(63, 'n')},
      {long_name, std::string(61, 'n') + "_2"},
  };
  for (const auto& each : expected) {
    given.emplace_back(each.first, names.add(each.first));
  }
  EXPECT_EQ(given, expected);
}

}  // namespace
