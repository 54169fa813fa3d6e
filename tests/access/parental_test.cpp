// The list of parental rules.

#include <map>

#include <zelto/access.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/parental_list";
constexpr const char* kMove = "run mv /tmp/parental_list /etc/parental_list";
const std::string kRule = R"("mac":"M","accesstime":"16:00-20:00","day":"12345")";

class Parental : public AccessTest {
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
  using Values = std::map<std::string, std::string>;
  for (const auto& [value, shown] : Values{{"1", "on"}, {"0", "off"}, {"00", "on"}, {"x", "on"}}) {
    given("system", "route", "parental_switch", value);
    EXPECT_EQ(ask(R"({"type":"getparentalinfo"})"),
              command("getparentalinfo", R"("Switch":")" + shown + R"(","list":[])"));
  }
  for (const auto& [value, kept] : Values{{"on", "1"}, {"off", "0"}, {"ON", "0"}, {"", "0"}}) {
    EXPECT_EQ(ask(command("setparentalswitch", R"("Switch":")" + value + "\"")),
              result("setparentalswitch", 0));
    EXPECT_THAT(effects(), ElementsAre("uci set system.route.parental_switch=" + kept));
  }
  EXPECT_EQ(set_parental_state("on"), 0);
  board::write_file("/etc/config/system", "broken");
  EXPECT_EQ(set_parental_state("on"), -1);
}

TEST_F(Parental, RefusesRulesWhole) {
  board::write_file(kList, "YQ== old x y z\n");
  const auto of = [](char c, int length) {
    return std::string(static_cast<std::size_t>(length), c);
  };
  const auto rule = [](const std::string& alias, const std::string& device, const std::string& mac,
                       const std::string& time, const std::string& day) {
    return R"("cfg_type":"add","alias":")" + alias + R"(","devname":")" + device + R"(","mac":")" +
           mac + R"(","accesstime":")" + time + R"(","day":")" + day + "\"";
  };
  const auto named = [&](const std::string& alias, const std::string& device) {
    return rule(alias, device, "M", "16:00-20:00", "12345");
  };
  expect_refused(
      "setparentalinfo", kList,
      {R"("alias":"a",)" + kRule, R"("cfg_type":1,"alias":"a",)" + kRule,
       R"("cfg_type":"add",)" + kRule, R"("cfg_type":"add","alias":"a","mac":"M","day":"1")",
       rule("a", "", "", "1-2", "7"), rule("a", "", "M 1", "1-2", "7"),
       rule("a", "", "M\\n1", "1-2", "7"), rule("a", "", of('x', 24), "1-2", "7"),
       rule("a", "", "M", "1-2 3", "7"), rule("a", "", "M", of('x', 24), "7"),
       rule("a", "", "M", "1-2", ""), rule("a", "", "M", "1-2", "1 2"),
       rule("a", "", "M", "1-2", "1\\r"), rule("a", "", "M", "1-2", of('x', 24)),
       named("a", "a\\nb"), named("a", of('d', 256)), named("a\\nb", ""), named(of('a', 190), ""),
       named(of('a', 180), of('d', 60))});
  EXPECT_EQ(ask(R"({"type":"setparentalswitch"})"), result("setparentalswitch", 1));
  // The longest that is taken comes back whole: 319 characters with the line end.
  EXPECT_EQ(set(named("a", of('d', 255))), result("setparentalinfo", 0));
  EXPECT_EQ(set(named(of('n', 189), of('d', 45))), result("setparentalinfo", 0));
  EXPECT_EQ(board::read_file(kList).substr(281).size(), 252U + 46 + 21);
  EXPECT_THAT(ask(R"({"type":"getparentalinfo"})"), HasSubstr("\"" + of('n', 189) + "\""));
}

TEST_F(Parental, FindsARuleByItsWholeName) {
  board::write_file(kList, "YQ== dev m 1-2 7\n");
  EXPECT_EQ(parental_name_exist("YQ=="), 1);
  EXPECT_EQ(parental_name_exist("YQ"), 0);
  EXPECT_EQ(parental_name_del("YQ=="), 1);
  EXPECT_EQ(board::read_file(kList), "");
  board::remove_file(kList);
  EXPECT_EQ(parental_name_exist("YQ=="), 0);
  EXPECT_EQ(board::log().back(), "<3>fopen /etc/parental_list error ");
}

}  // namespace
}  // namespace zelto_test
