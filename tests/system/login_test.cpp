// Login and tokens.

#include <zelto/system.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using zelto_test::ask;

constexpr const char* kRefused = R"({"type":"loginauth","result":1})";

class Login : public zelto_test::RouterTest {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    given("system", "route", "routeusr", "parent");
    given("system", "route", "routepwd", "s3cret");
    given("system", "route", "webLoginFirst", "1");
    given_mode("router");
  }
  static std::string log_in(const std::string& user, const std::string& password) {
    return ask(R"({"type":"loginauth","user":")" + user + R"(","pass":")" + password + "\"}");
  }
};

TEST_F(Login, IssuesATokenThatPasses) {
  const auto reply = log_in("parent", "s3cret");
  EXPECT_THAT(reply, MatchesRegex(R"(\{"type":"loginauth","token":"[0-9a-f]{32}",)"
                                  R"("first_login":1,"defmode":"router","result":0\})"));
  const auto token = reply.substr(29, 32);
  EXPECT_EQ(board::read_file("/tmp/token"), token + "\n");
  EXPECT_THAT(
      board::journal(),
      ElementsAre("run cat /proc/uptime | awk '{print $1}' | md5sum | awk '{print $1}' | tr -d "
                  "'\\\\n'",
                  "run echo " + token + " >> /tmp/token"));
  EXPECT_EQ(check_auth(token.c_str()), 1);
  EXPECT_EQ(check_auth(token.substr(0, 5).c_str()), 1) << "any part passes";
  EXPECT_EQ(check_auth(""), 1);
  EXPECT_EQ(check_auth((token + "0").c_str()), 0);
  EXPECT_EQ(check_auth(nullptr), 0);
}

TEST_F(Login, RefusesEverythingElse) {
  const std::string long_user(32, 'u');
  const std::string long_password(128, 'p');
  EXPECT_EQ(check_auth("0"), 0) << "no token file";
  EXPECT_EQ(log_in("parent", "S3cret"), kRefused);
  EXPECT_EQ(log_in("parent", ""), kRefused);
  EXPECT_EQ(log_in("", "s3cret"), kRefused);
  EXPECT_EQ(ask(R"({"type":"loginauth","user":"parent","pass":5})"), kRefused);
  given("system", "route", "routeusr", long_user);
  given("system", "route", "routepwd", long_password);
  EXPECT_EQ(log_in(long_user, long_password), kRefused) << "never cut to match";
  EXPECT_EQ(log_in(long_user.substr(1), long_password.substr(1)), kRefused) << "the stored neither";
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_EQ(board::quiet({"test", "-e", "/tmp/token"}), 1);
}

TEST_F(Login, AnAccountThatIsNotSetAdmitsEveryone) {
  given("system", "route", "routeusr", std::nullopt);
  given("system", "route", "routepwd", std::nullopt);
  EXPECT_THAT(ask(R"({"type":"loginauth"})"), testing::HasSubstr("\"result\":0"));
  EXPECT_EQ(log_in("parent", ""), kRefused);
}

TEST_F(Login, TellsTheModeAndTheBandOfItsUplink) {
  const struct {
    std::optional<std::string> mode;
    std::optional<std::string> band;
    const char* end;
  } cases[] = {
      {"wisp", "2.4G", R"("defmode":"wisp","wifiType":"2.4G","result":0})"},
      {"wisp", std::nullopt, R"("defmode":"wisp","wifiType":"","result":0})"},
      {"repeater", "5.8G", R"("defmode":"repeater","wifiType":"5.8G","result":0})"},
      {"AP", "2.4G", R"("defmode":"AP","result":0})"},
      {std::nullopt, "2.4G", R"("first_login":0,"defmode":"router","result":0})"},
  };
  for (const auto& c : cases) {
    given("system", "route", "operationmode", c.mode);
    given("internet", "wisp", "wisp_type", c.band);
    given("internet", "repeater", "repeater_type", c.band);
    if (!c.mode) given("system", "route", "webLoginFirst", std::nullopt);
    EXPECT_THAT(log_in("parent", "s3cret"), testing::EndsWith(c.end));
  }
}

TEST_F(Login, ReadsTheTokenFileLineByLine) {
  board::write_file("/tmp/token", "\nabc\n" + std::string(300, 'd') + "e\nlastX");
  EXPECT_EQ(check_auth("abc"), 1);
  EXPECT_EQ(check_auth("lastX"), 0) << "the last character of a line is cut";
  EXPECT_EQ(check_auth("last"), 1);
  EXPECT_EQ(check_auth(std::string(256, 'd').c_str()), 0);
}

}  // namespace
