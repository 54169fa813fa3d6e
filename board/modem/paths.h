// Where the modem is to be found on the router.
#pragma once

namespace board::modem {

inline constexpr const char* kProfiles = "/usr/share/modems/";
// The profile of the one that is plugged in, and its process.
inline constexpr const char* kPlugged = "/var/board/modem";
inline constexpr const char* kProcessFile = "/var/run/modem.pid";
// As the modem daemon writes it.
inline constexpr const char* kKindFile = "/tmp/mob_type";
// The command lines received.
inline constexpr const char* kLog = "/var/log/modem.log";
// The process by its name.
inline constexpr const char* kProcessName = "modem";

}  // namespace board::modem
