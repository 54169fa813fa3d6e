// The five operation modes and what each writes when the router changes to it.
#pragma once

#include <string>
#include <string_view>

#include "api/request.h"

namespace zelto::quick_setup {

// What a change of mode works with.
struct Change {
  const Members& request;
  std::string lan_mac;
  std::string wan_mac;

  // A text of the request; empty when it is missing.
  std::string text(const char* member) const;
};

struct Mode {
  std::string_view name;    // in requests
  bool joins_a_network;     // its uplink is a radio
  bool bridges_everything;  // no routing: hardware NAT stays off
  int (*change)(const Change& change);
};

// Null for an unknown name.
const Mode* find_mode(std::string_view name);

// Whether a request carries what joining a network needs.
bool names_a_network(const Members& request);

}  // namespace zelto::quick_setup
