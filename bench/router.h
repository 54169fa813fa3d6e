// The virtual router as it is measured.
#pragma once

#include <string>

namespace zelto_bench {

// All as just booted, but without what only the virtual router does: its shell notes commands
// before it runs them, and its stores note what is stored.
void reset();

inline constexpr int kFullBlacklist = 32;

// The MAC address of the entry of this number, from 0.
std::string device(int number);

// Gives every list so many entries, the blacklist at most as many as it takes, and the firewall a
// section for each forwarding rule. The lists are to be as a router has them at first.
void fill_lists(int entries);

}  // namespace zelto_bench
