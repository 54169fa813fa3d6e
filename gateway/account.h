// What the configuration store says about the administrator and the gateway.
#pragma once

#include <optional>
#include <string>

namespace gateway {

// The administrator's password; nothing unless both a name and a password are stored. The library
// would let everyone into such a router who sends neither.
std::optional<std::string> administrator_password();

// Whether the password presented is the one stored. How long that takes tells nothing about where
// they differ.
bool is_same_password(const std::string& presented, const std::string& stored);

// Whether the commands that may run anything or interrupt the router are to be had at all:
// zelto.gateway.danger is not "0".
bool danger_is_allowed();

// The names in public domains under which this router is reached, separated by blanks:
// zelto.gateway.hosts.
std::string public_names();

}  // namespace gateway
