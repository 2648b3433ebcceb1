// Writes and reads blocks many times, for a tool that counts the instructions of each function.

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

#include "mdf_v4_10.h"

using namespace mdf_v4_10;

namespace {

/// How often the function for each class does what it does.
constexpr int repetitions = 1000;

/// Takes all bytes and keeps none.
class NullBuffer : public std::streambuf {
 protected:
  std::streamsize xsputn(const char* /*bytes*/, std::streamsize count) override { return count; }
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

/// Bytes that can be read again and again.
class BytesBuffer : public std::streambuf {
 public:
  explicit BytesBuffer(std::string bytes) : bytes_(std::move(bytes)) {}
  void rewind() { setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size()); }

 private:
  std::string bytes_;
};

}  // namespace

// Neither is in the unnamed namespace: their names are what the counts are found by.

template <class Block>
void writeBlocks(std::ostream& os, const Block& block) {
  for (int i = 0; i < repetitions; ++i) {
    os << block;
  }
}

template <class Block>
void readBlocks(std::istream& is, BytesBuffer& buffer) {
  for (int i = 0; i < repetitions; ++i) {
    buffer.rewind();
    const Block block(is);
  }
}

namespace {

/// The functions are called by address, so that each stays a function.
template <class Function>
Function* notInlined(Function* function) {
  Function* volatile address = function;
  return address;
}

template <class Block>
bool writes(const Block& block) {
  NullBuffer buffer;
  std::ostream os(&buffer);
  notInlined(writeBlocks<Block>)(os, block);
  return os.good();
}

template <class Block>
bool reads(const Block& block) {
  std::ostringstream bytes;
  bytes << block;
  BytesBuffer buffer(bytes.str());
  std::istream is(&buffer);
  notInlined(readBlocks<Block>)(is, buffer);
  return is.good();
}

CHBLOCK hierarchy() {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  for (LINK link = 1; link <= 9; link += 3) {
    block.addChannelElement(link, link + 1, link + 2);
  }
  return block;
}

EVBLOCK event() {
  EVBLOCK block(EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_POINT,
                EVBLOCK::EV_CAUSETYPE_USER);
  block.ev_scope = {1, 2};
  block.ev_at_reference = {3};
  return block;
}

CNBLOCK channel() {
  return {CNBLOCK::CN_CHANNELTYPE_MASTER,
          CNBLOCK::CN_SYNCTYPE_TIME,
          CNBLOCK::CN_DATATYPE_UINT_LE,
          1,
          2,
          3};
}

CCBLOCK conversion() {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_LINEAR);
  block.setupLinearConversion(1, 2);
  return block;
}

DLBLOCK dataList() {
  DLBLOCK block(false, 1);
  block.addData(2, 0);
  block.addData(3, 1000);
  block.addData(4, 2000);
  return block;
}

bool writeEveryBlock() {
  const char text[] = "engine speed";
  const std::array<std::uint8_t, 500> data{};
  return writes(IDBLOCK("bench")) && writes(HDBLOCK(1, 2, 3, 4, HDBLOCK::TIME_LOCAL_PC, 0, 0)) &&
         writes(TXBLOCK(text, sizeof text - 1)) && writes(MDBLOCK(text, sizeof text - 1)) &&
         writes(FHBLOCK(1, 2, 3, 4)) && writes(hierarchy()) &&
         writes(ATBLOCK(text, sizeof text - 1)) && writes(event()) &&
         writes(DGBLOCK(1, 2, 3, DGBLOCK::DG_UINT8)) && writes(CGBLOCK()) && writes(SIBLOCK()) &&
         writes(channel()) && writes(conversion()) && writes(DTBLOCK(data.data(), data.size())) &&
         writes(RDBLOCK(data.data(), data.size())) && writes(SDBLOCK(data.data(), data.size())) &&
         writes(dataList()) &&
         writes(
             DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, data.data(), data.size())) &&
         writes(HLBLOCK(1, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)) &&
         writes(SRBLOCK(1, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 1, 2));
}

bool readSomeBlocks() {
  const std::array<std::uint8_t, 500> data{};
  return reads(channel()) && reads(IDBLOCK("bench")) &&
         reads(DGBLOCK(1, 2, 3, DGBLOCK::DG_UINT8)) && reads(CGBLOCK()) && reads(conversion()) &&
         reads(dataList()) && reads(DTBLOCK(data.data(), data.size()));
}

}  // namespace

int main() { return writeEveryBlock() && readSomeBlocks() ? 0 : 1; }
