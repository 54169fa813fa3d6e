// Value translation, and the WAN and LAN settings by name.

#include <cstring>

#include <zelto/fields.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class Fields : public zelto_test::RouterTest {};

std::string translated(int (*translate)(const char*, char*), const char* field, const char* value) {
  char buffer[ZELTO_FIELD_TEXT_SIZE] = "";
  std::strcpy(buffer, value);
  EXPECT_EQ(translate(field, buffer), 0);
  return buffer;
}

TEST_F(Fields, Translates) {
  const struct {
    const char* field;
    const char* web;
    const char* stored;
  } pairs[] = {
      {"wanmode", "pppoe", "PPPOE"},
      {"wlanpswmode", "wpa2wpa3", "WPA2PSKWPA3PSK"},
      {"landhcp", "on", "1"},
      {"radioon", "1", "0"},
      {"radioon", "0", "1"},
      {"pamode", "1", "60"},
      {"wlan5pswmode", "testtesttest", "testtest"},
  };
  for (const auto& pair : pairs) {
    EXPECT_EQ(translated(translate_cmd, pair.field, pair.web), pair.stored);
    EXPECT_EQ(translated(translate_lcmd, pair.field, pair.stored), pair.web);
  }
  EXPECT_EQ(translated(translate_cmd, "wlan5pswmode", "wpa3"), "wpa3");
  EXPECT_EQ(translated(translate_cmd, "landhcp", "ON"), "ON");
  EXPECT_EQ(translated(translate_lcmd, "wlanpswmode", "AES"), "AES");
  EXPECT_EQ(translated(translate_lcmd, "pamode", "75"), "75");
}

// What a reader leaves in a buffer that held "before".
std::string read(int (*reader)(const char*, char*), const char* name, int expected_status = 0) {
  char value[ZELTO_FIELD_VALUE_SIZE] = "before";
  EXPECT_EQ(reader(name, value), expected_status) << name;
  return value;
}

TEST_F(Fields, ReadsWithDefaults) {
  given("network", "wan", "dns", "9.9.9.9 1.1.1.1");
  given("network", "wan", "ipaddr", std::string(200, 'a'));
  EXPECT_EQ(read(zelto_get_config, "dns1"), "9.9.9.9");
  EXPECT_EQ(read(zelto_get_config, "dns2"), "1.1.1.1");
  EXPECT_EQ(read(zelto_get_config, "wanip"), std::string(127, 'a'));
  EXPECT_EQ(read(zelto_get_config, "version"), read(GetFWVersion, ""));
  EXPECT_THAT(read(zelto_get_config, "lan_mac"), MatchesRegex("([0-9A-F]{2}:){5}[0-9A-F]{2}"));
  EXPECT_EQ(read(zelto_get_config, "nosuchfield"), "before");
  given("network", "wan", "dns", "9.9.9.9");
  EXPECT_EQ(read(zelto_get_config, "dns1"), "9.9.9.9");
  EXPECT_EQ(read(zelto_get_config, "dns2"), "");
  given("dhcp", "lan", "ignore", "1");
  EXPECT_EQ(read(zelto_get_config, "landhcp"), "1");
  EXPECT_THAT(board::log(), IsEmpty());

  given("network", "wan", "mtu", std::nullopt);
  given("network", "lan", "netmask", std::nullopt);
  given("dhcp", "lan", "ignore", std::nullopt);
  given("network", "wan", "username", std::nullopt);
  EXPECT_EQ(read(zelto_get_config, "mtu"), "1480");
  EXPECT_EQ(read(zelto_get_config, "lanmsk"), "255.255.255.0");
  EXPECT_EQ(read(zelto_get_config, "landhcp"), "0");
  EXPECT_EQ(read(zelto_get_config, "pppoename"), "");
  EXPECT_EQ(read(zelto_get_general_cfg, "Password"), "unknown");
  EXPECT_THAT(board::log(),
              ElementsAre("<3>get MTUpppoevalue failed!", "<3>get lan_netmask failed!",
                          "<3>get wan_pppoe_user failed!", "<3>unknown get name:Password"));
}

