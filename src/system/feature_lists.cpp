// Which entries the menus of the desktop and of the mobile web pages have, by operation mode.

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"

namespace zelto {
namespace {

using Features = std::span<const char* const>;

constexpr std::size_t kLongestMode = 63;

enum class Match { kExactly, kBeginning };

struct Menu {
  std::string_view mode;
  Match match;
  Features features;
};

// ---- desktop

constexpr std::array kDesktopRouter = {"more_internet", "more_lan",    "more_terminallist",
                                       "more_wifi",     "adminPass",   "channelSet",
                                       "macClone",      "restore",     "ReBoot",
                                       "BlackList",     "advancedDNS", "vpnSet",
                                       "pptp_vpnSet",   "forwarding",  "ipv6",
                                       "dmz",           "visitorNet",  "wifiTiming",
                                       "upnp",          "webadmin",    "scheduleRestart"};
constexpr std::array kDesktopMobileNetwork = {
    "more_lan",    "more_terminallist", "more_5g", "more_wifi",  "adminPass",   "channelSet",
    "macClone",    "restore",           "ReBoot",  "BlackList",  "advancedDNS", "vpnSet",
    "pptp_vpnSet", "more_4g",           "ipv6",    "visitorNet", "wifiTiming",  "upnp",
    "webadmin",    "scheduleRestart"};
constexpr std::array kDesktopBridge = {"more_wifi", "adminPass",  "channelSet", "restore",
                                       "ReBoot",    "visitorNet", "wifiTiming", "scheduleRestart"};
constexpr std::array kDesktopWisp = {
    "more_lan", "more_terminallist", "more_wifi",   "adminPass",  "restore",
    "ReBoot",   "BlackList",         "advancedDNS", "forwarding", "ipv6",
    "dmz",      "visitorNet",        "wifiTiming",  "upnp",       "channelSet",
    "webadmin", "scheduleRestart"};

// A mode that begins with one of the bridged ones has its menu.
constexpr std::array<Menu, 5> kDesktopMenus = {{
    {"router", Match::kExactly, kDesktopRouter},
    {"mobilenetmode", Match::kExactly, kDesktopMobileNetwork},
    {"AP", Match::kBeginning, kDesktopBridge},
    {"repeater", Match::kBeginning, kDesktopBridge},
    {"wisp", Match::kBeginning, kDesktopWisp},
}};

// ---- mobile

constexpr std::array kMobileRouter = {"setup_terminallist",
                                      "baby_BlackList",
                                      "lan_set",
                                      "wifiSet",
                                      "channelSet",
                                      "ChangerMode",
                                      "VPN_pptp_set",
                                      "VPN_l2tp_set",
                                      "pro_term",
                                      "outNetSet",
                                      "misc_reboot",
                                      "rally_restore",
                                      "password",
                                      "update",
                                      "visitorNet",
                                      "wifiTiming",
                                      "upnp",
                                      "advancedDNS",
                                      "webadmin",
                                      "scheduleRestart",
                                      "macClone",
                                      "dmz",
                                      "ipv6",
                                      "forwarding"};

constexpr auto kMobileMobileNetwork = [] {
  auto features = kMobileRouter;
  for (auto& feature : features) {
    if (std::string_view(feature) == "outNetSet") feature = "apn_setting";
  }
  return features;
}();
constexpr std::array kMobileBridge = {
    "wifiSet",  "channelSet", "ChangerMode", "misc_reboot", "rally_restore",
    "password", "update",     "visitorNet",  "wifiTiming",  "scheduleRestart"};
constexpr std::array kMobileWisp = {"setup_terminallist",
                                    "baby_BlackList",
                                    "lan_set",
                                    "wifiSet",
                                    "channelSet",
                                    "ChangerMode",
                                    "pro_term",
                                    "misc_reboot",
                                    "rally_restore",
                                    "password",
                                    "update",
                                    "visitorNet",
                                    "wifiTiming",
                                    "upnp",
                                    "webadmin",
                                    "scheduleRestart",
                                    "dmz",
                                    "ipv6",
                                    "forwarding"};

constexpr std::array<Menu, 5> kMobileMenus = {{
    {"router", Match::kExactly, kMobileRouter},
    {"mobilenetmode", Match::kExactly, kMobileMobileNetwork},
    {"wisp", Match::kExactly, kMobileWisp},
    {"AP", Match::kExactly, kMobileBridge},
    {"repeater", Match::kExactly, kMobileBridge},
}};

bool fits(const Menu& menu, std::string_view mode) {
  return menu.match == Match::kExactly ? mode == menu.mode : mode.starts_with(menu.mode);
}

void add_features(std::span<const Menu> menus, Reply& reply) {
  const auto mode = config::read_or_empty(config::kOperationMode, kLongestMode);
  for (const auto& menu : menus) {
    if (!fits(menu, mode)) continue;
    auto list = reply.list("list");
    for (const char* feature : menu.features) list.add().text("fun", feature);
    return;
  }
  reply.result(kFailed);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetFunList(const char* request, char* out) {
  return answer({.type = "getfunlist", .unparsed_log = nullptr}, request, out,
                [](const Request&, Reply& reply) { add_features(kDesktopMenus, reply); });
}

int bs_GetMobileFunList(const char* request, char* out) {
  return answer({.type = "getmobilefunlist"}, request, out,
                [](const Request&, Reply& reply) { add_features(kMobileMenus, reply); });
}
