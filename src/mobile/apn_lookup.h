// The operator of a SIM.
#pragma once

#include <string_view>

namespace zelto::mobile {

// The operator in `apnlist` of the SIM whose identity (IMSI) is in the modem's answer to AT+CIMI;
// empty when no row fits. The table's order decides: a code may occur anywhere in the answer.
std::string_view operator_of(std::string_view cimi_reply);

}  // namespace zelto::mobile
