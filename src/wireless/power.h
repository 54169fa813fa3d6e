// Transmit power in the three levels of web pages.
#pragma once

#include <optional>
#include <string>

#include "wireless/radio.h"

namespace zelto::wireless {

// The level for what the driver's "TxPower" holds; nothing for any other figure.
std::optional<int> power_level(const std::string& transmit_power);

// Writes the driver's keys for a level; any other number writes nothing.
void write_power(const Radio& radio, int level);

}  // namespace zelto::wireless
