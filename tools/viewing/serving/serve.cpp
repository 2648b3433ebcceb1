#include "serve.h"

#include <csignal>
#include <thread>

#include "server.h"

namespace mdf_tools {

/// All threads of the server leave these signals to this one.
void serveUntilSignal(Server& server) {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&signals, signal);
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread serving([&server] { server.run(); });
  int signal = 0;
  sigwait(&signals, &signal);
  // What is being read is read to its end first; a second signal does not wait for it.
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  server.stop();
  serving.join();
}

}  // namespace mdf_tools
