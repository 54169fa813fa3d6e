// The gateway as web servers start it.
#include <gmock/gmock.h>
#include <sys/mount.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include <platform/easy_uci.h>

#include "board/board.h"

namespace {

using testing::AllOf, testing::AnyOf, testing::EndsWith, testing::HasSubstr, testing::MatchesRegex,
    testing::Not;

struct Answer {
  std::string verdict = {};  // the status, and the word of a refusal: "403 confirm"
  std::string head = {};
  std::string body = {};
};

// What a command of the router prints: an answer as CGI or as HTTP.
Answer run(const std::string& command) {
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string text(65536, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), pipe));
  EXPECT_EQ(pclose(pipe), 0) << command;
  const auto end = text.find("\r\n\r\n");
  if (end == std::string::npos) return {text};
  Answer answer{text.substr(text.find(' ') + 1, 3), text.substr(0, end), text.substr(end + 4)};
  if (answer.body.starts_with(R"({"error":")")) {
    answer.verdict += " " + answer.body.substr(10, answer.body.find('"', 10) - 10);
  }
  return answer;
}

// Starts the gateway on a request that its pages might send but for some variables, "NAME=value"
// with '|' between; an empty value takes one away.
Answer send(const std::string& body, const std::string& changes = "") {
  board::write_file("/root/body", body);
  std::istringstream variables(
      "REQUEST_METHOD=POST|CONTENT_TYPE=application/json|HTTP_HOST=192.168.10.1|"
      "HTTP_ORIGIN=http://192.168.10.1|REMOTE_ADDR=192.168.10.50|" +
      changes);
  std::string command;
  for (std::string change; std::getline(variables, change, '|');) {
    const bool is_empty = change.ends_with('=');
    if (is_empty) change.pop_back();
    command += (is_empty ? "unset '" : "export '") + change + "';";
  }
  return run(command + "exec zelto-cgi </root/body");
}

const std::string kHeartbeat = R"({"type":"getheartbeat"})";
const std::string kRead = R"({"type":"getlancfg"})";
const std::string kSession = R"({"type":"session"})";
const std::string kLogout = R"({"type":"logout"})";
const std::string kFailures = "/tmp/zelto-gateway/failures";

Answer log_in(const std::string& password = "admin", const std::string& changes = "") {
  return send(R"({"type":"loginauth","user":"admin","pass":")" + password + "\"}", changes);
}

Answer danger(const std::string& password, const std::string& changes) {
  return send(R"({"type":"gethostinfo","_Password":)" + password + "}", changes);
}

std::string token_of(const Answer& login) {
  const auto at = login.body.find(R"("token":")");
  return at == std::string::npos ? "" : login.body.substr(at + 9, 32);
}

std::string cookie(const std::string& token) {
  return "HTTP_COOKIE=zelto_session=" + token;
}

std::string seconds_ago(long seconds) {
  return " " + std::to_string(std::stol(board::read_file("/proc/uptime")) - seconds);
}

// Makes a session as if the login and the last request had been so many seconds ago.
void age(const std::string& token, long login, long use) {
  board::write_file("/tmp/zelto-gateway/session-" + token, seconds_ago(login) + seconds_ago(use));
}

using Verdicts = std::vector<std::pair<std::string, std::vector<std::string>>>;

template <typename Ask>
void expect(const Verdicts& verdicts, const Ask& ask) {
  for (const auto& [verdict, cases] : verdicts) {
    for (const auto& one : cases) EXPECT_EQ(ask(one).verdict, verdict) << one.substr(0, 99);
  }
}

struct Gateway : testing::Test {
  Gateway() { board::reset(); }
};

