// Security modes as pages name them, and the driver's keys behind each.
#pragma once

#include <string_view>

#include "wireless/radio.h"

namespace zelto::wireless {

// Whether a command knows the mode with TKIP beside AES.
enum class Tkip { kRefused, kAccepted };

// Writes the keys of a mode for one network; an unknown mode writes nothing.
void write_security(const Radio& radio, const Network& network, std::string_view mode, Tkip tkip);

}  // namespace zelto::wireless
