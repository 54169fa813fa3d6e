// Port forwarding rules, in the list and in the firewall's sections.

#include <zelto/network.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/port_forward_list";
constexpr const char* kMove = "run mv /tmp/port_forward_list /etc/port_forward_list";
constexpr const char* kRestart = "start /etc/init.d/firewall restart &";

class PortForwarding : public AccessTest {
 protected:
  static std::string set(const std::string& members) {
    return ask(command("setforwarding", members));
  }
  static std::string add(const std::string& members) { return set(R"("enable":"1",)" + members); }
  static void given_redirect(int number, const std::string& name) {
    given_section("redirect", "redirect" + std::to_string(number), {{"name", name}});
  }
};

void append_section(Lines& lines, int number, const Lines& values) {
  const auto section = "firewall.redirect" + std::to_string(number);
  lines.push_back("uci add " + section + "=redirect");
  for (const auto& value : values) lines.push_back("uci set " + section + "." + value);
}

TEST_F(PortForwarding, AddsListLineAndSections) {
  given_redirect(0, "b3RoZXI=");
  given_redirect(2, "b3RoZXI=");
  board::write_file(kList, "b3RoZXI= all;1 2 TCP\n");
  EXPECT_EQ(add(R"("name":"web server","ip":"192.168.10.20","list0":"8080,80,TCP",)"
                R"("list1":"53,5353,UDP","list2":"9,10,TCP,UDP","list4":"1,2,TCP")"),
            result("setforwarding", 0));
  const std::string line = "d2ViIHNlcnZlcg== 192.168.10.20;80 8080 TCP;5353 53 UDP;10 9 TCP,UDP\n";
  EXPECT_EQ(board::read_file(kList), "b3RoZXI= all;1 2 TCP\n" + line);
  const auto values = [](const std::string& wan, const std::string& lan, const std::string& proto) {
    return Lines{"target=DNAT",      "src=wan",
                 "dest=lan",         "src_dport=" + wan,
                 "dest_port=" + lan, "name=d2ViIHNlcnZlcg==",
                 "proto=" + proto,   "dest_ip=192.168.10.20"};
  };
  Lines expected = {kMove};
  append_section(expected, 1, values("8080", "80", "tcp"));
  append_section(expected, 3, values("53", "5353", "udp"));
  append_section(expected, 4, values("9", "10", "tcp udp"));
  expected.emplace_back(kRestart);
  EXPECT_THAT(effects(), ElementsAreArray(expected));
  // Under another name, for every host.
  EXPECT_EQ(set(R"("enable":1,"name":"web","name_old":"web server","ip":"all","list0":"1,2,x'y")"),
            result("setforwarding", 0));
  expected = {kMove, kMove, "uci del firewall.redirect1", "uci del firewall.redirect3",
              "uci del firewall.redirect4"};
  append_section(expected, 1,
                 {"target=DNAT", "src=wan", "dest=lan", "src_dport=1", "dest_port=2", "name=d2Vi",
                  "proto=tcp udp"});
  expected.emplace_back(kRestart);
  EXPECT_THAT(effects(), ElementsAreArray(expected));
  EXPECT_EQ(board::read_file(kList), "b3RoZXI= all;1 2 TCP\nd2Vi all;2 1 x'y\n");
  EXPECT_EQ(add(R"("name":"web","ip":"192.168.10.20")"), result("setforwarding", 0));
  EXPECT_EQ(board::read_file(kList), "b3RoZXI= all;1 2 TCP\nd2Vi 192.168.10.20\n");
  EXPECT_THAT(effects(), ElementsAre(kMove, "uci del firewall.redirect1", kRestart));
  for (const char* enable :
       {R"("enable":"0")", R"("enable":2)", R"("enable":"11")", R"("enable":null)"}) {
    EXPECT_EQ(set(enable + std::string(R"(,"name":"web")")), result("setforwarding", 0));
    EXPECT_EQ(board::read_file(kList), "b3RoZXI= all;1 2 TCP\n");
    EXPECT_THAT(effects(), ElementsAre(kMove, kRestart));
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(PortForwarding, SectionsOfOthersStay) {
  for (const int number : {0, 3, 64, 65, 70}) given_redirect(number, "YQ==");
  given_section("redirect", "redirect1", {{"target", "DNAT"}});
  given_redirect(2, "YWE=");
  given_redirect(5, "YQ");
  EXPECT_EQ(get_exist_redirect_id("YQ=="), 0);
  EXPECT_EQ(get_exist_redirect_id("YWE="), 2);
  EXPECT_EQ(get_exist_redirect_id(""), -1) << "a section without a name";
  EXPECT_EQ(get_new_redirect_id(), 4);
  set(R"("enable":"0","name":"a","name_old":"")");
  EXPECT_THAT(effects(),
              ElementsAre(kMove, "uci del firewall.redirect0", "uci del firewall.redirect3",
                          "uci del firewall.redirect64", kRestart));
  EXPECT_EQ(get_exist_redirect_id("YQ=="), -1);
  set(R"("enable":"0")");
  EXPECT_THAT(effects(), testing::Not(testing::Contains(HasSubstr("uci"))));
}

TEST_F(PortForwarding, ReadsAndRewritesOddLines) {
  const std::string odd =
      "1234 67\nYQ== all\n1234567\n\nYQ==  1.2.3.4 x;;1 2;80  8080 TCP,UDP more;\n!!!! "
      "\xff;;\nYg==;1 "
      "2 UDP";
  board::write_file(kList, odd);
  const auto reply = ask(R"({"type":"getforwarding"})");
  EXPECT_THAT(reply, HasSubstr(R"({"name":"a","ip":"all","sublist":[]},)"
                               R"({"name":"a","ip":"1.2.3.4","sublist":[)"
                               R"({"lanport":"1","wanport":"2","protocol":""},)"
                               R"({"lanport":"80","wanport":"8080","protocol":"TCP,UDP"}]},)"));
  EXPECT_THAT(reply, testing::EndsWith(R"({"name":"b","ip":"","sublist":[)"
                                       R"({"lanport":"1","wanport":"2","protocol":"UD"}]}]})"));
  EXPECT_EQ(forward_name_exist("YQ=="), 1);
  EXPECT_EQ(forward_name_exist("Yg=="), 1);
  EXPECT_EQ(forward_name_exist("YQ"), 0);
  EXPECT_EQ(forward_name_exist("1234567"), 0);
  EXPECT_EQ(forward_name_del("YQ=="), 1);
  EXPECT_EQ(board::read_file(kList), "!!!! \xff;;\nYg==;1 2 UDP\n");
  board::write_file(kList, "Yg== all;1 2 UDP");
  EXPECT_EQ(add(R"("name":"a","ip":"all")"), result("setforwarding", 0));
  EXPECT_EQ(board::read_file(kList), "Yg== all;1 2 UDP\nYQ== all\n");
}

TEST_F(PortForwarding, AListThatIsTooLongKeepsWholeRules) {
  std::string lines;
  for (int i = 0; i < 64; ++i) {
    lines += "YQ== 192.168.10.20";
    for (int k = 0; k < 8; ++k) lines += ";80 8080 TCP";
    lines += "\n";
  }
  board::write_file(kList, lines);
  const auto reply = ask(R"({"type":"getforwarding"})");
  EXPECT_LT(reply.size(), ZELTO_REPLY_SIZE);
  EXPECT_GT(reply.size(), 15000U);
  EXPECT_THAT(reply, testing::EndsWith(R"("protocol":"TCP"}]}]})"));
  EXPECT_THAT(board::log(), ElementsAre(HasSubstr("getforwarding")));
}

TEST_F(PortForwarding, RefusesRulesWhole) {
  board::write_file(kList, "YQ== all;1 2 TCP\n");
  given_redirect(0, "YQ==");
  std::string many;
  for (int i = 0; i < 30; ++i) many += ",\"list" + std::to_string(i) + R"(":"8080,8080,TCP")";
  Lines requests = {R"("ip":"all")",
                    R"("name":"","ip":"all")",
                    R"("name":"a\nb","ip":"all")",
                    R"("name":"a")",
                    R"("ip":"all","name":")" + std::string(190, 'n') + "\"",
                    R"("name":"a","ip":"all")" + many};
  for (const std::string ip : {"", "1.2.3.4 x", "1.2.3.4;1", R"(1.2.3.4\n)", "1."}) {
    requests.push_back(R"("name":"a","ip":")" + ip + "\"");
  }
  for (const char* mapping :
       {"8080,80", "8080", "", ",80,TCP", "8080,,TCP", "80 80,80,TCP", "8080,80,TCP UDP",
        "8080,80;9,TCP", "8080,80,T;P", "8080,80\\n,TCP", "80'80,80,TCP", "8080,8'0,TCP",
        "123456789012345678901234567890123456789012345678,80,TCP",
        "80,123456789012345678901234567890123456789012345678,TCP",
        "80,80,TTTTTTTTTTTTTTTTTTTTTTTT"}) {
    requests.push_back(R"("name":"a","ip":"all","list0":"1,2,TCP","list1":")" +
                       std::string(mapping) + "\"");
  }
  for (auto& members : requests) members.insert(0, R"("enable":"1",)");
  expect_refused("setforwarding", kList, requests);
  // The longest values that are taken, in a line of 319 characters.
  const std::string port(47, '1');
  const auto longest = port + "," + port + "," + std::string(23, 'T');
  EXPECT_EQ(add(R"("name":"a","ip":"all","list0":")" + longest + R"(","list1":")" + longest + "\""),
            result("setforwarding", 0));
  EXPECT_EQ(add(R"("name":"a","ip":")" + std::string(313, 'i') + "\""), result("setforwarding", 0));
  EXPECT_EQ(board::read_file(kList).size(), 319U);
  EXPECT_EQ(add(R"("name":"a","ip":")" + std::string(314, 'i') + "\""), result("setforwarding", 1));
}

}  // namespace
}  // namespace zelto_test
