// What the commands that change the WAN have in common.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "api/request.h"

namespace zelto::wan {

// The fields of the WAN in the order in which they are stored.
inline constexpr std::array kFields = {"wanip",     "wanmsk",   "wangw",       "dns1", "dns2",
                                       "pppoename", "pppoepsw", "server_name", "mtu"};

// What PPPoE takes of every packet. Pages show the size of the payload, the store keeps the whole.
inline constexpr int kPppoeOverhead = 8;

// Makes the WAN take its settings over.
inline constexpr const char* kRestart =
    "/etc/init.d/network set_wan_quick;killall -USR2 udhcpc;killall -USR1 udhcpc;"
    "lua /sbin/svctl.lua set_iptv_portmap &";

// The same without asking the provider for another address.
inline constexpr const char* kQuickRestart =
    "/etc/init.d/network set_wan_quick;lua /sbin/svctl.lua set_iptv_portmap &";

// Two resolvers as they are stored: joined by a blank. Missing ones are empty.
std::string resolver_pair(const Members& request);

// Whether every field that a request carries can be stored and read back.
bool fields_are_storable(const Members& request);

// Stores one field. The MTU goes in with the overhead on top.
void store_field(const char* name, std::string_view value);

// Whether the user has set resolvers for good. They win over those of a connection.
bool own_resolvers_are_on();
void apply_own_resolvers();

// Switches both tunnels off and forgets their interfaces.
void forget_tunnels();

}  // namespace zelto::wan
