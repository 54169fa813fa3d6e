#include "gateway/audit.h"

#include <syslog.h>

#include <string>

namespace gateway {

void audit(Audit kind, std::string_view command, const HttpRequest& http,
           std::string_view outcome) {
  const std::string line =
      std::string(command) + " from " + http.source + ": " + std::string(outcome);
  const int facility = kind == Audit::kLogin ? LOG_AUTH : LOG_DAEMON;
  syslog(facility | LOG_NOTICE, "%s", line.c_str());
}

}  // namespace gateway
