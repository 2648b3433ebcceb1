#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/recorded_output.h"
#include "writer/mdf_writer.h"

namespace mdf_tests {
namespace {

using mdf_writer::ChannelPlan;
using mdf_writer::Conversion;
using mdf_writer::Group;
using mdf_writer::Plan;
using CN = mdf_v4_10::CNBLOCK;
using CC = mdf_v4_10::CCBLOCK;

ChannelPlan field(const std::string& name, ChannelPlan::DataType type, std::uint32_t byte_offset,
                  std::uint32_t bits, std::uint8_t bit_offset = 0) {
  ChannelPlan plan;
  plan.name = name;
  plan.type = type;
  plan.byte_offset = byte_offset;
  plan.bit_offset = bit_offset;
  plan.bits = bits;
  return plan;
}

struct Wrong {
  std::string fault;  ///< after "group "g": "
  std::function<void(Group&)> add;
};

/// A channel of texts or numbers with a conversion.
Wrong conversion(const std::string& fault, Conversion conversion, bool of_text = false) {
  return {"channel \"c\" has a conversion " + fault, [=](Group& group) {
            if (of_text) {
              group.addText("c", 4, conversion);
            } else {
              group.addChannel<double>("c", "", conversion);
            }
          }};
}

TEST(Plans, ThatAreWrongAreRefusedWithASentence) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Wrong> wrongs = {
      {"a channel has no name", [](Group& g) { g.addChannel<float>(""); }},
      {"channel \"\xff\" has a name, a unit, a comment or a source that is not UTF-8",
       [](Group& g) { g.addChannel<float>("\xff"); }},
      {"channel \"c\" has a name, a unit, a comment or a source that is not UTF-8",
       [](Group& g) { g.describe(g.addChannel<float>("c")).source.path = "\xff"; }},
      {"its comment or its source is not UTF-8", [](Group& g) { g.source.name = "\xff"; }},
      {"two channels are named \"a\"",
       [](Group& g) {
         g.addChannel<float>("a");
         g.addText("a");
       }},
      {"channel \"c\" has no bits", [](Group& g) { g.addBits<int>("c", 0); }},
      {"channel \"c\" has no bits", [](Group& g) { g.addText("c", 0); }},
      {"channel \"c\" is an integer of 65 bits", [](Group& g) { g.addBits<int>("c", 33); }},
      {"channel \"c\" is a floating-point number of 24 bits",
       [](Group& g) { g.addField(field("c", CN::CN_DATATYPE_FLOAT_LE, 8, 24)); }},
      {"channel \"c\" begins at bit 8 of a byte",
       [](Group& g) { g.addField(field("c", CN::CN_DATATYPE_UINT_LE, 8, 8, 8)); }},
      {"channel \"c\" does not fill whole bytes",
       [](Group& g) { g.addField(field("c", CN::CN_DATATYPE_BYTEARRAY, 8, 12)); }},
      {"channels \"time\" and \"c\" overlap",
       [](Group& g) { g.addField(field("c", CN::CN_DATATYPE_UINT_LE, 7, 8)); }},
      {"channels \"a\" and \"b\" overlap",
       [](Group& g) {
         g.addField(field("b", CN::CN_DATATYPE_UINT_LE, 9, 4, 3));
         g.addField(field("a", CN::CN_DATATYPE_UINT_LE, 8, 12));
       }},
      {"channel \"c\" has no bits", [](Group& g) { g.addStructure("c", {}); }},
      {"structure \"c\" has no members, or some that it does not hold",
       [](Group& g) {
         g.addStructure("c", {&g, 0});
       }},
      {"structure \"c\" has no members, or some that it does not hold",
       [](Group& g) {
         ChannelPlan plan = field("c", CN::CN_DATATYPE_BYTEARRAY, 8, 8);
         plan.first_member = g.addChannel<std::uint16_t>("a").index;
         g.addField(plan);
       }},
      {"structure \"c\" has no members, or some that it does not hold",
       [](Group& g) {
         g.addStructure("b", g.addChannel<std::uint16_t>("a"));
         ChannelPlan plan = field("c", CN::CN_DATATYPE_BYTEARRAY, 8, 16);
         plan.first_member = 2;
         g.addField(plan);
       }},
      {"channel \"c\" is an array of no or too many elements",
       [](Group& g) {
         g.addArray<double>("c", {3, 0});
       }},
      {"channel \"c\" is an array of no or too many elements",
       [](Group& g) {
         g.addArray<double>("c", {65536, 65536, 65536, 65536});
       }},
      {"channel \"c\" is an array of no or too many elements",
       [](Group& g) {
         g.addArray<double>("c", {536903681, 536838145});  // 2 to the power of 58, and 1
       }},
      {"channel \"c\" lies beyond what a record can have",
       [](Group& g) { g.addField(field("c", CN::CN_DATATYPE_UINT_LE, 4294967295, 64)); }},
      {"channel \"c\" has a range that ends before it begins",
       [](Group& g) {
         g.describe(g.addChannel<float>("c")).limits = {2, 1};
       }},
      {"channel \"time\" is a master channel, which has one valid number in each record",
       [](Group& g) {
         g.mayBeInvalid({&g, 0});
       }},
      {"there is more than one master channel",
       [](Group& g) {
         ChannelPlan plan = field("angle", CN::CN_DATATYPE_FLOAT_LE, 8, 64);
         plan.master = CN::CN_SYNCTYPE_ANGLE;
         g.addField(plan);
       }},
      conversion("that lacks parameters", {CC::CC_CONVTYPE_LINEAR, {1}, {}, true}),
      conversion("that lacks parameters", mdf_writer::table({}, mdf_writer::Between::nearest)),
      conversion("that lacks parameters", mdf_writer::texts({}, "else"), true),
      conversion("that has a parameter that is no number", mdf_writer::linear(0, nan)),
      conversion("that divides by 0", mdf_writer::rational(0, 1, 0, 0, 0, 0)),
      conversion("that has no formula", mdf_writer::formula("")),
      conversion("that has a key twice",
                 mdf_writer::table({{2, 1}, {1, 1}, {2, 3}}, mdf_writer::Between::interpolate)),
      conversion("that has a key twice", mdf_writer::texts({{1, "a"}, {1, "b"}}, "")),
      conversion("that has a key twice", mdf_writer::textNumbers({{"a", 1}, {"a", 2}}, 0), true),
      conversion("that has a key twice", mdf_writer::textTexts({{"a", "1"}, {"a", "2"}}, ""), true),
      conversion("that has ranges that overlap", mdf_writer::ranges({{2, 5, 0}, {0, 3, 0}}, 0)),
      conversion("that has a range that ends before it begins",
                 mdf_writer::rangeTexts({{2, 1, "a"}}, "")),
      conversion("of texts, but numbers", mdf_writer::textNumbers({{"a", 1}}, 0)),
      conversion("of numbers, but none", mdf_writer::linear(0, 2), true),
      conversion("with a text that is not UTF-8", mdf_writer::texts({{1, "\xc0\x80"}}, "")),
      conversion("that goes on with one that it cannot go on with",
                 mdf_writer::texts({{1, "a"}}, mdf_writer::formula("X"))),
      conversion("that goes on with one that it cannot go on with",
                 {CC::CC_CONVTYPE_LINEAR, {0, 1}, {}, true, {mdf_writer::linear(0, 2)}}),
      conversion(
          "that lacks parameters",
          mdf_writer::texts({{1, "a"}}, mdf_writer::table({}, mdf_writer::Between::nearest))),
      conversion("that has more entries than a conversion block can count",
                 {CC::CC_CONVTYPE_V2TEXT_SCALETAB, std::vector<double>(65536),
                  std::vector<std::string>(65537), true}),
  };
  for (const Wrong& wrong : wrongs) {
    Plan plan;
    wrong.add(plan.addGroup("g"));
    EXPECT_EQ(plan.fault(), "group \"g\": " + wrong.fault);
    RecordedOutput output;
    mdf_writer::Recording recording(output, plan);
    EXPECT_EQ(recording.cause(), "the plan cannot be recorded: group \"g\": " + wrong.fault);
    EXPECT_FALSE(recording.append(const_cast<Group&>(plan.groups().front()), 0));
    EXPECT_FALSE(recording.finish());
    EXPECT_TRUE(output.steps().empty());
  }
  for (const double interval : {0.0, -1.0, nan}) {
    Plan plan;
    plan.addGroup("g").reductions = {1, interval};
    EXPECT_EQ(plan.fault(),
              "group \"g\": a sample reduction needs the order of time and an interval of it");
  }
  Plan unnamed;
  unnamed.addGroup("");
  EXPECT_EQ(unnamed.fault(), "a group has no name in UTF-8");
  Plan unordered;
  unordered.addGroup("g", Group::Order::own);
  EXPECT_EQ(unordered.fault(), "group \"g\": there is no master channel");
}

TEST(Plans, WithWrongAttachmentsAreRefusedWithASentence) {
  const std::vector<std::pair<mdf_writer::Attachment, std::string>> wrongs = {
      {{""}, "an attachment's name is missing or no text"},
      {{"a", "\xff"}, R"(attachment "a" has a text that is not UTF-8)"},
      {{"a", "", "", "x", true}, R"(attachment "a" is external and has bytes)"},
      {{"a", "", "", "x", false, "12"}, R"(attachment "a" has a digest that is not 16 bytes long)"},
  };
  for (const auto& [wrong, fault] : wrongs) {
    Plan plan;
    plan.attachments = {wrong};
    EXPECT_EQ(plan.fault(), fault);
  }
}

TEST(Plans, WithAWrongHierarchyAreRefusedWithASentence) {
  using CH = mdf_v4_10::CHBLOCK;
  using Entry = mdf_writer::HierarchyEntry;
  Plan plan;
  Plan other;
  const auto channel = plan.addGroup("g").addChannel<float>("c");
  const auto stranger = other.addGroup("g").addChannel<float>("c");
  const std::string texts =
      "an entry of the hierarchy lacks its name, has one that it may not have, or a text that is "
      "not UTF-8";
  const std::vector<std::pair<std::vector<Entry>, std::string>> wrongs = {
      {{{"a", CH::CH_TYPE_GROUP, "", {channel}, {{""}}}}, texts},
      {{{"a", CH::CH_TYPE_IN_MEASUREMENT}}, texts},
      {{{"a", CH::CH_TYPE_GROUP, "\xff"}}, texts},
      {{{"a", CH::CH_TYPE_MAP_LIST, "", {}, {{"b"}}}},
       R"(entry "a" of the hierarchy may have none below it)"},
      {{{"a", CH::CH_TYPE_FUNCTION, "", {channel}}},
       R"(entry "a" of the hierarchy is a function, which has channels in the entries below it)"},
      {{{"a", CH::CH_TYPE_FUNCTION}, {"b"}},
       R"(entry "a" of the hierarchy may not stand before one of the next one's type)"},
      {{{"a", CH::CH_TYPE_GROUP, "", {stranger}}},
       R"(entry "a" of the hierarchy has a channel of another plan)"},
      {{{"a", CH::CH_TYPE_GROUP, "", {{}}}},
       R"(entry "a" of the hierarchy has a channel of another plan)"},
  };
  for (const auto& [wrong, fault] : wrongs) {
    plan.hierarchy = wrong;
    EXPECT_EQ(plan.fault(), fault);
  }
}

TEST(Records, RefuseWhatDoesNotFit) {
  Plan plan;
  Group& group = plan.addGroup("g");
  Group& other = plan.addGroup("other");
  const auto number = group.addChannel<float>("number");
  const auto five = group.addBits<int>("five", 5);
  const auto three = group.addBits<unsigned>("three", 3);
  const auto small = group.addChannel<std::int16_t>("small");
  const auto text = group.addText("text", 3);
  const auto array = group.addArray<std::uint8_t>("array", {2, 2});
  const auto variable = group.addText("variable");
  const auto unnamed = group.addChannel<double>("");
  const std::uint8_t elements[4] = {1, 2, 3, 4};

  EXPECT_TRUE(group.set(five, 15) && group.set(five, -16));
  EXPECT_FALSE(group.set(five, 16) || group.set(five, -17));
  EXPECT_TRUE(group.set(three, 7));
  EXPECT_FALSE(group.set(three, 8));
  EXPECT_TRUE(group.set(text, "abc") && group.set(text, "\xc3\xa4"));
  EXPECT_FALSE(group.set(text, "abcd") || group.set(text, "\xc3"));
  EXPECT_TRUE(group.set(array, elements, 4));
  EXPECT_FALSE(group.set(array, elements, 3));
  EXPECT_TRUE(group.set(small, 32767) && group.set(small, std::int64_t{-32768}));
  EXPECT_FALSE(group.set(small, 32768) || group.set(small, 65535U) || group.set(small, -32769) ||
               group.set(small, std::uint64_t{1} << 40) || group.set(three, -1));
  EXPECT_TRUE(group.set(variable, "any length"));
  EXPECT_FALSE(group.set(variable, "\xff"));
  EXPECT_FALSE(group.setValid(number, false));
  EXPECT_FALSE(group.set(unnamed, 1));
  EXPECT_FALSE(other.set(number, 1) || other.set(five, 1) || other.set(text, "") ||
               other.set(array, elements, 4) || other.set(variable, "") ||
               other.setValid(number, true));
  other.describe(number).unit = "lost";
  EXPECT_EQ(group.channels()[number.index].unit, "");
}

}  // namespace
}  // namespace mdf_tests
