// Channel, country and bandwidth of the radios.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "wireless/radio.h"

namespace zelto::wireless {
namespace {

// What the driver needs for a bandwidth of web pages. Null: the radio has no such key.
struct Bandwidth {
  std::string_view web;
  const char* ht;
  const char* coexistence;
  const char* vht;
  const char* mode;  // of both networks
};

// Regulatory regions of a country.
struct Country {
  std::string_view code;
  const char* region_2g;
  const char* region_5g;
};
constexpr std::array kCountries = {
    Country{"US", "0", "7"}, Country{"JP", "5", "6"}, Country{"FR", "1", "2"},
    Country{"TW", "0", "8"}, Country{"IE", "1", "1"}, Country{"HK", "1", "0"},
    Country{"CN", "1", "0"},
};
constexpr Country kAnyOtherCountry = {"", "5", "7"};

// How a radio is tuned.
struct Tuner {
  const Radio& radio;
  const char* automatic_selection;  // the driver's way of choosing a channel itself
  const char* region_key;
  const char* Country::*region;
  std::array<Bandwidth, 4> bandwidths;
  bool has_channel_14;
};
const Tuner kTuner2G = {
    k2G,
    "2",
    "CountryRegion",
    &Country::region_2g,
    {{{"0", "1", "1", nullptr, nullptr},
      {"1", "0", "0", nullptr, nullptr},
      {"2", "1", "0", nullptr, nullptr}}},
    true,
};
const Tuner kTuner5G = {
    k5G,
    "3",
    "CountryRegionABand",
    &Country::region_5g,
    {{{"0", "1", "1", "1", "14"},
      {"1", "0", "1", "0", "8"},
      {"2", "1", "0", "0", "14"},
      {"3", "1", "1", "1", "14"}}},
    false,
};

constexpr const char* kAutomatic = "0";
constexpr int kFirstUpperChannel = 10;  // from here on the second half of 40 MHz lies below

void write(const Tuner& tuner, const char* key, std::string_view value) {
  driver::write(tuner.radio.profile, key, driver::kWhole, value);
}

// ---- getters

struct Settings {
  std::string channel;
  std::string country;
};

std::optional<Settings> read_settings(const Radio& radio) {
  Settings settings;
  const bool complete =
      driver::read_all_or_log(radio.profile, {{"Channel", driver::kWhole, settings.channel},
                                              {"CountryCode", driver::kWhole, settings.country}});
  return complete ? std::optional(settings) : std::nullopt;
}

// The channel in use. An automatic one is asked of the running interface; when that cannot be,
// `before` stays the answer.
int current_channel(const Radio& radio, int configured, int before) {
  constexpr std::size_t kLongestChannel = 7;
  if (configured != 0) return configured;
  const auto answer =
      shell::capture_line(std::string("iwconfig ") + radio.interface +
                              R"( | grep Channel | awk '{print $2}' | cut -f2 -d\=)",
                          kLongestChannel);
  return answer ? text::to_int(text::without_line_end(answer->text)) : before;
}

// False when the bandwidth, the last value, cannot be read.
bool add_settings(const Radio& radio, const Settings& settings, int& current, Object& object) {
  const int channel = text::to_int(settings.channel);
  current = current_channel(radio, channel, current);
  object.number("channel", channel);
  object.number("curchannel", current);
  object.text("countrycode", settings.country);
  const auto bandwidth = driver::read(radio.profile, "autobw", driver::kWhole);
  object.number("htbw", text::to_int(bandwidth.value_or("")));
  object.number("curbw", text::to_int(bandwidth.value_or("")));
  return bandwidth.has_value();
}

void add_both(const Request& /*request*/, Reply& reply) {
  const auto settings_2g = read_settings(k2G);
  const auto settings_5g = settings_2g ? read_settings(k5G) : std::nullopt;
  if (!settings_5g) return reply.result(kFailed);
  auto configurations = reply.list("configurations");
  int current = 0;  // goes from one radio to the next, as the answer of last resort
  bool complete = true;
  const auto add = [&](const Radio& radio, const Settings& settings) {
    auto object = configurations.add();
    object.text("radio", radio.name);
    complete = add_settings(radio, settings, current, object) && complete;
  };
  add(k2G, *settings_2g);
  add(k5G, *settings_5g);
  if (!complete) reply.result(kFailed);
}

int get_channel(const char* type, const Radio& radio, const char* request, char* out) {
  return answer({.type = type}, request, out, [&](const Request&, Reply& reply) {
    const auto settings = read_settings(radio);
    int current = 0;
    if (!settings || !add_settings(radio, *settings, current, reply)) {
      reply.result(kFailed);
    }
  });
}

// ---- setters

// What a request wants of one radio, as texts.
struct Wishes {
  std::optional<std::string> channel;
  std::optional<std::string> country;
  std::optional<std::string> bandwidth;

