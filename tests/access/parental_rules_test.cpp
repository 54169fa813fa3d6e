// The firewall's sections of parental control.

#include <unistd.h>

#include <zelto/access.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/parental_list";
constexpr const char* kSeen = "/tmp/record_set_mac";

class ParentalRules : public AccessTest {
 protected:
  static void given_accept(int number, const std::string& name) {
    given_section("rule", "parental_accept" + std::to_string(number), {{"name", name}});
  }
  static void given_rejects(const Lines& macs, int from = 0) {
    for (const auto& mac : macs) {
      given_section("rule", "parental_reject" + std::to_string(from++),
                    {{"src", "old"}, {"src_mac", mac}});
    }
  }
  static Lines rejected() { return stored_in("parental_reject", "src_mac"); }
};

TEST_F(ParentalRules, MakesAndRemovesTheSections) {
  board::write_file(kList, "YQ== t A 08:00-21:30-x 7\nshort\nYg== t A 09:00 67\nYw== t B 1-2 241");
  parental_switch_on();
  Lines expected;
  const auto section = [&](const std::string& name, const Lines& values) {
    expected.push_back("uci add firewall." + name + "=rule");
    for (const auto& value : values) expected.push_back("uci set firewall." + name + "." + value);
  };
  const auto accept = [&](int number, const Lines& values) {
    Lines all = {"src=lan", "dest=wan", "utc_time=0", "target=ACCEPT"};
    all.insert(all.end(), values.begin(), values.end());
    section("parental_accept" + std::to_string(number), all);
  };
  accept(0, {"name=YQ==", "src_mac=A", "start_time=08:00", "stop_time=21:30-x", "weekdays=Sun"});
  accept(1, {"name=Yg==", "src_mac=A", "start_time=", "stop_time=", "weekdays= Sat Sun"});
  accept(2, {"name=Yw==", "src_mac=B", "start_time=1", "stop_time=2", "weekdays= Tue Thu"});
  section("parental_reject0", {"src=lan", "src_mac=A", "dest=wan", "target=REJECT"});
  section("parental_reject1", {"src=lan", "src_mac=B", "dest=wan", "target=REJECT"});
  EXPECT_THAT(effects(), ElementsAreArray(expected));
  EXPECT_NE(access(kSeen, F_OK), 0);
  EXPECT_EQ(get_new_parental_accept_id(), 3);

  parental_switch_off();
  EXPECT_THAT(effects(),
              ElementsAre("uci del firewall.parental_accept0", "uci del firewall.parental_accept1",
                          "uci del firewall.parental_accept2", "uci del firewall.parental_reject0",
                          "uci del firewall.parental_reject1"));
  EXPECT_EQ(get_new_parental_accept_id(), 0);
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(ParentalRules, NamesTheDays) {
  const struct {
    Lines days;  // of a list's rules
    Lines named;
  } cases[] = {
      {{"1234567", "1234567"}, {"Mon Tue Wed Thu Fri Sat Sun", "Mon Tue Wed Thu Fri Sat Sun"}},
      {{"7,1 ", "1", "2"}, {"Mon Sun", "Mon", " Tue"}},
      {{"089", "35", "53", "31"}, {"(none)", "Wed Fri", " Wed Fri", "Mon Wed"}},
      {{"44", "x", "4"}, {"Thu", "(none)", " Thu"}},
  };
  for (const auto& c : cases) {
    board::reset();
    std::string lines;
    for (const auto& days : c.days) lines += "YQ== t M 1-2 " + days + "\n";
    board::write_file(kList, lines);
    parental_switch_on();
    for (std::size_t i = 0; i < c.named.size(); ++i) {
      const auto name = "parental_accept" + std::to_string(i);
      EXPECT_EQ(stored("firewall", name.c_str(), "weekdays"), c.named[i]) << lines;
    }
  }
}

TEST_F(ParentalRules, AcceptSectionsAreLookedThroughTo32) {
  for (const int number : {3, 32, 33}) given_accept(number, "YQ==");
  given_accept(0, "YWE=");
  given_section("rule", "parental_accept1", {});
  EXPECT_EQ(get_new_parental_accept_id(), 2);
  for (const char* removed : {"3", "32"}) {
    del_parental_accept_mac("YQ==");
    EXPECT_THAT(effects(), ElementsAre(std::string("uci del firewall.parental_accept") + removed));
  }
  del_parental_accept_mac("YQ==");
  del_parental_accept_mac("");
  EXPECT_THAT(effects(), IsEmpty());
}

TEST_F(ParentalRules, RejectedDevicesAreNumberedAnew) {
  const struct {
    Lines before;
    std::string mac;
    Lines added;
    Lines removed;
  } cases[] = {
      {{}, "A", {"0 A"}, {}},
      {{"B", "A", "C"}, "A", {"0 B", "1 A", "2 C"}, {"0 B", "1 C"}},
      {{"AB", "B"}, "A", {"0 AB", "1 B", "2 A"}, {"0 AB", "1 B"}},
      {{"A", "B", "A"}, "A", {"0 A", "1 B", "2 A"}, {"0 B", "1 A"}},
  };
  for (const auto& c : cases) {
    for (const bool adds : {true, false}) {
      board::reset();
      given_rejects(c.before);
      const int gap = static_cast<int>(c.before.size()) + 2;
      given_rejects({"Z"}, gap);
      const char* work = adds ? "/tmp/parental_reject_mac" : "/tmp/parental_reject_mac_del";
      (adds ? handle_parental_reject_mac : del_parental_reject_mac)(c.mac.c_str());
      const auto beyond = std::to_string(gap) + " Z";
      EXPECT_THAT(rejected(), ElementsAre(beyond)) << "the search ends at the gap";
      auto expected = adds ? c.added : c.removed;
      std::string lines;
      for (const auto& section : expected) lines += section.substr(2) + "\n";
      EXPECT_EQ(board::read_file(work), lines);
      (adds ? set_parental_reject_list : set_parental_reject_list_del)();
      expected.push_back(beyond);
      EXPECT_THAT(rejected(), ElementsAreArray(expected));
      EXPECT_NE(access(work, F_OK), 0);
      EXPECT_THAT(stored_in("parental_reject", "src"), testing::Not(testing::Contains("0 old")));
    }
  }
}

TEST_F(ParentalRules, ADeviceWithoutRulesIsNoLongerRejected) {
  given_rejects({"A", "B", "AB"});
  board::write_file(kList, "YQ== t AB 1-2 7\nYg== t B 1-2 7\n");
  deal_with_parental_reject_mac("B");
  EXPECT_THAT(effects(), IsEmpty());
  deal_with_parental_reject_mac("A");
  EXPECT_THAT(rejected(), ElementsAre("0 B", "1 AB"));
}

TEST_F(ParentalRules, NotesDevices) {
  EXPECT_EQ(find_set_mac("A"), 0);
  record_set_mac("02:AB");
  record_set_mac("C");
  EXPECT_EQ(board::read_file(kSeen), "02:AB\nC\n");
  EXPECT_EQ(find_set_mac("AB"), 1) << "by substring";
  EXPECT_EQ(find_set_mac("ABC"), 0);
  set_parental_reject_list_on();
  EXPECT_THAT(rejected(), ElementsAre("0 02:AB", "1 C"));
  EXPECT_NE(access(kSeen, F_OK), 0);
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(ParentalRules, FailuresAreTold) {
  board::remove_file(kList);
  given_accept(0, "YQ==");
  given_rejects({"A", "C"});
  parental_switch_on();
  parental_switch_off();
  deal_with_parental_reject_mac("A");
  EXPECT_THAT(board::log(),
              ElementsAreArray(Lines(3, "<3>fopen /etc/parental_list for read error!")));
  set_parental_reject_list();
  set_parental_reject_list_del();
  set_parental_reject_list_on();
  EXPECT_EQ(board::log().back(), "<3>fopen /tmp/record_set_mac for read error!");
  {
    const FullTmp full;
    handle_parental_reject_mac("B");
    set_parental_reject_list();
    del_parental_reject_mac("A");
  }
  EXPECT_EQ(board::log().back(), "<3>fopen /tmp/parental_reject_mac_del for write error!");
  EXPECT_THAT(effects(), IsEmpty());
  EXPECT_THAT(rejected(), ElementsAre("0 A", "1 C"));
}

}  // namespace
}  // namespace zelto_test
