// The list of parental rules.

#include <unistd.h>

#include <zelto/access.h>

#include "access/access_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::command;
using zelto_test::result;

constexpr const char* kList = "/etc/parental_list";
constexpr const char* kMove = "run mv /tmp/parental_list /etc/parental_list";
const std::string kWhen = R"("accesstime":"16:00-20:00","day":"12345")";
const std::string kRule = R"("mac":"M",)" + kWhen;

class Parental : public zelto_test::AccessTest {
 protected:
  static std::string set(const std::string& members) {
    return ask(command("setparentalinfo", members));
  }
};

TEST_F(Parental, EditsTheList) {
  const std::string line = " M 16:00-20:00 12345\n";
  const std::string others = "Yg== dev m 1-2 7\nYWE= dev m 1-2 7\n";
  const struct {
    std::string before;
    std::string members;
    std::string after;
  } cases[] = {
      {"", R"("cfg_type":"add","alias":"a","devname":"tablet",)" + kRule, "YQ== tablet" + line},
      {"", R"("cfg_type":"add","alias":"school nights","devname":" kitchen  tablet",)" + kRule,
       "c2Nob29sIG5pZ2h0cw== _kitchen__tablet" + line},
      {"YQ== old x y z\n" + others, R"("cfg_type":"add","alias":"a","devname":"",)" + kRule,
       others + "YQ== unknow" + line},
      {"YQ== old x y z\n" + others + "YQ== old x y z\n",
       R"("cfg_type":"add","alias":"n","alias_old":"a",)" + kRule, others + "bg== unknow" + line},
      {"YQ== old x y z\n" + others, R"("cfg_type":"del","alias":"a")", others},
      {"YQ== old x y z\n" + others, R"("cfg_type":"","alias_old":"a")", others},
      // The others in their plain form, without short lines and the unended line's last character.
      {"\nYg== de\nYg== d f\nYg==   d m 1-2  7 more\nYg== d m 1-2 76", R"("cfg_type":"del")",
       "Yg== d f  \nYg== d m 1-2 7\nYg== d m 1-2 7\n"},
      {"Yg== d m 1-2 76", R"("cfg_type":"add","alias":"a",)" + kRule,
       "Yg== d m 1-2 7\nYQ== unknow" + line},
  };
  for (const auto& c : cases) {
    board::write_file(kList, c.before);
    EXPECT_EQ(set(c.members), result("setparentalinfo", 0)) << c.members;
    EXPECT_EQ(board::read_file(kList), c.after) << c.members;
    EXPECT_THAT(effects(), ElementsAre(kMove, kMove));
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Parental, ReadsTheListAndTheSwitch) {
  board::write_file(kList,
                    "c2Nob29sIG5pZ2h0cw== t M 1-2 7\nYQ== t M\n\n12345678\nYQ== a b\n"
                    "!!!! \xff m t d\nYQ== t M 1-2 71");
  const std::string rest = R"("devname":"t","mac":"M","accesstime":"1-2","day":"7"})";
  const auto reply = ask(R"({"type":"getparentalinfo"})");
  EXPECT_THAT(reply,
              testing::StartsWith(
                  R"({"type":"getparentalinfo","Switch":"off","list":[)"
                  R"({"alias":"school nights",)" +
                  rest + R"(,{"alias":"a","devname":"t","mac":"M","accesstime":"","day":""},)"));
  EXPECT_THAT(reply, testing::EndsWith(R"(,{"alias":"a",)" + rest + "]}"));
  board::remove_file(kList);
  const struct {
    std::optional<std::string> stored;
    std::string shown;
  } cases[] = {{"1", "on"}, {"0", "off"}, {std::nullopt, "off"}, {"00", "on"}, {"x", "on"}};
  for (const auto& c : cases) {
    given("system", "route", "parental_switch", c.stored);
    EXPECT_EQ(ask(R"({"type":"getparentalinfo"})"),
              command("getparentalinfo", R"("Switch":")" + c.shown + R"(","list":[])"));
  }
  const struct {
    const char* value;
    const char* stored;
  } switches[] = {{"on", "1"}, {"off", "0"}, {"ON", "0"}, {"", "0"}};
  for (const auto& s : switches) {
    EXPECT_EQ(ask(command("setparentalswitch", std::string(R"("Switch":")") + s.value + "\"")),
              result("setparentalswitch", 0));
    EXPECT_THAT(effects(),
                ElementsAre(std::string("uci set system.route.parental_switch=") + s.stored));
  }
  EXPECT_EQ(set_parental_state("on"), 0);
  board::write_file("/etc/config/system", "broken");
  EXPECT_EQ(set_parental_state("on"), -1);
}

TEST_F(Parental, RefusesRulesWhole) {
  const std::string before = "YQ== old x y z\n";
  board::write_file(kList, before);
  const std::string add = R"("cfg_type":"add",)";
  const std::string a = R"("cfg_type":"add","alias":"a",)";
  const auto with = [](const char* member, const std::string& value) {
    return "\"" + std::string(member) + R"(":")" + value + "\",";
  };
  const std::string long_word(24, 'x');
  const std::string requests[] = {
      R"("alias":"a",)" + kRule,
      R"("cfg_type":1,"alias":"a",)" + kRule,
      add + kRule,
      a + kWhen,
      a + R"("mac":"M","day":"1")",
      a + R"("mac":"M","accesstime":"1-2")",
      a + with("mac", "") + kWhen,
      a + with("mac", "M 1") + kWhen,
      a + with("mac", "M\\n1") + kWhen,
      a + with("mac", long_word) + kWhen,
      a + R"("mac":"M","accesstime":"1-2 3","day":"1")",
      a + R"("mac":"M","accesstime":")" + long_word + R"(","day":"1")",
      a + R"("mac":"M","accesstime":"1-2","day":"1 2")",
      a + R"("mac":"M","accesstime":"1-2","day":"1\r")",
      a + R"("mac":"M","accesstime":"1-2","day":")" + long_word + "\"",
      a + with("devname", "a\\nb") + kRule,
      a + with("devname", std::string(256, 'd')) + kRule,
      a + with("devname", std::string(295, 'd')) + kRule,
      add + with("alias", "a\\nb") + kRule,
      add + with("alias", std::string(190, 'a')) + kRule,
      add + with("alias", std::string(180, 'a')) + with("devname", std::string(60, 'd')) + kRule,
  };
  for (const auto& members : requests) {
    EXPECT_EQ(set(members), result("setparentalinfo", 1)) << members;
    EXPECT_EQ(board::read_file(kList), before) << members;
  }
  EXPECT_EQ(ask(R"({"type":"setparentalswitch"})"), result("setparentalswitch", 1));
  EXPECT_EQ(call(bs_SetParentalInfo, command("x", a + kRule).c_str()).reply,
            result("setparentalinfo", 1));
  EXPECT_EQ(call(bs_SetParentalSwitch, R"({"Switch":"on"})").reply, result("setparentalswitch", 1));
  EXPECT_EQ(call(bs_GetParentalInfo, "{}").reply, result("getparentalinfo", 1));
  EXPECT_THAT(effects(), IsEmpty());
  for (const auto handler : {bs_GetParentalInfo, bs_SetParentalInfo, bs_SetParentalSwitch}) {
    EXPECT_EQ(call(handler, "{").status, -1);
  }
  // The longest that is taken comes back whole: 319 characters with the line end.
  EXPECT_EQ(set(add + with("alias", "a") + with("devname", std::string(255, 'd')) + kRule),
            result("setparentalinfo", 0));
  EXPECT_EQ(set(add + with("alias", std::string(189, 'n')) + with("devname", std::string(45, 'd')) +
                kRule),
            result("setparentalinfo", 0));
  EXPECT_EQ(board::read_file(kList).substr(281).size(), 252U + 46 + 21);
  EXPECT_THAT(ask(R"({"type":"getparentalinfo"})"), HasSubstr("\"" + std::string(189, 'n') + "\""));
}

