#include "stop_request.h"

#include <csignal>

namespace mdf_tools {

namespace {

volatile std::sig_atomic_t stop_requested = 0;
volatile std::sig_atomic_t marker_requested = 0;

void requestStop(int /*signal*/) { stop_requested = 1; }
void requestMarker(int /*signal*/) { marker_requested = 1; }

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

}  // namespace

void watchForRequests() {
  handle(SIGINT, requestStop);
  handle(SIGTERM, requestStop);
  handle(SIGUSR1, requestMarker);
  handle(SIGXFSZ, SIG_IGN);
  handle(SIGPIPE, SIG_IGN);

  struct sigaction before {};
  sigaction(SIGHUP, nullptr, &before);
  if (before.sa_handler != SIG_IGN) {
    handle(SIGHUP, requestStop);
  }
}

bool stopRequested() { return stop_requested != 0; }

bool takeMarkerRequest() {
  const bool requested = marker_requested != 0;
  marker_requested = 0;
  return requested;
}

}  // namespace mdf_tools
