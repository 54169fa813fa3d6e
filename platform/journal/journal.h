// The effects journal: on a virtual router the platform libraries note every store there, in the
// order in which the stores happened. A real router has no journal, and nothing is noted.
#pragma once

#include <string_view>

namespace journal {

// Appends one line to /run/board/journal, such as "uci set network.lan.mtu=1500", after the effect
// has happened. A line feed within `effect` is written as \n, a carriage return as \r and a
// backslash as \\. Writers in other processes and threads never split a line.
//
// Does nothing when the journal file does not exist, or when the environment has
// ZELTO_BOARD_FIRMWARE: what the firmware's own scripts store is no effect of a request. A line
// that cannot be written is dropped, as the effect it tells of stands all the same.
void note(std::string_view effect) noexcept;

}  // namespace journal