TEST_F(Parental, FailuresAreTold) {
  board::write_file(kList, "YQ== dev m 1-2 7\nYg== dev m 1-2 7\n");
  EXPECT_EQ(parental_name_exist("YQ=="), 1);
  EXPECT_EQ(parental_name_exist("YQ"), 0);
  {
    const zelto_test::FullTmp full;
    EXPECT_EQ(parental_name_del("YQ=="), 0);
  }
  EXPECT_EQ(board::read_file(kList), "YQ== dev m 1-2 7\nYg== dev m 1-2 7\n");
  EXPECT_EQ(parental_name_del("YQ=="), 1);
  EXPECT_EQ(board::read_file(kList), "Yg== dev m 1-2 7\n");
  board::remove_file(kList);
  EXPECT_EQ(parental_name_exist("YQ=="), 0);
  EXPECT_EQ(parental_name_del("YQ=="), 0);
  ASSERT_EQ(symlink("/nowhere/list", kList), 0);
  EXPECT_EQ(set(R"("cfg_type":"add","alias":"a",)" + kRule), result("setparentalinfo", 1));
  board::remove_file(kList);
  EXPECT_THAT(board::log(), ElementsAre("<3>fopen /tmp/parental_list for del error!",
                                        "<3>fopen /etc/parental_list error ",
                                        "<3>fopen /etc/parental_list for del error!",
                                        "<3>fopen /etc/parental_list for del error!",
                                        "<3>fopen /etc/parental_list for del error!",
                                        "<3>fopen /etc/parental_list for add error!"));
  EXPECT_EQ(set(R"("cfg_type":"add","alias":"a",)" + kRule), result("setparentalinfo", 0));
  EXPECT_EQ(board::read_file(kList), "YQ== unknow M 16:00-20:00 12345\n");
}

}  // namespace