TEST_F(Gateway, AnswersItsOwnPagesOnly) {
  const Verdicts verdicts{
      {"200",
       {"", "CONTENT_TYPE=Application/JSON; charset=utf-8", "HTTP_SEC_FETCH_SITE=same-origin",
        "HTTP_ORIGIN=|HTTP_REFERER=http://192.168.10.1/index.html", "CONTENT_LENGTH=3",
        "HTTP_HOST=Router.lan:80|HTTP_ORIGIN=http://router.lan",
        "HTTP_HOST=[fd00::1]|HTTP_ORIGIN=https://[fd00::1]:443|HTTPS=on"}},
      {"405 method", {"REQUEST_METHOD=GET", "REQUEST_METHOD=post", "REQUEST_METHOD="}},
      {"400 content_type", {"CONTENT_TYPE=text/plain", "CONTENT_TYPE=application/jsonx"}},
      {"403 foreign_host",
       {"HTTP_HOST=", "HTTP_HOST=evil.example|HTTP_ORIGIN=http://evil.example"}},
      {"403 foreign_origin",
       {"HTTP_ORIGIN=http://evil.example", "HTTP_ORIGIN=http://192.168.10.1.evil.example",
        "HTTP_ORIGIN=http://evil@192.168.10.1", "HTTP_ORIGIN=http://192.168.10.1:8080",
        "HTTP_ORIGIN=null", "HTTP_ORIGIN=http://evil.example|HTTP_REFERER=http://192.168.10.1/",
        "HTTP_ORIGIN=|HTTP_REFERER=http://evil.example/?http://192.168.10.1/",
        "HTTP_ORIGIN=", "HTTP_SEC_FETCH_SITE=same-site", "HTTPS=on"}},
  };
  expect(verdicts, [](const std::string& changes) { return send(kHeartbeat, changes); });
  ASSERT_EQ(easy_uci_set_option_string("zelto", "gateway", "hosts", "a.b My.example"), 0);
  EXPECT_EQ(send(kHeartbeat, "HTTP_HOST=my.example|HTTP_ORIGIN=https://my.example").verdict, "200");
  EXPECT_THAT(send("").head, HasSubstr("\r\nContent-Type: application/json\r\nCache-Control: no-"
                                       "store\r\nX-Content-Type-Options: nosniff\r\nContent-"));
}

TEST_F(Gateway, AnswersCommandsOnly) {
  const std::string spaces(65536 - kHeartbeat.size(), ' ');
  const Verdicts verdicts{
      {"200", {kHeartbeat + spaces}},
      {"413 too_large", {kHeartbeat + spaces + " ", std::string(10'000'000, ' ')}},
      // Two names that are one to the library would show each reader a request of its own.
      {"400 bad_request",
       {"", "getheartbeat", "[" + kHeartbeat + "]", kHeartbeat + "x", kHeartbeat + '\0',
        std::string(60000, '['), R"({"type":"getheartbeat","type":"getlancfg"})",
        R"({"TYPE":"getlancfg","type":"getheartbeat"})"}},
      {"404 unknown_command",
       {"{}", R"({"type":5})", R"({"type":"GetLanCfg"})", R"({"type":"no\r\nSet-Cookie: a=b"})"}},
      {"401 no_session", {R"({"TYPE":"getlancfg"})", kLogout, kSession}},
  };
  expect(verdicts, [](const std::string& body) { return send(body); });
}

TEST_F(Gateway, TakesNoTokenButItsOwn) {
  const std::string token = token_of(log_in());
  ASSERT_EQ(board::quiet({"zelto", "loginauth", "user=admin", "pass=admin"}), 0);
  const std::string lines = board::read_file("/tmp/token");
  ASSERT_EQ(lines.size(), 66U) << "the gateway's and the library's";
  const std::string other = lines.substr(33, 32);
  const Verdicts verdicts{
      {"200",
       {cookie(token), "HTTP_AUTHORIZATION=Bearer " + token,
        "HTTP_COOKIE=a=b; zelto_session=" + token + "; c=d"}},
      {"401 no_session",
       {"", "HTTP_COOKIE=zelto_session=;", cookie(token.substr(0, 31)), cookie(token + "0"),
        cookie("A" + token.substr(1)), cookie(other), cookie(std::string(32, '0')),
        cookie("../zelto-gateway/session-0000000"), cookie(token) + "; zelto_session=" + other,
        cookie(token) + "|HTTP_AUTHORIZATION=Bearer " + other,
        "HTTP_AUTHORIZATION=Bearer  " + token, "HTTP_AUTHORIZATION=Basic " + token,
        "QUERY_STRING=zelto_session=" + token}},
  };
  expect(verdicts, [](const std::string& changes) { return send(kRead, changes); });
  board::remove_file("/tmp/token");
  EXPECT_EQ(send(kRead, cookie(token)).verdict, "401 no_session") << "unknown to the library";
}

