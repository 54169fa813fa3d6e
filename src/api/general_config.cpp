// The configuration keys behind the fields, each one option of the UCI store.

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include <zelto/fields.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr int kWritten = 0;
constexpr int kRefused = -1;

constexpr config::Option kProtocol = {"network", "wan", "proto"};
constexpr config::Option kResolvers = {"network", "wan", "dns"};
constexpr config::Option kDhcpServerOff = {"dhcp", "lan", "ignore"};

// How a stored value is handed out.
enum class Part { kWhole, kFirstWord, kSecondWord };

// How the key is written.
enum class Writing { kRaw, kMode, kAppended, kInverted };

struct Key {
  std::string_view name;
  config::Option option;
  const char* fallback;  // given when the read fails; null: the key is write-only
  bool logs_failed_read = true;
  Part part = Part::kWhole;
  Writing writing = Writing::kRaw;
};

constexpr std::array kKeys = {
    Key{.name = "wanConnectionMode",
        .option = kProtocol,
        .fallback = "",
        .writing = Writing::kMode},
    Key{.name = "wan_ipaddr", .option = {"network", "wan", "ipaddr"}, .fallback = ""},
    Key{.name = "wan_netmask", .option = {"network", "wan", "netmask"}, .fallback = ""},
    Key{.name = "wan_gateway", .option = {"network", "wan", "gateway"}, .fallback = ""},
    Key{.name = "wan_primary_dns", .option = kResolvers, .fallback = "", .part = Part::kFirstWord},
    Key{.name = "wan_secondary_dns",
        .option = kResolvers,
        .fallback = "",
        .part = Part::kSecondWord,
        .writing = Writing::kAppended},
    Key{.name = "MTUpppoevalue", .option = {"network", "wan", "mtu"}, .fallback = "1480"},
    Key{.name = "wan_pppoe_user", .option = {"network", "wan", "username"}, .fallback = ""},
    Key{.name = "wan_pppoe_pass", .option = {"network", "wan", "password"}, .fallback = ""},
    Key{.name = "wan_pppoe_server", .option = {"network", "wan", "service"}, .fallback = ""},
    Key{.name = "lan_ipaddr", .option = {"network", "lan", "ipaddr"}, .fallback = ""},
    Key{.name = "lan_netmask",
        .option = {"network", "lan", "netmask"},
        .fallback = "255.255.255.0"},
    Key{.name = "dhcpEnabled",
        .option = kDhcpServerOff,
        .fallback = "0",
        .logs_failed_read = false,
        .writing = Writing::kInverted},
    Key{.name = "dhcpStart", .option = {"dhcp", "lan", "start"}, .fallback = ""},
    Key{.name = "dhcpEnd", .option = {"dhcp", "lan", "limit"}, .fallback = ""},
    Key{.name = "Password", .option = {"system", "route", "routepwd"}, .fallback = nullptr},
    Key{.name = "Loginusr", .option = {"system", "route", "routeusr"}, .fallback = nullptr},
};

const Key* find(std::string_view name) {
  const auto* key = std::find_if(kKeys.begin(), kKeys.end(),
                                 [name](const Key& candidate) { return candidate.name == name; });
  return key == kKeys.end() ? nullptr : key;
}

std::string part_of(const std::string& value, Part part) {
  const bool several_words = value.find(' ') != std::string::npos;
  switch (part) {
    case Part::kWhole:
      return value;
    case Part::kFirstWord:
      return several_words ? text::two_words(value).first : value;
    case Part::kSecondWord:
      return several_words ? text::two_words(value).second : "";
  }
  return value;
}

std::string read(const Key& key) {
  const auto value = config::read(key.option);
  if (value) return part_of(*value, key.part);
  if (key.logs_failed_read) {
    log::error(
        text::format("get %.*s failed!\n", static_cast<int>(key.name.size()), key.name.data()));
  }
  return key.fallback;
}

// Stores the connection type. A PPPoE type that cannot be stored is logged as a static one.
int write_mode(std::string_view mode) {
  struct Mode {
    std::string_view name;
    const char* protocol;
    const char* log;
  };
  static constexpr std::array kModes = {
      Mode{"STATIC", "static", "set wanConnectionMode to static failed!\n"},
      Mode{"PPPOE", "pppoe", "set wanConnectionMode to static failed!\n"},
      Mode{"DHCP", "dhcp", "set wanConnectionMode to dhcp failed!\n"},
  };
  for (const auto& known : kModes) {
    if (known.name != mode) continue;
    if (config::write(kProtocol, known.protocol)) return kWritten;
    log::error(known.log);
    return kRefused;
  }
  return kWritten;
}

// The resolvers that are there and one more.
std::string with_resolver(const std::string& address) {
  const auto resolvers = config::read(kResolvers);
  if (resolvers) return *resolvers + " " + address;
  log::error("get wan dns failed!\n");
  return address;
}

int write(const Key& key, const std::string& value) {
  if (key.writing == Writing::kMode) return write_mode(value);
  std::string stored = value;
  if (key.writing == Writing::kAppended) stored = with_resolver(value);
  if (key.writing == Writing::kInverted) stored.assign(1, value == "1" ? '0' : '1');

  // What the reader of the key could not give back whole is not stored.
  const bool fits = std::max(value.size(), stored.size()) <= config::kLongestValue;
  if (fits && config::write(key.option, stored)) return kWritten;
  const auto& shown = key.writing == Writing::kInverted ? value : stored;
  log::error(text::format("set %.*s to %s failed!\n", static_cast<int>(key.name.size()),
                          key.name.data(), shown.c_str()));
  return kRefused;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int zelto_get_general_cfg(const char* key, char* output) {
  return guarded(0, [&] {
    const Key* known = find(key);
    if (known == nullptr || known->fallback == nullptr) {
      log::error(text::format("unknown get name:%s\n", key));
      text::copy("unknown", output, ZELTO_FIELD_VALUE_SIZE);
    } else {
      text::copy(read(*known), output, ZELTO_FIELD_VALUE_SIZE);
    }
    return 0;
  });
}

int zelto_set_general_cfg(const char* key, const char* value) {
  return guarded(kRefused, [&] {
    const Key* known = find(key);
    if (known != nullptr) return write(*known, value);
    log::error(text::format("unknown operation name:%s\n", key));
    return kRefused;
  });
}
