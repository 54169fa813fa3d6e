#include "wireless/security.h"

#include <array>

namespace zelto::wireless {
namespace {

struct Mode {
  std::string_view name;
  const char* authentication;
  const char* cipher;
  const char* rekey;
  const char* pmf_capable;   // management frames may be protected ...
  const char* pmf_required;  // ... or must be
  bool has_tkip = false;     // the only mode whose PMF keys are written in the other order
};

constexpr std::array kModes = {
    Mode{"open", "OPEN", "NONE", "DISABLE", "0", "0"},
    Mode{"wpa2", "WPA2PSK", "AES", "TIME", "0", "0"},
    Mode{"wpa3", "WPA3PSK", "AES", "TIME", "1", "1"},
    Mode{"wpawpa2-tkipaes", "WPAPSKWPA2PSK", "TKIPAES", "TIME", "0", "0", true},
    Mode{"wpawpa2", "WPAPSKWPA2PSK", "AES", "TIME", "0", "0"},
    Mode{"wpa2wpa3", "WPA2PSKWPA3PSK", "AES", "TIME", "1", "0"},
};

}  // namespace

void write_security(const Radio& radio, const Network& network, std::string_view mode, Tkip tkip) {
  const auto write = [&](const char* key, const char* value) {
    driver::write(radio.profile, key, network.index, value);
  };
  for (const auto& known : kModes) {
    if (known.name != mode || (known.has_tkip && tkip == Tkip::kRefused)) continue;
    write("AuthMode", known.authentication);
    write("EncrypType", known.cipher);
    write("RekeyMethod", known.rekey);
    if (known.has_tkip) write("PMFMFPR", known.pmf_required);
    write("PMFMFPC", known.pmf_capable);
    if (!known.has_tkip) write("PMFMFPR", known.pmf_required);
    return;
  }
}

}  // namespace zelto::wireless
