// The two radios and the two networks that each carries.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "api/config.h"
#include "api/driver.h"

namespace zelto::wireless {

// The main or the guest network of a radio. The configuration keeps what the user chose; the driver
// holds what is on the air.
struct Network {
  driver::Index index;         // its element of keys with a value for each network
  const char* ssid_key;        // in the driver
  const char* passphrase_key;  // in the driver
  const char* placeholder;     // the driver's SSID while the network is off
  config::Option ssid;
  config::Option hidden;
  config::Option enabled;
};

struct Radio {
  const driver::Profile& profile;
  const char* name;  // in replies
  const char* band;  // in shell commands
  const char* interface;
  Network main;
  Network guest;
};
extern const Radio k2G;
extern const Radio k5G;

// Couples the 5 GHz radio's switch and hidden flag to the other one's.
inline constexpr config::Option kDualSwitch = {"system", "route", "dualSwitch"};

inline constexpr const char* kOn = "1";
inline constexpr const char* kOff = "0";

// What every reader gives back whole: an SSID or a passphrase, and a flag.
inline constexpr std::size_t kLongestText = 99;
inline constexpr std::size_t kLongestFlag = 7;

// Whether a text from a request may become an SSID or a passphrase, and whether one may become a
// flag. A member that is missing is fine.
bool is_text_or_missing(const std::optional<std::string_view>& text);
bool is_flag(const std::string& text);

// The main network's switch in the driver; a failed read is logged and counts as on.
std::string switch_state(const Radio& radio);

// Whether radios may be touched now: the schedule has not switched Wi-Fi off. While it has, choices
// go into the configuration only.
bool schedule_leaves_radios_on();

// Stores an SSID; the driver gets it only when the network is on the air.
void store_ssid(const Radio& radio, const Network& network, std::string_view ssid, bool on_air);

// Puts the main network's name that the configuration keeps back on the air, with a hidden flag, or
// takes it off the air: a network that is off has a placeholder's name and is hidden.
void show_name(const Radio& radio, const std::string& hidden);
void take_name_away(const Radio& radio);

// The hidden flag of the main network that the configuration keeps; empty when it has none.
std::string stored_hidden(const Radio& radio);

// Sets the main network's hidden flag in the driver, and on the running radio at once.
void hide_on_air(const Radio& radio, const std::string& hidden);

// Writes the 802.11 mode of both networks.
void write_mode(const Radio& radio, const char* mode);

// To be called before the 2.4 GHz radio's channel is written: channel 14 has a mode of its own,
// which the radio must leave with it.
void settle_channel_14(const std::string& new_channel);

// A driver's value in the spelling of web pages, by the rows of a 2.4 GHz field: both radios use
// those.
std::string web_spelling(const char* field, const std::string& stored);

// The security mode as pages name it, from the driver's two keys.
std::string web_mode(const std::string& authentication, const std::string& cipher);

}  // namespace zelto::wireless
