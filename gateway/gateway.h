// The checks between the web and the command library, and the gateway's own three requests:
// "loginauth" with a session around the library's, "logout" and "session".
#pragma once

#include "gateway/http_request.h"
#include "gateway/response.h"

namespace gateway {

// Answers one request. Throws what is refused as a Refusal.
Response handle(const HttpRequest& http, int input);

}  // namespace gateway
