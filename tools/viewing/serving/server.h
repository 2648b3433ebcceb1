#ifndef MDF_TOOLS_VIEWING_SERVING_SERVER_H_
#define MDF_TOOLS_VIEWING_SERVING_SERVER_H_

#include <functional>
#include <memory>
#include <string>

#include "viewing/answer.h"
#include "viewing/view_request.h"

namespace mdf_tools {

/// Serves the page and answers its questions, on 127.0.0.1 alone and to nobody who does not know
/// the address.
class Server {
 public:
  /// Answers a question; several threads may ask at a time.
  using Answerer = std::function<Answer(const std::string& name, const ViewRequest& request)>;

  /// Takes a port; requests that come from now on are served by run().
  /// @param port 0 for any that is free.
  /// @throws std::runtime_error when it is taken.
  Server(int port, Answerer answerer);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// The address of the page, with its token.
  std::string address() const;

  /// Serves until stop() is called, from another thread.
  void run();
  void stop();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SERVING_SERVER_H_
