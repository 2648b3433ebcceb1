// Walks through a file with the library alone: walk FILE lists its channel groups and channels.
// Readers put the links of some blocks after nil ones; docs/reading.md has a row for each class.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <set>
#include <string>

#include "mdf_v4_10.h"

using namespace mdf_v4_10;

/// Positions the stream at a block, if there is a whole one of the expected type. The readers trust
/// what the file says, so this is the place to doubt it.
static bool goTo(std::ifstream& file, LINK at, const std::string& id) {
  std::string bytes(HeaderSection::HEADER_SIZE, 0);
  file.seekg(0, std::ios::end);
  const LINK size = file.tellg();
  if (at <= 0 || !file.seekg(at).read(&bytes[0], HeaderSection::HEADER_SIZE)) {
    file.clear();
    return false;
  }
  HeaderSection header(0);
  header.readFromByteArray(reinterpret_cast<const std::uint8_t*>(bytes.data()));
  file.seekg(at);
  return id == bytes.substr(0, 4) && header.length >= HeaderSection::HEADER_SIZE &&
         header.length <= static_cast<UINT64>(size - at);
}

static LINK linkAt(const LinkSection& links, std::size_t index) {
  return index < links.size() ? links[index] : 0;
}

/// Read as a data block, any block gives all bytes after its header: here a text.
static std::string textAt(std::ifstream& file, LINK at) {
  if (!goTo(file, at, "##TX")) return "";
  const DTBLOCK text(file);
  return {text.dt_data.begin(), std::find(text.dt_data.begin(), text.dt_data.end(), 0)};
}

/// Prints a channel and returns the link to the next one. The stream stands there already.
static LINK printChannel(std::ifstream& file, LINK at) {
  const CNBLOCK cn(file);
  file.seekg(at);
  const DLBLOCK raw(file);  // read as a data list, any block gives its links, after a nil one
  const auto link = [&raw](std::size_t index) { return linkAt(raw.links, 1 + index); };
  std::cout << "  " << textAt(file, link(CNBLOCK::cn_tx_name)) << ": " << cn.getBitCount()
            << " bits at byte " << cn.getByteOffset() << '\n';
  return link(CNBLOCK::cn_cn_next);
}

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
  const IDBLOCK id(file);
  const HDBLOCK hd(file);
  if (!file || id.getKenn() != IDBLOCK::MDF_ID_FILE_STRING) {
    std::cerr << "Usage: walk FILE.mf4\n";
    return 2;
  }
  std::set<LINK> seen;  // a broken file's links may go in circles
  const auto isThere = [&](LINK at, const char* letters) {
    return seen.insert(at).second && goTo(file, at, letters);
  };
  for (LINK dg_at = hd.getDGFirstblock(); isThere(dg_at, "##DG");) {
    const DGBLOCK dg(file);
    LINK cg_at = linkAt(dg.links, DGBLOCK::DG_BLOCK_LINKS_NUM + DGBLOCK::dg_cg_first);
    while (isThere(cg_at, "##CG")) {
      const CGBLOCK cg(file);
      constexpr std::size_t nil_links = CGBLOCK::CG_BLOCK_LINKS_NUM;
      std::cout << "group " << textAt(file, linkAt(cg.links, nil_links + CGBLOCK::cg_tx_acq_name))
                << ": " << cg.getCycleCount() << " records\n";
      LINK cn_at = linkAt(cg.links, nil_links + CGBLOCK::cg_cn_first);
      while (isThere(cn_at, "##CN")) cn_at = printChannel(file, cn_at);
      cg_at = linkAt(cg.links, nil_links + CGBLOCK::cg_cg_next);
    }
    dg_at = linkAt(dg.links, DGBLOCK::DG_BLOCK_LINKS_NUM + DGBLOCK::dg_dg_next);
  }
}
