#include "viewing/serving/server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

namespace mdf_tests {

using namespace mdf_tools;

namespace {

/// A connection to a port of this machine.
class Connection {
 public:
  explicit Connection(int port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    is_open_ = ::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }
  ~Connection() { ::close(socket_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void send(const std::string& text) const {
    ::send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
  }
  /// All that comes until the other side closes.
  std::string receive() const {
    std::string all;
    char bytes[4096];
    for (ssize_t count = 0; (count = ::recv(socket_, bytes, sizeof bytes, 0)) > 0;) {
      all.append(bytes, static_cast<std::size_t>(count));
    }
    return all;
  }
  bool isOpen() const { return is_open_; }

 private:
  int socket_;
  bool is_open_ = false;
};

/// A server that answers every question with its name.
class ServerTest : public testing::Test {
 protected:
  ~ServerTest() override {
    server_.stop();
    thread_.join();
  }

  int port() const { return std::stoi(server_.address().substr(17)); }
  std::string root() const { return server_.address().substr(server_.address().find('/', 17)); }
  std::string host() const { return "Host: 127.0.0.1:" + std::to_string(port()) + "\r\n"; }

  std::string ask(const std::string& request, const std::string& headers) const {
    const Connection connection(port());
    connection.send(request + " HTTP/1.1\r\n" + headers + "Connection: close\r\n\r\n");
    return connection.receive();
  }
  std::string get(const std::string& path) const { return ask("GET " + root() + path, host()); }

  static std::string statusOf(const std::string& answer) { return answer.substr(9, 3); }
  static std::string bodyOf(const std::string& answer) {
    return answer.substr(answer.find("\r\n\r\n") + 4);
  }

  Server server_{0, [](const std::string& name, const ViewRequest& request) {
                   const auto size = request.numberIfGiven("size");
                   return Answer{200, "text/plain",
                                 size ? std::string(static_cast<std::size_t>(*size), 'x') : name};
                 }};
  std::thread thread_{[this] { server_.run(); }};
};

}  // namespace

TEST_F(ServerTest, ServesThePageAndAnswers) {
  const std::string page = get("");
  EXPECT_EQ(statusOf(page), "200");
  EXPECT_NE(bodyOf(page).find("<title>mdf view</title>"), std::string::npos);
  EXPECT_NE(page.find("\r\nContent-Security-Policy: default-src 'self';"), std::string::npos);
  EXPECT_NE(page.find("\r\nX-Content-Type-Options: nosniff\r\n"), std::string::npos);
  EXPECT_NE(page.find("\r\nCache-Control: no-store\r\n"), std::string::npos);
  EXPECT_NE(get("main.js").find("\r\nContent-Type: text/javascript"), std::string::npos);
  EXPECT_EQ(bodyOf(get("api/curve?x=1")), "curve");
}

TEST_F(ServerTest, RefusesWhoDoesNotKnowTheAddress) {
  EXPECT_EQ(statusOf(ask("GET /", host())), "403");
  EXPECT_EQ(statusOf(ask("GET /0123/api/curve", host())), "403");
  EXPECT_EQ(statusOf(ask("GET " + root(), "Host: elsewhere.example\r\n")), "403");
  EXPECT_EQ(statusOf(ask("GET " + root(), "")), "403");
  EXPECT_EQ(statusOf(ask("GET " + root(), host() + "Origin: http://elsewhere.example\r\n")), "403");
}

TEST_F(ServerTest, ServesNothingElse) {
  EXPECT_EQ(statusOf(get("nothing.js")), "404");
  EXPECT_EQ(statusOf(get("../../etc/passwd")), "404");
  EXPECT_EQ(statusOf(ask("POST " + root(), host() + "Content-Length: 0\r\n")), "405");
  EXPECT_EQ(statusOf(ask("DELETE " + root(), host())), "405");
  EXPECT_EQ(statusOf(ask("NONSENSE", host())), "400");
  EXPECT_EQ(statusOf(get(std::string(100000, 'a'))), "414");
}

TEST_F(ServerTest, AnswersAThousandThatComeAtOnce) {
  // Both sides of each connection are in this process.
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4096);
  setrlimit(RLIMIT_NOFILE, &files);
  std::vector<std::unique_ptr<Connection>> all;
  for (int i = 0; i < 1000; ++i) {
    all.push_back(std::make_unique<Connection>(port()));
    ASSERT_TRUE(all.back()->isOpen()) << i;
    all.back()->send("GET " + root() + "api/curve HTTP/1.1\r\n" + host() +
                     "Connection: close\r\n\r\n");
  }
  for (const auto& connection : all) {
    ASSERT_EQ(bodyOf(connection->receive()), "curve");
  }
}

TEST_F(ServerTest, GoesOnWhenThoseWhoAskGoAway) {
  for (int i = 0; i < 40; ++i) {
    const Connection in_the_middle(port());
    in_the_middle.send("GET " + root() + "api/curve?size=30000000 HTTP/1.1\r\n" + host() + "\r\n");
    const Connection before_the_end(port());
    before_the_end.send("GET " + root() + " HT");
    const Connection without_a_word(port());
  }
  EXPECT_EQ(bodyOf(get("api/curve")), "curve");
}

TEST(Server, TwoOnOnePortCannotBe) {
  Server server(0, {});
  const int port = std::stoi(server.address().substr(17));
  EXPECT_THROW(Server(port, {}), std::runtime_error);
}

}  // namespace mdf_tests
