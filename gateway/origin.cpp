#include "gateway/origin.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace gateway {
namespace {

std::string lower_case(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

// "host" or "host:port" in its one form: browsers leave a scheme's own port out.
std::string without_default_port(std::string authority, std::string_view scheme) {
  const std::string_view port = scheme == "https" ? ":443" : ":80";
  if (authority.ends_with(port)) authority.resize(authority.size() - port.size());
  return authority;
}

}  // namespace

bool is_same_origin(const HttpRequest& http) {
  if (http.fetch_site && *http.fetch_site != "same-origin") return false;
  const auto& sent = http.origin ? http.origin : http.referer;
  if (!sent || !http.host || http.host->empty()) return false;

  const std::string address = lower_case(*sent);
  const auto scheme_end = address.find("://");
  if (scheme_end == std::string::npos) return false;
  const std::string scheme = address.substr(0, scheme_end);
  // A page that came unprotected may have been written by anyone on the way.
  if (scheme != "https" && (scheme != "http" || http.over_tls)) return false;
  const auto begin = scheme_end + 3;
  const auto end = std::min(address.find_first_of("/?#", begin), address.size());
  return without_default_port(address.substr(begin, end - begin), scheme) ==
         without_default_port(lower_case(*http.host), scheme);
}

}  // namespace gateway
