// Writes first inputs into a folder for each fuzz target: blocks by the library's writers, and the
// sample files for the commands.

#include <mdf_writer/mdf_writer.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "all_blocks.h"
#include "targets.h"
#include "tools/bus/sample_dbc.h"
#include "tools/samples/sample.h"
#include "viewing/outline_file.h"

namespace mdf_fuzz {

namespace {

using Inputs = std::vector<std::string>;

template <class... Blocks>
std::string bytesOf(const Blocks&... blocks) {
  std::ostringstream os;
  (os << ... << blocks);
  return os.str();
}

/// For the two types whose writers count fewer links than they write.
std::string withLinkCount(std::string bytes, char count) {
  bytes[16] = count;
  return bytes;
}

/// The two long ones are just small enough, and just too large, for what writers hand on in one go.
template <class Block>
Inputs plainData() {
  Inputs inputs;
  for (const std::size_t size : {0U, 7U, 1000U, 1001U}) {
    const std::vector<UINT8> data(size, 'r');
    inputs.push_back(bytesOf(Block(data.data(), data.size())));
  }
  return inputs;
}

template <class Block>
Inputs texts() {
  return {bytesOf(Block()), bytesOf(Block("speed", 5)), bytesOf(Block("<CNcomment/>\n\0\0", 15))};
}

CHBLOCK hierarchy() {
  CHBLOCK block(CHBLOCK::CH_TYPE_STRUCTURE);
  block.setFirstCHBlock(1000);
  block.setTXNameBlock(1);
  block.addChannelElement(10, 11, 12);
  block.addChannelElement(13, 14, 15);
  return block;
}

ATBLOCK attachment(const std::string& content) {
  ATBLOCK block(content.data(), content.size());
  block.setTXFilenameBlock(300);
  block.setMD5ChecksumFlag(true);
  block.setOriginalSize(content.size());
  return block;
}

EVBLOCK event() {
  EVBLOCK block(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_POINT,
                EVBLOCK::EV_CAUSETYPE_USER);
  block.setSyncBaseFactor(0.5);
  block.setTXNameBlock(7);
  block.addScope(100);
  block.addScope(200);
  block.addAttachment(300);
  return block;
}

CNBLOCK channel() {
  CNBLOCK block(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                CNBLOCK::CN_DATATYPE_FLOAT_LE, 1, 2, 3);
  block.setBitCount(64);
  block.addAttachement(4);
  block.addAttachement(5);
  return block;
}

CNBLOCK channelWithXAxis() {
  CNBLOCK block = channel();
  block.setupDefaultXAxis(6, 7, 8);
  return block;
}

CNBLOCK channelWithManyAttachments() {
  CNBLOCK block = channel();
  for (LINK attachment = 1000; attachment < 1200; ++attachment) {
    block.addAttachement(attachment);
  }
  return block;
}

CCBLOCK conversion() {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setupV2TEXT_SCALETABConversion({{0.0, 100}, {1.0, 200}, {2.5, 300}}, 400);
  block.setPhysicalValueRangeMax(2.5);
  return block;
}

DLBLOCK dataList(bool equal_length) {
  DLBLOCK block(equal_length, 5);
  block.setEqualLength(64);
  block.addData(100, 0);
  block.addData(200, 64);
  return block;
}

DZBLOCK zipped() {
  const std::vector<UINT8> data = {0x78, 0x9C, 3, 0, 0, 0, 0, 1};
  DZBLOCK block(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, data.data(),
                data.size());
  block.setZipParameter(4);
  return block;
}

std::map<std::string, Inputs> blockInputs() {
  const std::string header_list = bytesOf(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  return {
      {"idblock", {bytesOf(IDBLOCK("seeds"))}},
      {"hdblock", {bytesOf(HDBLOCK(200, 300, 1, 60, HDBLOCK::TIME_EXT_SOURCE, 0, 0))}},
      {"txblock", texts<TXBLOCK>()},
      {"mdblock", texts<MDBLOCK>()},
      {"fhblock", {bytesOf(FHBLOCK(300, 5, -60, 0))}},
      {"chblock",
       {bytesOf(CHBLOCK(CHBLOCK::CH_TYPE_GROUP)), bytesOf(hierarchy()),
        withLinkCount(bytesOf(hierarchy()), 4 + 3 * 2)}},
      // The second one is longer than what readers take in one go.
      {"atblock",
       {bytesOf(attachment("an attachment of some bytes")),
        bytesOf(attachment(std::string(66000, 'a')))}},
      {"evblock", {bytesOf(event())}},
      {"dgblock", {bytesOf(DGBLOCK(1, 2, 3, DGBLOCK::DG_UINT64_LE))}},
      {"cgblock",
       {bytesOf(CGBLOCK(1, CGBLOCK::vlsd_channel_group, 2, 3, 4, 5, 6, 7,
                        CGBLOCK::CG_PATHSEPARATOR_POINT, 8, 9))}},
      {"siblock",
       {bytesOf(SIBLOCK(SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN, true, 1, 2))}},
      {"cnblock",
       {bytesOf(channel()), bytesOf(channelWithXAxis()), bytesOf(channelWithManyAttachments())}},
      {"ccblock", {bytesOf(conversion())}},
      {"dtblock", plainData<DTBLOCK>()},
      {"rdblock", plainData<RDBLOCK>()},
      {"sdblock", plainData<SDBLOCK>()},
      {"dlblock", {bytesOf(dataList(false)), bytesOf(dataList(true))}},
      {"dzblock", {bytesOf(zipped()), bytesOf(zipped(), zipped())}},
      {"hlblock", {header_list, withLinkCount(header_list, 1)}},
      {"srblock", {bytesOf(SRBLOCK(2, 0.25, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 3, 4))}},
  };
}

/// Each class's number and arbitrary bytes: whatever operations they happen to mean.
Inputs buildInputs() {
  Inputs inputs;
  std::uint32_t state = 1;
  for (std::size_t type = 0; type < AllBlocks::size; ++type) {
    std::string input(1, static_cast<char>(type));
    for (int i = 0; i < 300; ++i) {
      state = state * 1664525U + 1013904223U;
      input += static_cast<char>(state >> 24U);
    }
    inputs.push_back(input);
  }
  return inputs;
}

/// A file whose header block links to the first block after it.
std::string fileWith(const std::string& blocks) {
  const LINK first = IDBLOCK::IDBLOCK_SIZE + HDBLOCK::HDBLOCK_SIZE;
  return bytesOf(IDBLOCK("seeds"), HDBLOCK(0, first, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0)) + blocks;
}

/// A file with these blocks after one of an unknown type, which links to all of them and to the
/// header block.
std::string fileWithAll(const Inputs& blocks) {
  DTBLOCK index;
  index.header.mdfID = MDF_Block_ID(0x5858);
  index.header.link_count = blocks.size() + 1;
  std::size_t at =
      fileWith({}).size() + HeaderSection::HEADER_SIZE + (blocks.size() + 1) * sizeof(LINK);
  std::string following;
  std::vector<LINK> links = {IDBLOCK::IDBLOCK_SIZE};
  for (const std::string& block : blocks) {
    links.push_back(static_cast<LINK>(at + following.size()));
    following += block;
    following.append((8 - following.size() % 8) % 8, '\0');
  }
  for (const LINK link : links) {
    for (unsigned shift = 0; shift < 64; shift += 8) {
      index.addData(static_cast<UINT8>(static_cast<UINT64>(link) >> shift));
    }
  }
  return fileWith(bytesOf(index) + following);
}

std::string recordedFile(const std::filesystem::path& path) {
  mdf_writer::Plan plan("title");
  plan.start = {};
  mdf_writer::Group& group = plan.addGroup("system signals");
  const auto speed = group.addChannel<double>("speed", "km/h");
  const auto counter = group.addChannel<UINT64>("counter");
  mdf_writer::Recording recording(path.string(), plan);
  for (int i = 0; i < 3; ++i) {
    group.set(speed, 50.0);
    group.set(counter, static_cast<UINT64>(i));
    recording.append(group, 100'000'000 * i);
  }
  recording.finish();
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  std::filesystem::remove(path);
  return bytes.str();
}

/// Of a whole DBC also each statement after a message.
Inputs dbcInputs() {
  const std::string message =
      "BO_ 100 A: 8 X\n SG_ Speed M : 0|32@1- (1,0) [0|0] \"\" X\n SG_ D m1 : 7|8@0+ (1,0) [0|0] "
      "\"\" X\n";
  Inputs inputs = {mdf_tests::engine_dbc};
  std::istringstream lines(mdf_tests::engine_dbc);
  for (std::string line; std::getline(lines, line);) {
    inputs.push_back(message + line + '\n');
  }
  return inputs;
}

/// A frame of CAN in a capture of each form.
Inputs captures() {
  const std::string frame("\x98\xFE\xF1\0\2\0\0\0\x12\x34\0\0", 12);
  const std::string section("\n\r\r\n\x1C\0\0\0\x4D\x3C\x2B\x1A\1\0\0\0", 16);
  const std::string end("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x1C\0\0\0", 12);
  const std::string interface(
      "\1\0\0\0\x28\0\0\0\xE3\0\0\0\0\0\0\0\2\0\4\0can1\x9\0\1\0\x9\0\0\0\0\0\0\0\x28\0\0\0", 40);
  const std::string packet("\6\0\0\0\x38\0\0\0\0\0\0\0\5\0\0\0\1\0\0\0\x0A\0\0\0\x0A\0\0\0", 28);
  const std::string options("\2\0\4\0\1\0\0\0\0\0\0\0\x38\0\0\0", 16);
  const std::string pcap("\xD4\xC3\xB2\xA1\2\0\4\0\0\0\0\0\0\0\0\0\xFF\xFF\0\0\xE3\0\0\0", 24);
  const std::string record("\5\0\0\0\1\0\0\0\x0A\0\0\0\x0A\0\0\0", 16);
  const std::string one(1, '\1');
  return {one + section + end + interface + packet + frame + options,
          one + pcap + record + frame.substr(0, 10)};
}

/// What is kept of numbers and of texts, without its head.
Inputs outlines() {
  constexpr std::size_t head = 32;
  Inputs inputs;
  for (const std::size_t count : {std::size_t{0}, std::size_t{3}, std::size_t{5000}}) {
    for (const auto type : {mdf_reader::ColumnType::float64, mdf_reader::ColumnType::text}) {
      mdf_reader::ColumnData column(type);
      std::vector<double> times;
      for (std::size_t i = 0; i < count; ++i) {
        times.push_back(i % 1000 == 999 ? 0 : static_cast<double>(i));
        if (type == mdf_reader::ColumnType::text) {
          column.add(i % 3 == 0 ? "on" : "off");
        } else {
          *column.extend<double>(1) = times.back();
        }
      }
      mdf_tools::Outline outline;
      outline.add(times, column);
      outline.finish();
      inputs.push_back(mdf_tools::OutlineFile::pack("key", outline).substr(head));
    }
  }
  return inputs;
}

std::map<std::string, Inputs> allInputs(const std::filesystem::path& folder) {
  std::map<std::string, Inputs> inputs = blockInputs();
  inputs["build"] = buildInputs();
  inputs["dump"] = {recordedFile(folder / "recorded.mf4")};
  Inputs all;
  for (std::size_t type = 0; type < AllBlocks::size; ++type) {
    for (const std::string& block : inputs.at(targets()[type].first)) {
      if (block.size() < 5000) {
        inputs["blocks"].push_back(static_cast<char>(type) + block);
      }
      if (block.size() < 500) {
        inputs["dump"].push_back(fileWith(block));
        all.push_back(block);
      }
    }
  }
  inputs["dump"].push_back(fileWithAll(all));
  for (const mdf_tests::Sample& sample : mdf_tests::allSamples()) {
    inputs["dump"].push_back(sample.bytes);
  }
  for (const char* target :
       {"check", "diff", "draw", "export", "frames", "repair", "show", "measure"}) {
    inputs[target] = inputs["dump"];
  }
  for (const std::string& file : inputs["dump"]) {
    constexpr std::size_t choices = 128;
    inputs["copy"].push_back(static_cast<char>(inputs["copy"].size() % choices) + file);
    inputs["join"].push_back(static_cast<char>(inputs["join"].size() % choices) + file);
  }
  const std::string log =
      "(1345212884.318850) can0 123#0011 R\n(1345212884.318850) vcan1 18FEF100##100.11.22\n"
      "(1345212885.000000) can0 7FF#R8\n(1345212885.000001) can0 20000008#0000040000000000 T\n";
  inputs["candump"] = {std::string(1, '\0') + log,
                       "\1(0.0) can0 000#\r\nhello\n(9223372035.9) a 1FFFFFFF##7\n"};
  inputs["capture"] = captures();
  inputs["import"] = {
      std::string(1, '\0') + "time [s],speed [km/h],\"a,b\"\n0,1.5,x\n0.1,,\"y\n\"\n\nt,b\n0,-7\n",
      "\3t;a\r\n2024-05-17T13:45:12,5+02:00;1,5\r\n2024-05-17 13:45:13Z;x;\r\n",
      "\4a\tt [ms]\n1e-05\t007\n18446744073709551615\t1700000000000000000\nnan\t-0\n",
      "\b"
      R"({"name":"g","columns":[{"name":"t","unit":"s"}]})"
      "\n"
      R"({"values":{"t":0.5,"b":"nan"}})"};
  inputs["dbc"] = dbcInputs();
  inputs["outline"] = outlines();
  return inputs;
}

void writeAll(const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const auto& [target, inputs] : allInputs(folder)) {
    std::filesystem::create_directories(folder / target);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      std::ofstream file(folder / target / ("seed-" + std::to_string(i)), std::ios::binary);
      file << inputs[i];
      if (!file.flush()) {
        throw std::runtime_error("cannot write seeds below " + folder.string());
      }
    }
  }
}

}  // namespace

}  // namespace mdf_fuzz

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "Usage: %s FOLDER\n", argv[0]);
    return 2;
  }
  try {
    mdf_fuzz::writeAll(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
    return 1;
  }
  return 0;
}
