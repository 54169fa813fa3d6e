// Which interface carries the uplink, and what is known of it.

#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;

class Uplink : public zelto_test::RouterTest {};

// What a function leaves in a buffer that held "before".
template <typename Function>
std::string left_by(const Function& function, int expected_status = 0) {
  char out[ZELTO_INTERFACE_SIZE] = "before";
  EXPECT_EQ(function(out), expected_status);
  return out;
}

TEST_F(Uplink, FollowsModeAndConnection) {
  const struct {
    const char* mode;
    const char* connection;
    const char* band;
    const char* carrier;
    const char* hardware;
  } cases[] = {
      {"router", "pppoe", "2.4G", "pppoe-wan", "eth0.2"},
      {"router", "l2tp", "2.4G", "l2tp-L2TP", "eth0.2"},
      {"router", "pptp", "2.4G", "pptp-PPTP", "eth0.2"},
      {"router", "static", "2.4G", "eth0.2", "eth0.2"},
      {"router", "PPPOE", "2.4G", "eth0.2", "eth0.2"},
      {"wisp", "pppoe", "2.4G", "apcli0", "apcli0"},
      {"wisp", "dhcp", "5.8G", "apclii0", "apclix0"},
      {"repeater", "pppoe", "5.8G", "br-lan", "br-lan"},
      {"AP", "dhcp", "2.4G", "br-lan", "br-lan"},
      {"mobilenetmode", "pppoe", "2.4G", "eth0.2", "eth0.2"},
      {"ROUTER", "pppoe", "2.4G", "before", "before"},
  };
  for (const auto& c : cases) {
    given_mode(c.mode);
    given_connection(c.connection);
    given("internet", "wisp", "wisp_type", c.band);
    EXPECT_EQ(left_by(getWanIfInterface), c.carrier) << c.mode << " " << c.connection;
    EXPECT_EQ(left_by(getWanMac), c.hardware) << c.mode << " " << c.connection;
  }
}

TEST_F(Uplink, FallsBackWhenNothingCanBeRead) {
  board::remove_file("/etc/config/system");
  EXPECT_EQ(left_by(getWanIfInterface), "eth0.2");
  EXPECT_EQ(left_by(getWanMac), "eth0.2");
  board::reset();
  EXPECT_THAT(board::log(), testing::IsEmpty());
  given_mode("wisp");
  given("system", "route", "conntype", std::nullopt);
  given("internet", "wisp", "wisp_type", std::nullopt);
  EXPECT_EQ(left_by(getWanIfInterface), "apcli0");
  EXPECT_EQ(left_by(getWanMac), "apcli0");
  EXPECT_THAT(board::log(),
              ElementsAre("<3>getWanIfInterface get conntype failed!",
                          "<3>getWanIfInterface get internet wisp wisp_type failed!",
                          "<3>get wanConnectionMode failed!",
                          "<3>getWanIfInterface get internet wisp wisp_type failed!"));
}

TEST_F(Uplink, ReadsAddresses) {
  board::set_address("eth0.2", "10.20.30.40", "255.255.0.0");
  board::set_address("apcli0", "");
  const auto address = [](const char* name) {
    return [name](char* out) { return getIfIpAddr(name, out); };
  };
  const auto netmask = [](const char* name) {
    return [name](char* out) { return getIfNetmask(name, out); };
  };
  EXPECT_EQ(left_by(address("eth0.2")), "10.20.30.40");
  EXPECT_EQ(left_by(netmask("eth0.2")), "255.255.0.0");
  for (const char* name : {"apcli0", "nosuch0", "", "a-name-of-sixteen"}) {
    EXPECT_EQ(left_by(address(name), -1), "before") << name;
    EXPECT_EQ(left_by(netmask(name), -1), "before") << name;
  }
  const zelto_test::NoDescriptors none;
  EXPECT_EQ(left_by(netmask("eth0.2"), -1), "before");
}

TEST_F(Uplink, FindsTheGateway) {
  const auto gateway = [](const char* name) {
    return [name](char* out) { return getWanGateway(name, out); };
  };
  board::set_address("eth0.2", "10.20.30.40");
  board::set_gateway("eth0.2", "10.20.30.1");
  EXPECT_EQ(left_by(gateway("eth0.2")), "10.20.30.1");
  EXPECT_EQ(left_by(gateway("rai0")), "before") << "no route";
  EXPECT_EQ(left_by(gateway("Iface"), -1), "before") << "the table's heading is no route";
  EXPECT_EQ(left_by(gateway("x; touch /tmp/owned")), "before");
  EXPECT_EQ(board::quiet({"test", "-e", "/tmp/owned"}), 1);
  EXPECT_EQ(left_by(gateway("-V"), -1), "before");

  board::add_point_to_point("pptp-PPTP", "172.16.0.2", "172.16.0.1");
  EXPECT_EQ(left_by(gateway("pptp-PPTP")), "before") << "asked of the routes, not of the link";
  EXPECT_EQ(left_by(gateway("pppoe-wan")), "172.16.0.1");
  board::reset();
  board::add_point_to_point("pppoe-wan", "123.123.123.122", "123.123.123.123");
  EXPECT_EQ(left_by(gateway("pppoe-wan")), "123.123.123.123");
}

TEST_F(Uplink, ReadsResolvers) {
  const auto resolver = [](int n) { return [n](char* out) { return getDns(n, out); }; };
  board::write_file("/tmp/resolv.conf.auto",
                    "# Interface wan\nnameserver 9.9.9.9\nsearch lan\nnameserver 1.1.1.1\n");
  EXPECT_EQ(left_by(resolver(1)), "9.9.9.9");
  EXPECT_EQ(left_by(resolver(2)), "1.1.1.1");
  EXPECT_EQ(left_by(resolver(3)), "1.1.1.1") << "the last one";
  board::write_file("/tmp/resolv.conf.auto", "nameserver " + std::string(60, '1'));
  EXPECT_EQ(left_by(resolver(1)), std::string(15, '1'));
  board::write_file("/tmp/resolv.conf.auto", "");
  EXPECT_EQ(left_by(resolver(1)), "before");
  board::remove_file("/tmp/resolv.conf.auto");
  EXPECT_EQ(left_by(resolver(1), -1), "before");
}

}  // namespace
