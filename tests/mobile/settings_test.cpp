// How the modem dials, and the monthly data allowance.

#include <zelto/mobile.h>

#include "board/modem.h"
#include "support/effects.h"
#include "support/router_test.h"

namespace zelto_test {
namespace {

constexpr const char* kNothingSet =
    R"({"type":"getapninfo","authtype":"0","apn":"","username":"","passwd":"","iptype":"0",)"
    R"("profileName":"","nettype":"0","enable":"0","simcardstatus":"0","serviceinfo":"unknow",)"
    R"("modlever":""})";

class MobileSettings : public RouterTest {
 protected:
  static std::string settings(const std::string& value) {
    return with(R"("authtype":"V","apn":"V","username":"V","passwd":"V","iptype":"V",)"
                R"("profileName":"V","nettype":"V","enable":"V")",
                {{"V", value}});
  }
  static std::string set(const std::string& members) {
    return ask(R"({"type":"setapninfo",)" + members + "}");
  }
};

TEST_F(MobileSettings, ComeBackAsTheyWereSet) {
  board::plug_modem("like chatty\nATI\n  x y\n  Revision: R1 (b)\n");
  for (const char* value :
       {"a", R"('\"$(`)", R"($0;|&\\)", "%s%n <>", " ~\\u0001 ", "\u00fc\u4e2d"}) {
    EXPECT_EQ(set(settings(value)), R"({"type":"setapninfo","result":0})") << value;
    board::settle();
    EXPECT_EQ(ask(R"({"type":"getapninfo"})"),
              R"({"type":"getapninfo",)" + settings(value) +
                  R"(,"simcardstatus":"1","serviceinfo":"UNICOM","modlever":"R1"})");
  }
}

TEST_F(MobileSettings, WhatIsNotGivenIsCleared) {
  set(settings("x"));
  board::settle();
  board::clear_journal();
  EXPECT_EQ(set(R"("apn":"cmnet","username":7)"), R"({"type":"setapninfo","result":0})");
  expect_effects(
      "uci set mobile.global.authtype=\nuci set mobile.global.apn=cmnet\n"
      "uci set mobile.global.{username=, passwd=, iptype=, apnprofile=, nettype=, enable=}\n"
      "start /etc/init.d/mob_daemon restart &\n",
      "setapninfo");
  EXPECT_EQ(ask(R"({"type":"getapninfo"})"),
            with(kNothingSet, {{R"("apn":"")", R"("apn":"cmnet")"}}));
}

TEST_F(MobileSettings, WhatDoesNotFitIsRefusedWhole) {
  const struct {
    const char* member;
    std::size_t longest;
  } members[] = {{"authtype", 31}, {"apn", 63},         {"username", 63}, {"passwd", 63},
                 {"iptype", 31},   {"profileName", 63}, {"nettype", 31},  {"enable", 11}};
  for (const auto& m : members) {
    const auto set_to = [&](const std::string& value) {
      return set("\"" + std::string(m.member) + R"(":")" + value + "\"");
    };
    EXPECT_EQ(set_to(std::string(m.longest, 'x')), R"({"type":"setapninfo","result":0})");
    board::settle();
    board::clear_journal();
    for (const std::string& value : {std::string(m.longest + 1, 'x'), std::string("a\\nb")}) {
      EXPECT_EQ(set_to(value), R"({"type":"setapninfo","result":1})") << m.member << value;
    }
    EXPECT_THAT(board::journal(), testing::IsEmpty());
  }
}

TEST_F(MobileSettings, DataAssistantAddsUpTheTraffic) {
  constexpr const char* kOptions[] = {"flowswitch", "monthlypackage", "monup",
                                      "curup",      "mondown",        "curdown"};
  const struct {
    std::vector<std::optional<std::string>> values;
    std::string reply;
  } cases[] = {
      {{{}, {}, {}, {}, {}, {}}, R"("Switch":0,"MonthlyPackage":"0","MonUp":"0","MonDown":"0")"},
      {{"1", "10240", "3000000000", "2000000000", "1", {}},
       R"("Switch":1,"MonthlyPackage":"10240","MonUp":"5000000000","MonDown":"1")"},
      {{"1on", std::string(40, '9'), " 12k", "-20", "x", "9223372036854775806"},
       R"("Switch":1,"MonthlyPackage":")" + std::string(31, '9') +
           R"(","MonUp":"-8","MonDown":"9223372036854775806")"},
      {{"on", "5", {}, "7", {}, {}},
       R"("Switch":0,"MonthlyPackage":"5","MonUp":"7","MonDown":"0")"},
  };
  for (const auto& c : cases) {
    for (std::size_t i = 0; i < c.values.size(); ++i) {
      given("mobile", "action", kOptions[i], c.values[i]);
    }
    EXPECT_EQ(ask(R"({"type":"get4gflowassistant"})"),
              R"({"type":"get4gflowassistant",)" + c.reply + "}");
  }
  EXPECT_EQ(ask(R"({"type":"set4gflowassistant","Switch":"1","MonthlyPackage":"2048"})"),
            R"({"type":"set4gflowassistant","result":0})");
  EXPECT_EQ(ask(R"({"type":"set4gflowassistant","Switch":1})"),
            R"({"type":"set4gflowassistant","result":0})");
  expect_effects(
      "uci set mobile.action.{flowswitch=1, MonthlyPackage=2048}\n"
      "uci set mobile.action.{flowswitch=, MonthlyPackage=}\n",
      "set4gflowassistant");
  EXPECT_EQ(stored("mobile", "action", "monthlypackage"), "5");
}

TEST_F(MobileSettings, AnotherTypeIsRefused) {
  for (const auto handler : {bs_Get4gBasicInfo, bs_Get_4Gmodule_status, bs_Get_apn_info,
                             bs_Set_apn_info, bs_get_4gflowassistant, bs_set_4gflowassistant}) {
    EXPECT_THAT(call(handler, R"({"type":"x","apn":"y"})").reply,
                testing::MatchesRegex(R"(\{"type":"[a-z4]+","result":1\})"));
    EXPECT_EQ(call(handler, "{").status, -1);
  }
  EXPECT_THAT(board::journal(), testing::IsEmpty());
}

}  // namespace
}  // namespace zelto_test
