// Whether a request comes from the router's own pages.
#pragma once

#include "gateway/http_request.h"

namespace gateway {

// By what browsers say and pages cannot change: Sec-Fetch-Site, where given, must be "same-origin",
// and Origin, or Referer where that is missing, must name the host that was asked. A request with
// neither does not pass.
bool is_same_origin(const HttpRequest& http);

}  // namespace gateway
