#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "number_option.h"
#include "reader/blocks/identification.h"
#include "viewing/browser.h"
#include "viewing/outline_cache.h"
#include "viewing/routes.h"
#ifdef MDF_HAS_VIEWER
#include "viewing/serving/serve.h"
#include "viewing/serving/server.h"
#endif

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(Serves a page that shows measurements, and opens it in the browser. On the left are the channel
groups and channels, with search; on the right are panels, into which channels are clicked or dragged.
Zoom with the wheel, move by dragging, and read values at the cursor. The page's address holds what it
shows, so that Back and Reload come back to it.

The page is for this machine alone: it is served on 127.0.0.1, and only to who knows the address, which
has a new token in it each time and is printed first. Nothing is written but with --cache, and nothing
is fetched from elsewhere. Ctrl-C ends it. A file that is still growing is followed.

A channel is read whole when it is first shown. What is kept of it then answers each zoom, less than a
byte for each sample; closer up, samples are read again. With --cache it also goes to the folder mdf in
$XDG_CACHE_HOME, or in ~/.cache, and the file is shown at once when it is opened again unchanged. The
folder holds up to 4 GiB, and what was not used for longest goes first; it can be deleted at any time.

Examples:
  mdf view trip.mf4                               opens the browser
  mdf view monday.mf4 tuesday.mf4                 two recordings, one over the other
  mdf view trip.mf4 --no-browser --port 8080      prints the address, say for a tunnel by ssh
  mdf view big.mf4 --memory 4096                  keeps up to 4 GiB of channels
  mdf view big.mf4 --cache                        shows its channels at once the next time

Exit code: 0 fine, 1 the port is taken, 2 wrong arguments, an unreadable file, or a program without
the page.)TXT";

struct Request {
  std::shared_ptr<std::vector<std::string>> paths;
  int port = 0;
  std::size_t memory = 1024;
  bool no_browser = false;
  bool cache = false;
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

#ifdef MDF_HAS_VIEWER

std::size_t bytesOf(std::size_t mebibytes) {
  return static_cast<std::size_t>(
      std::min<std::uint64_t>(std::uint64_t{mebibytes} << 20U, SIZE_MAX));
}

/// Where nothing can be kept, measurements are shown all the same.
std::unique_ptr<OutlineCache> cacheOfUser() {
  const auto folder = userCacheFolder();
  auto cache = folder ? std::make_unique<OutlineCache>(*folder) : nullptr;
  if (cache == nullptr || !cache->problem().empty()) {
    std::cerr << "mdf: --cache keeps nothing: "
              << (cache == nullptr ? "neither XDG_CACHE_HOME nor HOME is a folder"
                                   : cache->problem())
              << '\n';
  }
  return cache;
}

int run(const Request& request) {
  try {
    const auto cache = request.cache ? cacheOfUser() : nullptr;
    Routes routes(*request.paths, bytesOf(request.memory), cache.get());
    Server server(request.port, [&](const std::string& name, const ViewRequest& asked) {
      return routes.answer(name, asked);
    });
    std::cout << server.address() << std::endl;
    if (!request.no_browser) {
      openBrowser(server.address());
    }
    serveUntilSignal(server);
    return exit_fine;
  } catch (const Unreadable& unreadable) {
    return complain(unreadable.what(), exit_unusable);
  }
}

#else

int run(const Request& /*request*/) {
  return complain(
      "this program was built without the page that mdf view shows; "
      "mdf plot draws channels, too",
      exit_unusable);
}

#endif

}  // namespace

void addViewCommand(CommandLine& program) {
  CommandLine command = program.addCommand("view", "Look at measurements in the browser");
  const auto request = std::make_shared<Request>();
  request->paths = addFileArguments(command);
  command.addOption("--port", request->port, "Serve on this port, or on any that is free")
      .typeName("N")
      .check(expectCount)
      .within(0, 65535);
  command.addOption("--memory", request->memory, "Keep so many MiB of channels")
      .typeName("MIB")
      .check(expectCount)
      .within(std::size_t{1}, std::size_t{1} << 20U)
      .showDefault();
  command.addFlag("--cache", request->cache, "Keep what was read of channels for the next time");
  command.addFlag("--no-browser", request->no_browser, "Print the address and open no browser");
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
