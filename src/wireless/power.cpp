// Transmit power and 802.11 modes.

#include "wireless/power.h"

#include <array>
#include <cstddef>
#include <string>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto::wireless {
namespace {

// The driver takes a percentage only when told that it is one; full power needs none.
struct Level {
  int percentage;
  const char* is_percentage;
};
constexpr std::array kLevels = {Level{40, "1"}, Level{60, "1"}, Level{100, "0"}};

}  // namespace

std::optional<int> power_level(const std::string& transmit_power) {
  for (std::size_t level = 0; level < kLevels.size(); ++level) {
    if (kLevels[level].percentage == text::to_int(transmit_power)) return static_cast<int>(level);
  }
  return std::nullopt;
}

void write_power(const Radio& radio, int level) {
  if (level < 0 || level >= static_cast<int>(kLevels.size())) return;
  const auto& power = kLevels[static_cast<std::size_t>(level)];
  driver::write(radio.profile, "TxPower", driver::kWhole, std::to_string(power.percentage));
  driver::write(radio.profile, "PERCENTAGEenable", driver::kWhole, power.is_percentage);
}

namespace {

int get_power(const char* type, const char* member, const Radio& radio, const char* request,
              char* out) {
  return answer({.type = type}, request, out, [&](const Request&, Reply& reply) {
    const auto stored = driver::read(radio.profile, "TxPower", driver::kWhole);
    if (const auto level = power_level(stored.value_or(""))) {
      reply.number(member, *level);
    }
  });
}

// The radio is told of its power after every answer, also of one that changed nothing.
int set_power(const char* type, const char* member, const Radio& radio, const char* request,
              char* out) {
  return answer({.type = type, .accepts_any_type = true}, request, out,
                [&](const Request& parsed, Reply& reply) {
                  const auto level = parsed.integer(member);
                  const bool accepted = parsed.type() == type && level;
                  if (accepted) write_power(radio, *level);
                  reply.result(accepted ? kDone : kFailed);
                  reply.afterwards([&radio] {
                    shell::start(std::string("wifi_setup.sh wifi_txpower ") + radio.band + " &");
                  });
                });
}

// A radio's two modes, in the order of the numbers that pages use.
struct WirelessModes {
  const Radio& radio;
  const char* member;
  std::array<int, 2> driver_modes;
};
const std::array kWirelessModes = {
    WirelessModes{k2G, "twoWifiMode", {9, 16}},
    WirelessModes{k5G, "fiveWifiMode", {14, 17}},
};
// 802.11b alone, which channel 14 is set to; pages show it as the older mode.
constexpr int kChannel14Mode = 1;

void add_wireless_modes(const Request& /*request*/, Reply& reply) {
  for (const auto& modes : kWirelessModes) {
    const auto stored = driver::read(modes.radio.profile, "WirelessMode", driver::kMain);
    const int mode = text::to_int(stored.value_or(""));
    if (mode == modes.driver_modes[1]) {
      reply.number(modes.member, 1);
    } else if (mode == modes.driver_modes[0] || (mode == kChannel14Mode && &modes.radio == &k2G)) {
      reply.number(modes.member, 0);
    }
  }
}

void change_wireless_modes(const Request& request, Reply& reply) {
  for (const auto& modes : kWirelessModes) {
    const int mode = request.integer(modes.member).value_or(0);
    if (mode != 0 && mode != 1) continue;
    const auto value = std::to_string(modes.driver_modes[static_cast<std::size_t>(mode)]);
    write_mode(modes.radio, value.c_str());
  }
  shell::start("wifi_setup.sh wifi_master_enable all;wifi_setup.sh wifi_guest_arguments all &");
  reply.result(kDone);
}

// The trace of "setWifiMode" carries this line for good: log readers look for it.
constexpr int kTracedLine = 15033;

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetPaMode(const char* request, char* out) {
  return get_power("getpamode", "pamode", k2G, request, out);
}

int bs_GetPa5Mode(const char* request, char* out) {
  return get_power("getpa5mode", "pa5mode", k5G, request, out);
}

int bs_SetPaMode(const char* request, char* out) {
  return set_power("setpamode", "pamode", k2G, request, out);
}

int bs_SetPa5Mode(const char* request, char* out) {
  return set_power("setpa5mode", "pa5mode", k5G, request, out);
}

int bs_GetWifiMode(const char* request, char* out) {
  return answer({.type = "getWifiMode", .echoes_type = true, .accepts_any_type = true}, request,
                out, add_wireless_modes);
}

int bs_SetWifiMode(const char* request, char* out) {
  return answer({.type = "setWifiMode", .echoes_type = true, .accepts_any_type = true}, request,
                out, [out](const Request& parsed, Reply& reply) {
                  change_wireless_modes(parsed, reply);
                  reply.afterwards([out] {
                    console::trace("bs_SetWifiMode", std::string("out:") + out, kTracedLine);
                  });
                });
}