TEST_F(Gateway, LogsInAndOut) {
  const auto answer = log_in();
  const std::string token = token_of(answer);
  EXPECT_THAT(answer.body, MatchesRegex(R"(\{"type":"loginauth","token":"[0-9a-f]{32}",)"
                                        R"("first_login":0,"defmode":"router","result":0\})"));
  EXPECT_THAT(answer.head, EndsWith("\r\nSet-Cookie: zelto_session=" + token +
                                    "; Path=/; HttpOnly; SameSite=Strict"));
  EXPECT_EQ(board::read_file("/tmp/token"), token + "\n") << "the library's token is gone";
  EXPECT_EQ(board::quiet({"sh", "-c", "find /tmp/zelto-gateway /tmp/token -perm /77 | grep ."}), 1);
  const auto other = log_in("admin", "HTTPS=on|HTTP_ORIGIN=https://192.168.10.1");
  EXPECT_THAT(other.head, EndsWith("; Secure"));
  const auto farewell = send(kLogout, cookie(token));
  EXPECT_EQ(farewell.body, R"({"type":"logout","result":0})");
  EXPECT_THAT(farewell.head, HasSubstr("\r\nSet-Cookie: zelto_session=; Path=/;"));
  EXPECT_EQ(send(kRead, cookie(token)).verdict, "401 no_session");
  board::write_file("/usr/sbin/wan_check", "#!/bin/sh\nenv >/tmp/seen\n");
  EXPECT_EQ(send(R"({"type":"getwanmode"})", cookie(token_of(other))).verdict, "200");
  EXPECT_THAT(board::read_file("/tmp/seen"), Not(AnyOf("", HasSubstr("HTTP"))));
  EXPECT_EQ(board::read_file("/tmp/token"), token_of(other) + "\n");
}

TEST_F(Gateway, EndsSessionsAfterAWhile) {
  const std::string token = token_of(log_in());
  age(token, 30000, 300);
  EXPECT_EQ(send(kRead, cookie(token) + "|QUERY_STRING=poll").verdict, "200");
  EXPECT_THAT(send(kSession, cookie(token)).body,
              MatchesRegex(R"(\{"type":"session","result":0,"idle_seconds":30[0-5],)"
                           R"("idle_limit":600,"age_seconds":3000[0-5],"age_limit":43200\})"));
  EXPECT_EQ(send(kRead, cookie(token)).verdict, "200");
  EXPECT_THAT(send(kSession, cookie(token)).body, HasSubstr(R"("idle_seconds":0)"));
  const std::vector<std::pair<long, long>> times{{700, 600}, {43200, 0}, {-9999, -9999}};
  for (const auto& [login, use] : times) {
    age(token, login, use);
    EXPECT_EQ(send(kRead, cookie(token)).verdict, "401 no_session") << login;
  }
  const std::string fresh = token_of(log_in());
  EXPECT_EQ(board::read_file("/tmp/token"), fresh + "\n") << "the old one is swept";
}

TEST_F(Gateway, LetsNobodyIntoARouterWithoutAnAccount) {
  ASSERT_EQ(easy_uci_delete_option("system", "route", "routepwd"), 0);
  for (const char* members : {"", R"(,"user":"","pass":"")", R"(,"user":"admin")"})
    EXPECT_EQ(send(R"({"type":"loginauth")" + std::string(members) + "}").verdict,
              "403 account_unset");
}

