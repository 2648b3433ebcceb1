// Named properties of comments.

#include "reader/model/properties.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/bytes/input_file.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// The properties of a comment, a line for each.
std::string propertiesOf(const std::string& comment) {
  FileBuilder file;
  const std::uint64_t block = file.metadata(comment);
  const TempFile temp(file.bytes());
  mdf_reader::InputFile input(temp.path());
  std::string text;
  for (const auto& property : mdf_reader::readProperties(input, block)) {
    text += property.name + '=' + property.value + '\n';
  }
  return text;
}

std::string inHeader(const std::string& properties) {
  return "<HDcomment><TX>text</TX><common_properties>" + properties +
         "</common_properties></HDcomment>";
}

TEST(Properties, NamesUnitsAndValues) {
  EXPECT_EQ(propertiesOf(inHeader("<e name='serial number'>\n 4711 </e><e name='mass' unit='kg' "
                                  "type='float'>1.5</e><e name='empty'/>")),
            "serial number=4711\nmass [kg]=1.5\nempty=\n");
}

TEST(Properties, TreesAndLists) {
  EXPECT_EQ(
      propertiesOf(inHeader(
          "<tree name='device'><e name='type'>a</e><tree name='cpu'><e name='cores'>2</e></tree>"
          "</tree><list name='ports'><li><e name='name'>p</e></li><li><e name='name'>q</e></li>"
          "</list><elist name='dates' type='date'><eli>x</eli><eli>y</eli></elist>")),
      "device.type=a\ndevice.cpu.cores=2\nports[0].name=p\nports[1].name=q\ndates[0]=x\n"
      "dates[1]=y\n");
}

TEST(Properties, WhatHasNone) {
  EXPECT_EQ(propertiesOf("plain text"), "");
  EXPECT_EQ(propertiesOf(""), "");
  EXPECT_EQ(propertiesOf("<HDcomment><TX>text</TX></HDcomment>"), "");
  EXPECT_EQ(propertiesOf("<HDcomment><common_properties><e name='a'>"), "");
}

TEST(Properties, NamesThatGrowWithTheirDepthEnd) {
  std::string nested = "<e name='last'>1</e>";
  for (int depth = 0; depth < 16; ++depth) {
    nested.insert(0, "<tree name='t'>").append("</tree>");
  }
  const std::string sixteen = "t.t.t.t.t.t.t.t.t.t.t.t.t.t.t.t.last=1\n";
  EXPECT_EQ(propertiesOf(inHeader(nested)), sixteen);
  EXPECT_EQ(propertiesOf(inHeader("<tree name='t'>" + nested + "</tree>")), "");

  const std::string name(1000, 'n');
  std::string many = "<tree name='" + name + "'>";
  for (int i = 0; i < 1000; ++i) {
    many += "<e name='a'/>";
  }
  const std::string comment = inHeader(many + "</tree>");
  const std::string line = name + ".a=\n";
  EXPECT_EQ(propertiesOf(comment).size(), comment.size() * 16 / (line.size() - 2) * line.size());
}

}  // namespace
