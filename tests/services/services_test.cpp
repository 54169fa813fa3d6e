// DMZ, UPnP, hardware NAT and the TR-069 client.

#include <zelto/services.h>

#include "support/requests.h"
#include "support/router_test.h"

namespace zelto_test {
namespace {

class Services : public RouterTest {};

TEST_F(Services, ExposesAHost) {
  const std::string restart = "run /etc/init.d/firewall restart &";
  const auto exposed = [&](const std::string& enable, const std::string& ip) {
    return "uci set system.route.dmzenable=" + enable + "\nuci set system.route.dmzip=" + ip +
           "\nuci add firewall.dmz=redirect\n"
           "uci set firewall.dmz.{src=wan, proto=all, dest_ip=" +
           ip + ", target=DNAT}\n" + restart;
  };
  const auto set = [](const std::string& members) { return command("setdmz", members); };
  expect(set(R"("enable":"2","ip":"192.168.10.7")"), result("setdmz", 0),
         exposed("2", "192.168.10.7"));
  expect(set(R"("enable":"0","ip":"192.168.10.8")"), result("setdmz", 0),
         "uci set system.route.dmzenable=0\nuci del firewall.dmz\n" + restart);
  EXPECT_EQ(ask(command("getdmz")), command("getdmz", R"("enable":"0","ip":"192.168.10.7")"));
  for (const auto* refused : {R"("ip":"192.168.10.8")", R"("enable":1,"ip":"192.168.10.8")",
                              R"("enable":"1")", R"("enable":"1","ip":"1\n2")"}) {
    expect_refused("setdmz", refused);
  }
}

TEST_F(Services, LetsDevicesOpenPorts) {
  const std::string stop = "run /etc/init.d/miniupnpd stop &";
  const std::string restart = "run /etc/init.d/miniupnpd restart &";
  const auto done = result("set_upnp_info", 0);
  const auto failed = result("set_upnp_info", 1);
  const auto set = [](const std::string& members) { return command("set_upnp_info", members); };
  expect(set(R"("enable":1)"), done, "uci set upnpd.config.enabled=1\n" + restart);
  expect(set(R"("enable":7)"), done, "uci set upnpd.config.enabled=7\n" + stop);
  expect(set(R"("enable":"1")"), failed, stop);
  expect(set(""), failed, stop);
  expect(R"({"type":"x","enable":1})", failed, restart, bs_SetUpnpInfo);
  expect(R"({"enable":0})", failed, stop, bs_SetUpnpInfo);
  expect("{", "untouched", "", bs_SetUpnpInfo);

  const auto get = [] { return ask(command("get_upnp_info")); };
  EXPECT_EQ(get(), command("get_upnp_info", R"("enable":7,"list":[])"));
  board::write_file("/tmp/upnp.leases",
                    "TCP:51413:192.168.10.100:51412:0:torrent\nUDP\n\nTCP:1:::x\xFF:y\n");
  given("upnpd", "config", "enabled", std::nullopt);
  EXPECT_EQ(get(), command("get_upnp_info",
                           R"("result":1,"list":[{"ip":"192.168.10.100","internalPort":"51412",)"
                           R"("externalPort":"51413","protocol":"TCP"},{"ip":"","internalPort":"",)"
                           R"("externalPort":"","protocol":"UDP"},{"ip":"","internalPort":"",)"
                           R"("externalPort":"1","protocol":"TCP"}])"));
  EXPECT_THAT(board::log(), testing::IsSupersetOf({"<3>fopen /tmp/upnp.leases failed!",
                                                   "<3>uci get upnpd config enabled failed!"}));
}

TEST_F(Services, MarksPacketsOnceHoweverOftenItIsSwitched) {
  const std::string stored = "uci set mtkhnat.global.enable=N\nuci set system.route.mtkhnat=N\n";
  const std::string hook = "run echo N > /sys/kernel/debug/hnat/hook_toggle\n";
  const std::string classes =
      "{BE -j MARK --set-mark 0, CS2 -j MARK --set-mark 2, "
      "CS4 -j MARK --set-mark 4, CS6 -j MARK --set-mark 6}";
  const auto rules = [&](const std::string& action, const std::string& errors) {
    return "run iptables -t mangle " + action + " FORWARD -m dscp --dscp-class " + classes +
           errors + "\n";
  };
  const std::string on = with(stored + "run /etc/init.d/mtkhnat start\n" + hook, {{"N", "1"}}) +
                         rules("-D", " 2>/dev/null") + rules("-A", "");
  const auto set = [](const std::string& members) { return command("sethwnat", members); };
  for (int i = 0; i < 2; ++i) {
    expect(set(R"("status":"1")"), result("sethwnat", 0), on);
  }
  EXPECT_EQ(ask(command("gethwnat")), command("gethwnat", R"("status":"1")"));
  EXPECT_THAT(board::console(), testing::HasSubstr(R"(:{"type":"sethwnat","status":"1"})"));
  expect(set(R"("status":"0")"), result("sethwnat", 0),
         with(stored + hook + "run /etc/init.d/mtkhnat stop\n", {{"N", "0"}}) +
             rules("-D", " 2>/dev/null") +
             "start /etc/init.d/terminal_list stop;sleep 1;/etc/init.d/terminal_list start &");
  expect(set(""), result("sethwnat", 0), "");
  expect(set(member("status", std::string(32, '1'))), result("sethwnat", 1), "");
}

TEST_F(Services, LetsTheProviderManageTheRouter) {
  const std::string restart = "start /etc/init.d/easycwmpd restart &";
  const std::string stop = "start /etc/init.d/easycwmpd stop &";
  const auto set = [](const std::string& members) { return command("setcwmpcfg", members); };
  const auto done = result("setcwmpcfg", 0);
  const auto failed = result("setcwmpcfg", 1);
  const std::string all = R"("enable":"1","url":"https://a/?b=c&d=$e","username":"u s","password":)"
                          R"("p'\"","manufacturer":"M","oui":"00AABB","serial":"7")";
  expect(set(all), done,
         "uci set easycwmp.cfg*.{enable=1, url=https://a/?b=c&d=$e, username=u s, password=p'\", "
         "manufacturer=M, oui=00AABB, serial_number=7}\n" +
             restart);
  EXPECT_EQ(ask(command("getcwmpcfg")), command("getcwmpcfg", all));
  expect(set(R"("enable":"0","oui":"1")"), done,
         "uci set easycwmp.cfg*.{enable=0, oui=1}\n" + stop);
  expect(R"({"type":"x","enable":"1","url":"u"})", failed, restart, bs_SetCwmpCfg);
  expect(R"({"enable":"10"})", failed, stop, bs_SetCwmpCfg);
  expect(set(R"("url":"u")"), failed, "");
  expect(set(R"("enable":"1","url":"a\nb")"), failed, restart);
  expect("{", "untouched", "", bs_SetCwmpCfg);
  board::write_file("/etc/config/easycwmp",
                    "config acs\n option url 'first'\nconfig acs\n"
                    " option url 'second'\n option username 'x'\n");
  EXPECT_EQ(ask(command("getcwmpcfg")),
            command("getcwmpcfg", R"("enable":"","url":"first","username":"","password":"",)"
                                  R"("manufacturer":"","oui":"","serial":"")"));
  expect(
      set(all), done,
      "uci set easycwmp.cfg*.{url=https://a/?b=c&d=$e, username=u s, password=p'\"}\n" + restart);
}

}  // namespace
}  // namespace zelto_test
