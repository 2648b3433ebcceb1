// What readers give back of what was written, and how to get the rest: some of them do not put what
// they read where the accessors look for it. docs/reading.md has a row for each class.

#include <iostream>
#include <sstream>

#include "mdf_v4_10.h"

using namespace mdf_v4_10;

/// A stream with the block at offset 0, in place of a file. What follows in the file is "!".
template <class Block>
static std::stringstream fileWith(const Block& block) {
  std::stringstream file;
  file << block << std::string(64, '!');
  return file;
}

static std::string text(const std::vector<UINT8>& bytes) { return {bytes.begin(), bytes.end()}; }

int main() {
  // A header block comes back whole.
  auto file = fileWith(HDBLOCK(11, 22, 1700000000000000000, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0));
  std::cout << "header: data group at " << HDBLOCK(file).getDGFirstblock() << '\n';

  // The links of a data group come after four nil ones.
  file = fileWith(DGBLOCK(11, 22, 33, DGBLOCK::DG_UINT8));
  const DGBLOCK dg(file);
  std::cout << "data group: channel group at " << dg.getFirstCgblock() << ", read "
            << dg.links[DGBLOCK::DG_BLOCK_LINKS_NUM + DGBLOCK::dg_cg_first] << '\n';

  // A text starts with 8 bytes of its header and lacks its last 8. Read as a data block it is
  // complete.
  file = fileWith(TXBLOCK("engine speed", 12));
  std::cout << "text: \"" << text(TXBLOCK(file).getData()).substr(8);
  file.seekg(0);
  std::cout << "\", read as data: \"" << text(DTBLOCK(file).getData()).c_str() << "\"\n";

  // A channel gives no links at all. Read as a data list, any block gives its links, after a nil
  // one.
  CNBLOCK channel(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_TIME,
                  CNBLOCK::CN_DATATYPE_UINT_LE, 11, 22, 0);
  file = fileWith(channel);
  std::cout << "channel: name at " << CNBLOCK(file).getNameTxblock();
  file.seekg(0);
  std::cout << ", read as a data list: " << DLBLOCK(file).links[1 + CNBLOCK::cn_tx_name] << '\n';

  // A data list lacks its last block, and pairs the others with the link before theirs.
  DLBLOCK list(false, 11);
  list.addData(22, 0);
  list.addData(33, 1000);
  file = fileWith(list);
  const DLBLOCK list_read(file);
  LINK data = 0;
  UINT64 offset = 0;
  list_read.getDataAtIndex(1, data, offset);
  std::cout << "data list: data at " << data << " for " << offset << ", read "
            << list_read.links[2 + 1] << '\n';

  // Zipped data gets the bytes after the block. The fields are right; go back for the bytes.
  const std::uint8_t zip[] = {'z', 'i', 'p'};
  file = fileWith(DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, zip, sizeof(zip)));
  DZBLOCK dz(file);
  std::cout << "zipped data: " << text(dz.dz_data);
  file.clear();  // too few bytes follow a block at the file's end
  file.seekg(static_cast<LINK>(DZBLOCK::DZBLOCK_CONSTANT_SIZE));
  file.read(reinterpret_cast<char*>(dz.dz_data.data()),
            static_cast<std::streamsize>(dz.dz_data.size()));
  std::cout << ", read " << text(dz.dz_data) << '\n';

  // A header list is written with a link, but its link count is 0. Correct it before reading.
  file = fileWith(HLBLOCK(11, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  std::cout << "header list: " << HLBLOCK(file).links.size() << " links";
  file.seekg(0);
  DTBLOCK raw(file);
  raw.header.setLinkCount(HLBLOCK::HL_BLOCK_LINKS_NUM);
  std::stringstream corrected;
  corrected << raw;
  std::cout << ", corrected: first list at " << HLBLOCK(corrected).getFirstDlblock() << '\n';
  return 0;
}