  bool storable() const {
    for (const auto* wish : {&channel, &country, &bandwidth}) {
      if (*wish && !text::is_storable(**wish, kLongestFlag)) return false;
    }
    return true;
  }
};

void write_selection(const Tuner& tuner, const std::string& channel) {
  write(tuner, "AutoChannelSelect", channel == kAutomatic ? tuner.automatic_selection : "0");
}

void write_channel(const Tuner& tuner, const std::string& channel) {
  if (tuner.has_channel_14) settle_channel_14(channel);
  write(tuner, "Channel", channel);
}

void write_country(const Tuner& tuner, const std::string& code) {
  Country country = kAnyOtherCountry;
  for (const auto& known : kCountries) {
    if (known.code == code) country = known;
  }
  write(tuner, "CountryCode", code);
  write(tuner, tuner.region_key, country.*tuner.region);
}

void write_bandwidth(const Tuner& tuner, const std::string& web) {
  write(tuner, "autobw", web);
  for (const auto& bandwidth : tuner.bandwidths) {
    if (bandwidth.ht == nullptr || bandwidth.web != web) continue;
    write(tuner, "HT_BW", bandwidth.ht);
    write(tuner, "HT_BSSCoexistence", bandwidth.coexistence);
    if (bandwidth.vht != nullptr) write(tuner, "VHT_BW", bandwidth.vht);
    if (bandwidth.mode != nullptr) write_mode(tuner.radio, bandwidth.mode);
  }
}

// Only "setchannelall" settles the power and the side of the second channel with the channel.
void settle_with_channel(const Tuner& tuner, const std::string& channel) {
  write(tuner, "PERCENTAGEenable", "0");
  write(tuner, "HT_EXTCHA", text::to_int(channel) < kFirstUpperChannel ? "1" : "0");
}

void tune(const Tuner& tuner, const Wishes& wishes, bool settles_2g) {
  if (wishes.channel) {
    write_channel(tuner, *wishes.channel);
    if (settles_2g) settle_with_channel(tuner, *wishes.channel);
    write_selection(tuner, *wishes.channel);
  }
  if (wishes.country) write_country(tuner, *wishes.country);
  if (wishes.bandwidth) write_bandwidth(tuner, *wishes.bandwidth);
}

std::optional<std::string> copied(const std::optional<std::string_view>& text) {
  return text ? std::optional<std::string>(*text) : std::nullopt;
}

int change_both(const Request& request) {
  if (request.type() != "setchannelall") return kFailed;
  const auto wishes = [&](const char* channel, const char* country, const char* bandwidth) {
    return Wishes{copied(request.text(channel)), copied(request.text(country)),
                  copied(request.text(bandwidth))};
  };
  const auto wishes_2g = wishes("channel", "countrycode", "htbw");
  const auto wishes_5g = wishes("channel_5", "countrycode_5", "htbw_5");
  if (!wishes_2g.storable() || !wishes_5g.storable()) {
    log::refused("setchannelall");
    return kFailed;
  }
  tune(kTuner2G, wishes_2g, /*settles_2g=*/true);
  tune(kTuner5G, wishes_5g, /*settles_2g=*/false);
  return kDone;
}

// A radio that is the uplink keeps the channel of the access point it has joined: only the other
// one is tuned. Null: neither.
const char* tuning_command() {
  constexpr const char* kAll = "wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all &";
  const auto read = [](const config::Option& option, const char* failure) {
    auto value = config::read(option);
    if (!value) log::error(failure);
    return value;
  };
  const auto mode = read(config::kOperationMode, "uci get operationmode error!\n");
  std::optional<std::string> uplink;
  if (mode == "wisp") {
    uplink = read({"internet", "wisp", "wisp_type"}, "uci get wisp_type error!\n");
  } else if (mode == "repeater") {
    uplink = read({"internet", "repeater", "repeater_type"}, "uci get repeater_type error!\n");
  }
  if (!uplink) return kAll;
  if (*uplink == k2G.band) {
    return "wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel 5.8G &";
  }
  if (*uplink == k5G.band) {
    return "wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel 2.4G &";
  }
  return nullptr;
}

int set_channel(const char* type, const Tuner& tuner, const char* command, const char* request,
                char* out) {
  return answer({.type = type, .echoes_type = true}, request, out,
                [&](const Request& parsed, Reply& reply) {
                  const auto number = [&](const char* member) -> std::optional<std::string> {
                    const auto value = parsed.integer(member);
                    return value ? std::optional(std::to_string(*value)) : std::nullopt;
                  };
                  const Wishes wishes = {number("channel"), copied(parsed.text("countrycode")),
                                         number("htbw")};
                  if (!wishes.storable()) {
                    log::refused(type);
                    return reply.result(kFailed);
                  }
                  tune(tuner, wishes, /*settles_2g=*/false);
                  shell::start(command);
                  reply.result(kDone);
                });
}

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetChannelAll(const char* request, char* out) {
  return answer({.type = "getchannelall"}, request, out, add_both);
}

int bs_GetAdvChannel(const char* request, char* out) {
  return get_channel("get2channel", k2G, request, out);
}

int bs_Get5AdvChannel(const char* request, char* out) {
  return get_channel("get5channel", k5G, request, out);
}

// The radios are tuned after every answer, also of a request that was refused.
int bs_SetChannelAll(const char* request, char* out) {
  return answer({.type = "setchannelall", .echoes_type = true, .accepts_any_type = true}, request,
                out, [](const Request& parsed, Reply& reply) {
                  reply.result(change_both(parsed));
                  reply.afterwards([] {
                    const char* command = tuning_command();
                    if (command != nullptr) shell::start(command);
                  });
                });
}

int bs_SetAdvChannel(const char* request, char* out) {
  return set_channel("set2channel", kTuner2G,
                     "wifi_setup.sh wifi_master_enable 2.4G;"
                     "wifi_setup.sh wifi_guest_arguments 2.4G &",
                     request, out);
}

int bs_Set5AdvChannel(const char* request, char* out) {
  return set_channel("set5channel", kTuner5G, "wifi_setup.sh wifi_channel 5.8G &", request, out);
}
