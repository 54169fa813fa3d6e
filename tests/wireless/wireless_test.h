// The fixture of the wireless commands' tests, and what both bands have in common.
#pragma once

#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "support/router_test.h"

namespace zelto_test {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// A band: its driver profile, and how its commands spell what is written here for 2.4 GHz
// (requests, replies, effects, log lines) when they are twins.
struct Band {
  const char* profile;
  int (*get)(const char* key, int index, char* buffer);
  int (*set)(const char* key, int index, const char* value);
  bool is_twin;

  std::string operator()(std::string text) const;
};
extern const Band kBands[2];
inline const Band& k2G = kBands[0];
inline const Band& k5G = kBands[1];

// The names that a main network off the air has.
constexpr const char* kOff2G = "095460F1071109BBE3C7E494BBBC8BDE";
constexpr const char* kOff5G = "C7CBAF4186660BA55327A196D352A33D";

constexpr int kWhole = -1;

inline std::string command(const std::string& type, const std::string& members) {
  return R"({"type":")" + type + (members.empty() ? "\"}" : "\"," + members + "}");
}
inline std::string done(const std::string& type) {
  return command(type, R"("result":0)");
}
inline std::string failed(const std::string& type) {
  return command(type, R"("result":1)");
}

// The driver's keys of every security mode that some command knows, as effects() shows them; '#'
// stands for the network.
extern const std::vector<std::pair<std::string, std::string>> kSecurity;
std::string security(const std::string& mode, int index);

class WirelessTest : public RouterTest {
 protected:
  static void given_route(const std::string& option, const std::optional<std::string>& value) {
    given("system", "route", option.c_str(), value);
  }
  static void given_schedule(const std::optional<std::string>& state) {
    given_route("wifi_schedule_set_wifi_disable", state);
  }

  // Puts a value into a profile, or takes the key away; not an effect of the request that follows.
  static void given_driver(const Band& band, const std::string& key, int index,
                           const std::optional<std::string>& value);

  // What the driver has; "(none)" when the read fails.
  static std::string driver(const Band& band, const char* key, int index);

  // The effects since the journal was last looked at, as one text: stores into one place are drawn
  // together, and what is started, whose shell comes to it when it can, stands at the end:
  // "uci ssid_2g=A | wifi 2.4G SSID1=A, WPAPSK1=B | run ... | start ...".
  static std::string effects();

  // The effects of a request that must get this reply.
  static std::string effects(const std::string& request, const std::string& reply);

  // The effects of a command that must succeed.
  static std::string set(const std::string& type, const std::string& members,
                         const Band& band = k2G) {
    return effects(band(command(type, members)), band(done(type)));
  }
};

}  // namespace zelto_test
