#include "server.h"

#include <httplib.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include "embedded_files.h"
#include "viewing/request_guard.h"

namespace mdf_tools {

namespace {

constexpr std::size_t threads = 16;
constexpr int waiting_connections = 1024;

/// Scripts, styles and data come from here and nowhere else, and no other page may show this one.
const httplib::Headers& headers() {
  static const httplib::Headers all = {
      {"Content-Security-Policy",
       "default-src 'self'; img-src 'self' blob: data:; object-src 'none'; base-uri 'none'; "
       "form-action 'none'; frame-ancestors 'none'"},
      {"X-Content-Type-Options", "nosniff"},
      {"Referrer-Policy", "no-referrer"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Cache-Control", "no-store"}};
  return all;
}

/// Many connections may wait for a thread at a time.
class Listener : public httplib::Server {
 public:
  void waitForMany() { ::listen(svr_sock_, waiting_connections); }
};

Answer pageFile(const std::string& name) {
  const std::string wanted = name.empty() ? "index.html" : name;
  for (const EmbeddedFile& file : embeddedFiles()) {
    if (file.name == wanted) {
      return {200, std::string(mimeTypeOf(file.name)), std::string(file.contents)};
    }
  }
  return sentence(404, "there is nothing of this name");
}

ViewRequest parametersOf(const httplib::Request& request) {
  return ViewRequest([&request](const std::string& name) {
    return request.has_param(name) ? std::optional(request.get_param_value(name)) : std::nullopt;
  });
}

Caller callerOf(const httplib::Request& request) {
  Caller caller{request.get_header_value("Host"), std::nullopt, request.path};
  if (request.has_header("Origin")) {
    caller.origin = request.get_header_value("Origin");
  }
  return caller;
}

}  // namespace

struct Server::State {
  explicit State(Answerer take) : answerer(std::move(take)) {}

  Answer answer(const httplib::Request& request) const {
    const std::string refusal = guard->refusal(callerOf(request));
    if (!refusal.empty()) {
      return sentence(403, refusal);
    }
    if (request.method != "GET") {
      return sentence(405, "nothing can be changed here");
    }
    const std::string name = request.path.substr(guard->root().size());
    const std::string questions = "api/";
    return name.compare(0, questions.size(), questions) == 0
               ? answerer(name.substr(questions.size()), parametersOf(request))
               : pageFile(name);
  }

  void listenTo(int port) {
    const std::string host = "127.0.0.1";
    const int taken = port == 0 ? listener.bind_to_any_port(host)
                                : (listener.bind_to_port(host, port) ? port : -1);
    if (taken < 0) {
      throw std::runtime_error("port " + std::to_string(port) + " is taken; try another --port");
    }
    listener.waitForMany();
    guard = std::make_unique<RequestGuard>(randomToken(), taken);
  }

  Answerer answerer;
  std::unique_ptr<RequestGuard> guard;
  Listener listener;
  std::atomic<bool> has_ended{false};
};

/// A connection that is kept open holds a thread, and so it is soon closed.
Server::Server(int port, Answerer answerer) : state_(std::make_unique<State>(std::move(answerer))) {
  Listener& listener = state_->listener;
  listener.new_task_queue = [] { return new httplib::ThreadPool(threads); };
  listener.set_keep_alive_max_count(100);
  listener.set_keep_alive_timeout(1);
  listener.set_payload_max_length(0);
  listener.set_tcp_nodelay(true);
  // No other program may listen on the same port.
  listener.set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  listener.set_default_headers(headers());
  listener.set_pre_routing_handler([this](const auto& request, auto& response) {
    const Answer answer = state_->answer(request);
    response.status = answer.status;
    response.set_content(answer.body, answer.type);
    return httplib::Server::HandlerResponse::Handled;
  });
  listener.set_exception_handler([](const auto&, auto& response, const std::exception_ptr&) {
    const Answer answer = sentence(500, "this could not be read");
    response.status = answer.status;
    response.set_content(answer.body, answer.type);
  });
  state_->listenTo(port);
}

Server::~Server() = default;

std::string Server::address() const { return state_->guard->address(); }

void Server::run() {
  state_->listener.listen_after_bind();
  state_->has_ended = true;
}

/// What has not begun yet would not notice.
void Server::stop() {
  while (!state_->listener.is_running() && !state_->has_ended) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  state_->listener.stop();
}

}  // namespace mdf_tools
