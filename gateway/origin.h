// Whether a request comes from the router's own pages.
#pragma once

#include <string>

#include "gateway/http_request.h"

namespace gateway {

// By what browsers say and pages cannot change: Sec-Fetch-Site, where given, must be "same-origin",
// and Origin, or Referer where that is missing, must name the host that was asked. A request with
// neither does not pass.
bool is_same_origin(const HttpRequest& http);

// Whether the host that was asked can be this router: an address, a name that nobody can register,
// or one of `public_names` (separated by blanks). Any other may belong to a page that made its own
// name lead here, and is of one origin with itself.
bool is_own_host(const HttpRequest& http, const std::string& public_names);

}  // namespace gateway