TEST_F(Fields, ReadsTheVersionFile) {
  board::write_file("/etc/FW-Version", std::string(60, 'v') + "\n");
  EXPECT_EQ(read(GetFWVersion, ""), std::string(49, 'v'));
  board::write_file("/etc/FW-Version", "R1,2\r\nmore\n");
  EXPECT_EQ(read(GetFWVersion, ""), "R1,2");
  board::remove_file("/etc/FW-Version");
  EXPECT_EQ(read(GetFWVersion, "", 1), "before");
  EXPECT_THAT(board::log(), ElementsAre("<3>open file /etc/FW-Version failed "));
  EXPECT_EQ(read(zelto_get_general_mac, "nosuch0", -1), "before");
  EXPECT_EQ(read(zelto_get_general_mac, "an-interface-with-a-long-name", -1), "before");
}

TEST_F(Fields, Writes) {
  const struct {
    const char* field;
    const char* value;
    const char* effect;
  } cases[] = {
      {"wanmode", "PPPOE", "uci set network.wan.proto=pppoe"},
      {"wanip", "10.0.0.9", "uci set network.wan.ipaddr=10.0.0.9"},
      {"dns1", "9.9.9.9", "uci set network.wan.dns=9.9.9.9"},
      {"dns2", "1.1.1.1", "uci set network.wan.dns=9.9.9.9 1.1.1.1"},
      {"dns2", "8.8.8.8", "uci set network.wan.dns=9.9.9.9 1.1.1.1 8.8.8.8"},
      {"landhcp", "1", "uci set dhcp.lan.ignore=0"},
      {"landhcp", "on", "uci set dhcp.lan.ignore=1"},
      {"endip", "250", "uci set dhcp.lan.limit=250"},
  };
  for (const auto& c : cases) {
    board::clear_journal();
    EXPECT_EQ(zelto_set_config(c.field, c.value), 0) << c.field;
    EXPECT_THAT(board::journal(), ElementsAre(c.effect));
  }
  board::clear_journal();
  EXPECT_EQ(zelto_set_config("wanmode", "dhcp"), 0) << "not a stored spelling: nothing happens";
  EXPECT_EQ(zelto_set_config("nosuchfield", "x"), 0);
  EXPECT_EQ(zelto_set_config("version", "x"), -1);
  EXPECT_EQ(zelto_set_config("wanip", "1\noption proto 'x'"), -1);
  EXPECT_EQ(zelto_set_config("wanip", std::string(128, '1').c_str()), -1);
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_EQ(zelto_set_general_cfg("Loginusr", "parent"), 0);
  EXPECT_EQ(stored("system", "route", "routeusr"), "parent");
}

TEST_F(Fields, LogsWhatCannotBeWritten) {
  board::write_file("/etc/config/network", "broken");
  EXPECT_EQ(zelto_set_config("wanip", "10.0.0.9"), -1);
  EXPECT_EQ(zelto_set_config("wanmode", "PPPOE"), -1);
  EXPECT_EQ(zelto_set_config("dns2", "1.1.1.1"), -1);
  EXPECT_EQ(zelto_set_config("lanip", "10.0.0.1"), 0) << "the row's function takes over";
  EXPECT_THAT(
      board::log(),
      ElementsAre("<3>set wan_ipaddr to 10.0.0.9 failed!",
                  "<3>set wanConnectionMode to static failed!", "<3>get wan dns failed!",
                  "<3>set wan_secondary_dns to 1.1.1.1 failed!",
                  "<3>set lan_ipaddr to 10.0.0.1 failed!", "<3>unknown operation name:dhcpPriDns",
                  "<3>unknown operation name:dhcpGateway"));
  EXPECT_EQ(write_lan_ip_dep("wan_ipaddr", "x"), -1);
}

TEST_F(Fields, EveryColumnOfTheTableCounts) {
  auto& row = cmd_convert[3];
  const FieldRow before = row;
  row.validator = [](const char* value) { return value[0] == '1' ? 1 : 0; };
  EXPECT_EQ(zelto_set_config("wanip", "2.2.2.2"), -1);
  EXPECT_THAT(board::log(), ElementsAre("<3>wanip: Parameters invalid"));
  EXPECT_EQ(zelto_set_config("wanip", "1.1.1.1"), 0);
  std::strcpy(row.config_key, "wan_gateway");
  EXPECT_EQ(zelto_set_config("wanip", "1.2.3.4"), 0);
  EXPECT_EQ(stored("network", "wan", "gateway"), "1.2.3.4");
  row.getter = nullptr;
  EXPECT_EQ(read(zelto_get_config, "wanip", -1), "before");
  row = before;
}

}  // namespace
