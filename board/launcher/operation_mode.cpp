#include "board/launcher/operation_mode.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "board/board.h"
#include "board/processes.h"

namespace launcher {
namespace {

struct Mode {
  const char* name;
  const char* wizard;  // what the wizard adds to a request; empty for the mode of the factory
};

constexpr std::array<Mode, 5> kModes{{
    {"router", ""},
    {"AP", R"("opermode":"AP")"},
    {"repeater",
     R"("opermode":"repeater","wifi_type":"2.4G","ssid":"Neighbour","bssid":"02:bb:00:00:00:01",)"
     R"("security":"WPA2PSK/AES","key":"neighbour123","channel":6)"},
    {"wisp",
     R"("opermode":"wisp","wifi_type":"2.4G","ssid":"Cafe Upstairs","bssid":"02:bb:00:00:00:02",)"
     R"("security":"OPEN/NONE","key":"","channel":11)"},
    {"mobilenetmode", R"("opermode":"mobilenetwork")"},
}};

// The radios keep their names and pass phrases.
constexpr const char* kRadios = R"("wlan2psw":"zelto12345","wlan5psw":"zelto12345")";

// As the firmware's own doing, with nothing on the terminal.
constexpr const char* kAsk = "exec zelto \"$0\" > /dev/null 2>&1";

// The wizard takes the daemon of updates away, which a router gets back when it boots.
constexpr const char* kAsBooted =
    "mv /usr/bin/sys_daemon_bak /usr/bin/sys_daemon && /etc/init.d/sys_daemon start";

}  // namespace

std::vector<std::string> operation_modes() {
  std::vector<std::string> names;
  names.reserve(kModes.size());
  for (const Mode& mode : kModes) names.emplace_back(mode.name);
  return names;
}

void begin_in_mode(const std::string& name) {
  const auto mode = std::ranges::find(kModes, name, &Mode::name);
  if (mode == kModes.end()) throw std::runtime_error("no mode " + name);
  if (*mode->wizard == '\0') return;
  const std::string request =
      std::string(R"({"type":"seteasycfg",)") + mode->wizard + "," + kRadios + "}";
  if (board::quiet({"sh", "-c", kAsk, request}) != 0) {
    throw std::runtime_error("the router does not change to mode " + name);
  }
  board::settle();
  if (board::quiet({"sh", "-c", kAsBooted}) != 0) throw std::runtime_error("no sys_daemon");
  board::exempt_all();
  board::clear_journal();
}

}  // namespace launcher