TEST_F(Gateway, SlowsDownWhoGuessesAndKeepsBoundedRecords) {
  int answered = 0;
  for (int i = 0; i < 1000; ++i) {  // however the server spells the address
    const auto answer = log_in(
        "guess", i % 2 == 0 ? "REMOTE_ADDR=192.168.10.66" : "REMOTE_ADDR=[::ffff:192.168.10.66]");
    if (answer.verdict == "200") ++answered;
    ASSERT_THAT(answer.body + answer.head,
                AnyOf(HasSubstr(R"({"type":"loginauth","result":1})"), HasSubstr("Retry-After: ")));
  }
  EXPECT_THAT(answered, AllOf(testing::Ge(5), testing::Le(12)));
  const std::string oldest = token_of(log_in());
  age(oldest, 100, 100);
  for (int i = 0; i < 32; ++i) ASSERT_EQ(log_in().verdict, "200") << "from elsewhere";
  EXPECT_EQ(send(kRead, cookie(oldest)).verdict, "401 no_session");
  EXPECT_EQ(board::read_file("/tmp/token").size(), 32U * 33U);
  board::write_file(kFailures, "fd00::66 12" + seconds_ago(100));
  EXPECT_EQ(log_in("admin", "REMOTE_ADDR=fd00:0::66").verdict, "429 too_many_attempts");
  board::write_file(kFailures, "fd00::66 12" + seconds_ago(300));
  EXPECT_EQ(log_in("admin", "REMOTE_ADDR=fd00:0::66").verdict, "200");
  EXPECT_EQ(board::read_file(kFailures), "");
  std::string many;
  for (int i = 0; i < 500; ++i) many += "fd00::" + std::to_string(i) + " 9" + seconds_ago(9) + "\n";
  board::write_file(kFailures, many);
  log_in("guess");
  EXPECT_EQ(std::ranges::count(board::read_file(kFailures), '\n'), 128);
}

TEST_F(Gateway, AsksForThePasswordBeforeDangerAndWritesDownWhoDidWhat) {
  const std::string session = cookie(token_of(log_in()));
  EXPECT_EQ(danger("\"admin\"", "").verdict, "401 no_session");
  EXPECT_EQ(danger("5", session).verdict, "403 confirm");
  EXPECT_EQ(danger("\"admin\"", session).verdict, "200");
  send(R"({"type":"setlancfg","lanip":"300\nforged"})", session);
  log_in("\\nforged", "REMOTE_ADDR=1.2.3.4\n<1>forged");
  const auto log = board::log();
  for (const char* line :
       {"loginauth from 192.168.10.50: result 0", "gethostinfo from 192.168.10.50: done",
        "setlancfg from 192.168.10.50: result 1", "loginauth from unknown: result 1"})
    EXPECT_THAT(log, testing::Contains(std::string("<5>") + line));
  EXPECT_THAT(log, testing::Each(Not(HasSubstr("forged"))));
  for (const char* wrong : {R"("")", R"("admi")", R"("Admin")", R"("adminadmin")", R"("admin0")"})
    EXPECT_EQ(danger(wrong, session).verdict, "403 wrong_password") << wrong;
  board::write_file(kFailures, "192.168.10.50 12" + seconds_ago(100));
  EXPECT_EQ(danger("\"admin\"", session).verdict, "429 too_many_attempts");
  ASSERT_EQ(easy_uci_set_option_string("zelto", "gateway", "danger", "0"), 0);
  EXPECT_EQ(danger("\"admin\"", session).verdict, "403 disabled");
}

