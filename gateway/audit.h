// The record of who changed what, in the system log.
#pragma once

#include <string_view>

#include "gateway/http_request.h"

namespace gateway {

enum class Audit { kLogin, kCommand };

// One line: command, the client's address, the outcome. Nothing in it was written by a client: the
// address is printed anew, the command's name comes from the catalogue and values are left out, so
// that no line can be forged and no password logged.
void audit(Audit kind, std::string_view command, const HttpRequest& http, std::string_view outcome);

}  // namespace gateway
