// What the modem says of SIM and network.
#pragma once

#include <string>

namespace zelto::mobile {

struct BasicInfo {
  int signal = 0;             // a positive attenuation, where less is stronger
  std::string operator_name;  // as the table of access points has it; empty when not known
  std::string technology;     // a number as text; empty when not known
};

BasicInfo collect();

// Whether the SIM can be used. A router that is online is taken for one whose SIM can, and its
// modem is not asked.
bool sim_is_ready();

}  // namespace zelto::mobile