TEST_F(Gateway, LetsNobodyInWithoutAPlaceToKeepRecords) {
  ASSERT_EQ(mount("full", "/tmp", "tmpfs", 0, "size=64k"), 0);
  const std::string session = cookie(token_of(log_in()));
  board::quiet({"sh", "-c", "cat /dev/zero >/tmp/full 2>/dev/null"});
  EXPECT_EQ(log_in().verdict, "500 storage");
  EXPECT_EQ(send(kRead, session).verdict, "200");
  EXPECT_EQ(send(kLogout, session).verdict, "200");
  EXPECT_EQ(send(kRead, session).verdict, "401 no_session");
  board::remove_file("/tmp/full");
  const std::string next = cookie(token_of(log_in()));
  board::quiet({"chmod", "755", "/tmp/zelto-gateway"});
  EXPECT_EQ(send(kRead, next).verdict, "401 no_session") << "others may have been there";
  EXPECT_EQ(log_in().verdict, "500 storage");
}

// `body` stands as it is sent, be it in chunks.
Answer send_text(const std::string& headers, const std::string& body) {
  board::write_file("/tmp/request",
                    "POST /cgi-bin/zelto-cgi HTTP/1.1\r\nHost: router:8081\r\nConnection: close\r\n"
                    "Content-Type: application/json\r\nOrigin: http://router:8081\r\n" +
                        headers + "\r\n" + body);
  return run("nc 127.0.0.1 8081 </tmp/request");
}

Answer send_http(const std::string& headers, const std::string& body) {
  return send_text(headers + "Content-Length: " + std::to_string(body.size()) + "\r\n", body);
}

// How a client sends what it does not know the length of.
Answer send_chunks(const std::string& headers) {
  return send_text(headers + "Transfer-Encoding: chunked\r\n",
                   "7\r\n{\"type\"\r\nd\r\n:\"getlancfg\"}\r\n0\r\n\r\n");
}

// `chunks` is the verdict on a request in chunks: not every server puts them together.
void expect_session(const char* chunks) {
  const auto answer = send_http("", R"({"type":"loginauth","user":"admin","pass":"admin"})");
  const std::string session = "Cookie: zelto_session=" + token_of(answer) + "\r\n";
  EXPECT_THAT(answer.head, HasSubstr("Set-" + session.substr(0, session.size() - 2) + ";"));
  EXPECT_THAT(send_http(session, kRead).body, HasSubstr("192.168.10.1"));
  EXPECT_EQ(send_chunks(session).verdict, chunks);
  EXPECT_EQ(send_http("", kRead).verdict, "401 no_session");
  EXPECT_EQ(send_http(session + "Sec-Fetch-Site: cross-site\r\n", kRead).verdict,
            "403 foreign_origin");
  EXPECT_EQ(send_http(session, std::string(1'000'000, ' ')).verdict, "413 too_large");
  EXPECT_THAT(board::log(), testing::Contains("<5>loginauth from 127.0.0.1: result 0"));
}

TEST_F(Gateway, WorksBelowWebServers) {
  const std::string link = "mkdir -p /srv/cgi-bin; ln -s /usr/bin/zelto-cgi /srv/cgi-bin";
  board::quiet({"sh", "-c", link});
  ASSERT_EQ(board::quiet({"httpd", "-p", "8081", "-h", "/srv"}), 0);
  expect_session("400 bad_request");
  board::reset();
  if (board::quiet({"test", "-e", "/usr/bin/lighttpd"}) != 0) GTEST_SKIP() << "no lighttpd";
  board::quiet({"sh", "-c", link});
  board::write_file("/tmp/conf", R"(server.document-root="/srv" server.port=8081
      server.modules=("mod_cgi") server.upload-dirs=("/tmp") cgi.assign=("/zelto-cgi"=>""))");
  ASSERT_EQ(board::quiet({"lighttpd", "-m", "/lib/board", "-f", "/tmp/conf"}), 0);
  expect_session("200");
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  return board::run({.programs = {GATEWAY_PROGRAMS}}, [] { return RUN_ALL_TESTS(); });
}
