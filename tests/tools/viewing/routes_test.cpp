#include "viewing/routes.h"

#include <gtest/gtest.h>

#include <map>

#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"
#include "viewing/request_guard.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace {

using Parameters = std::map<std::string, std::string>;

ViewRequest request(Parameters parameters) {
  return ViewRequest([parameters = std::move(parameters)](const std::string& name) {
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::nullopt : std::optional(found->second);
  });
}

/// A group with time, and a channel of bytes: 3, 1, 4 at 0, 1, 2 s.
std::string threeSamples() {
  FileBuilder file;
  const std::uint64_t data = file.addData(Bytes().f64(0).u8(3).f64(1).u8(1).f64(2).u8(4));
  file.addSortedGroup({3, 9}, {timeChannel(), channelOf("level", 0, 8, 8)}, data);
  return file.bytes();
}

class RoutesTest : public testing::Test {
 protected:
  Answer ask(const std::string& name, const Parameters& parameters) {
    return routes_.answer(name, request(parameters));
  }
  static Parameters column(const std::string& number) {
    return {{"file", "0"}, {"table", "0"}, {"column", number},
            {"from", "0"}, {"to", "2"},    {"pixels", "10"}};
  }

  TempFile file_{threeSamples()};
  Routes routes_{{file_.path()}, std::size_t{1} << 20U};
};

}  // namespace

TEST_F(RoutesTest, StatisticsAreOfTheSamplesInTheWindow) {
  EXPECT_EQ(ask("statistics", column("1")).body,
            R"({"values":3,"gaps":0,"minimum":1.0,"maximum":4.0,"first":3.0,"last":4.0,)"
            R"("mean":2.6666666666666665,"deviation":1.5275252316519465})");
}

TEST_F(RoutesTest, SamplesAreATable) {
  EXPECT_EQ(ask("csv", {{"file", "0"},
                        {"table", "0"},
                        {"columns", "1"},
                        {"from", "0.5"},
                        {"to", "2"},
                        {"pixels", "1"}})
                .body,
            "time [s],level\n1,1\n2,4\n");
}

TEST_F(RoutesTest, ValueIsTheLastUpToATime) {
  Parameters parameters = column("1");
  parameters["at"] = "1.5";
  EXPECT_EQ(ask("value", parameters).body, R"({"time":1.0,"value":"1"})");
}

TEST_F(RoutesTest, FileThatGrowsIsOpenedAgain) {
  EXPECT_EQ(ask("revisions", {}).body, R"({"revisions":[0]})");
  file_.writeAt(threeSamples().size(), std::string(8, '\0'));
  EXPECT_EQ(ask("revisions", {}).body, R"({"revisions":[1]})");
}

TEST_F(RoutesTest, WrongParametersAreRefusedWithASentence) {
  const auto expectRefusal = [&](const std::string& name, const std::string& value,
                                 const std::string& sentence) {
    Parameters parameters = column("1");
    parameters[name] = value;
    const Answer answer = ask("curve", parameters);
    EXPECT_EQ(answer.status, 400) << name << '=' << value;
    EXPECT_EQ(answer.body, sentence + ".\n");
  };
  expectRefusal("file", "1", "\"file\" is no number from 0 to 0");
  expectRefusal("file", "-1", "\"file\" is no number from 0 to 0");
  expectRefusal("table", "1", "the file has no such column");
  expectRefusal("column", "4294967295", "the file has no such column");
  expectRefusal("from", "nan", "\"from\" is no number");
  expectRefusal("to", "inf", "\"to\" is no number");
  expectRefusal("to", "0", "\"from\" is not less than \"to\"");
  expectRefusal("to", "1e9999", "\"to\" is no number");
  expectRefusal("pixels", "0", "\"pixels\" is 0");
  expectRefusal("pixels", "20001", "\"pixels\" is no number from 0 to 20000");
  EXPECT_EQ(ask("curve", {}).body, "the parameter \"from\" is missing.\n");
  EXPECT_EQ(ask("nothing", {}).status, 404);
}

TEST(RequestGuard, LetsInWhoKnowsTheAddressAlone) {
  const RequestGuard guard("5ec2e7", 8080);
  EXPECT_EQ(guard.address(), "http://127.0.0.1:8080/5ec2e7/");
  const auto refusal = [&](const std::string& host, std::optional<std::string> origin,
                           const std::string& path) {
    return guard.refusal({host, std::move(origin), path});
  };
  const std::string ours = "127.0.0.1:8080";
  EXPECT_EQ(refusal(ours, std::nullopt, "/5ec2e7/"), "");
  EXPECT_EQ(refusal("localhost:8080", "http://localhost:8080", "/5ec2e7/api/file"), "");
  const std::string lacks_token = "the address lacks its token; use the one that mdf view printed";
  for (const char* path : {"", "/", "/5ec2e7", "/5ec2e8/", "/5EC2E7/", "//5ec2e7/"}) {
    EXPECT_EQ(refusal(ours, std::nullopt, path), lacks_token) << path;
  }
  const std::string other_host = "the host of this request is not the one that mdf view listens on";
  for (const char* host : {"", "127.0.0.1", "127.0.0.1:80", "rebound.example:8080"}) {
    EXPECT_EQ(refusal(host, std::nullopt, "/5ec2e7/"), other_host) << host;
  }
  for (const char* origin :
       {"null", "", "https://127.0.0.1:8080", "http://127.0.0.1:81", "http://elsewhere.example"}) {
    EXPECT_EQ(refusal(ours, origin, "/5ec2e7/"), "this request comes from another page") << origin;
  }
}

TEST(RequestGuard, TokensAre128BitsAndDiffer) {
  const std::string token = randomToken();
  EXPECT_EQ(token.size(), 32U);
  EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_NE(token, randomToken());
}

}  // namespace mdf_tests
