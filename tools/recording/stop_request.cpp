#include "stop_request.h"

#include <csignal>

namespace mdf_tools {

namespace {

volatile std::sig_atomic_t stop_requested = 0;

void requestStop(int /*signal*/) { stop_requested = 1; }

}  // namespace

void watchForStopRequest() {
  struct sigaction stop {};
  stop.sa_handler = requestStop;
  sigemptyset(&stop.sa_mask);
  sigaction(SIGINT, &stop, nullptr);
  sigaction(SIGTERM, &stop, nullptr);

  struct sigaction before {};
  sigaction(SIGHUP, nullptr, &before);
  if (before.sa_handler != SIG_IGN) {
    sigaction(SIGHUP, &stop, nullptr);
  }

  struct sigaction ignore {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGXFSZ, &ignore, nullptr);
}

bool stopRequested() { return stop_requested != 0; }

}  // namespace mdf_tools
