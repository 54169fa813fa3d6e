// The modem in the router's serial port. There is none unless board::Options or the code inside
// plugs one in; reset() pulls out what was plugged in since.
#pragma once

#include <string>
#include <vector>

namespace board {

// Plugs in a modem in place of the one there, and returns when it can be asked. `profile` names
// one in the router's /usr/share/modems or, holding a line feed, is the text of one, as
// board/modem/profile.h describes it. Its kind is in /tmp/mob_type as by the modem daemon.
void plug_modem(const std::string& profile);

void unplug_modem();

// The command lines that modems have received, in order.
std::vector<std::string> modem_commands();

}  // namespace board
