#include <gtest/gtest.h>

#include "Gate.h"
#include "Secret.h"

namespace velka::serve {
namespace {

const std::string kSecret = "0123456789abcdef0123456789abcdef";
constexpr uint16_t kPort = 4711;

Request asked(const std::string& path) {
  return {"GET", path, {}, {"127.0.0.1:4711"}, {}, ""};
}

int statusOf(const Request& request) {
  std::string rest;
  const auto refusal = Gate(kSecret, kPort).refuse(request, rest);
  return refusal ? refusal->status : kOk;
}

TEST(Gate, LetsInWhoKnowsTheAddress) {
  const Gate gate(kSecret, kPort);
  EXPECT_EQ(gate.address(), "http://127.0.0.1:4711/" + kSecret + "/");
  std::string rest;
  EXPECT_FALSE(gate.refuse(asked("/" + kSecret + "/paper"), rest));
  EXPECT_EQ(rest, "paper");
  EXPECT_FALSE(gate.refuse(asked("/" + kSecret + "/"), rest));
  EXPECT_EQ(rest, "");
}

TEST(Gate, RefusesAnotherSecretOrNone) {
  for (const std::string path : {"", "/", "/paper", "//paper", "/0123/paper"})
    EXPECT_EQ(statusOf(asked(path)), kForbidden) << path;
  EXPECT_EQ(statusOf(asked("/" + kSecret)), kForbidden);
  EXPECT_EQ(statusOf(asked("/" + kSecret + "0/paper")), kForbidden);
}

TEST(Gate, RefusesNamesThatOnlyLeadHere) {
  Request request = asked("/" + kSecret + "/");
  for (const std::string host : {"evil.example:4711", "127.0.0.1", "127.0.0.1:47110", ""}) {
    request.hosts = {host};
    EXPECT_EQ(statusOf(request), kForbidden) << host;
  }
  request.hosts = {};
  EXPECT_EQ(statusOf(request), kForbidden);
  request.hosts = {"127.0.0.1:4711", "127.0.0.1:4711"};
  EXPECT_EQ(statusOf(request), kForbidden);
  request.hosts = {"localhost:4711"};
  EXPECT_EQ(statusOf(request), kOk);
}

TEST(Gate, RefusesOtherPages) {
  Request request = asked("/" + kSecret + "/");
  for (const std::string origin : {"http://evil.example", "null", "https://127.0.0.1:4711"}) {
    request.origins = {origin};
    EXPECT_EQ(statusOf(request), kForbidden) << origin;
  }
  request.origins = {"http://127.0.0.1:4711"};
  EXPECT_EQ(statusOf(request), kOk);
  request.site = "cross-site";
  EXPECT_EQ(statusOf(request), kForbidden);
}

TEST(Gate, AnswersGetAlone) {
  Request request = asked("/" + kSecret + "/");
  request.method = "POST";
  EXPECT_EQ(statusOf(request), kNotAllowed);
}

TEST(Secret, IsLongAndNeverTheSame) {
  const std::string one = newSecret();
  EXPECT_EQ(one.size(), 32U);
  EXPECT_NE(one, newSecret());
  EXPECT_TRUE(sameSecret(one, one));
  EXPECT_FALSE(sameSecret(one, one.substr(1)));
  EXPECT_FALSE(sameSecret(one, newSecret()));
}

}  // namespace
}  // namespace velka::serve
