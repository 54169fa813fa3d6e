#include "gateway/origin.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <sstream>
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

// Domains of home networks.
constexpr std::array<std::string_view, 4> kLocalDomains{".lan", ".local", ".internal",
                                                        ".home.arpa"};

bool is_ipv4(const std::string& text) {
  in_addr address{};
  return inet_pton(AF_INET, text.c_str(), &address) == 1;
}

}  // namespace

bool is_same_origin(const HttpRequest& http) {
  if (http.fetch_site && *http.fetch_site != "same-origin") return false;
  const auto& sent = http.origin ? http.origin : http.referer;
  if (!sent || !http.host || http.host->empty()) return false;

  const std::string address = lower_case(*sent);
  const auto scheme_end = address.find("://");
  if (scheme_end == std::string::npos) return false;
  const auto scheme = std::string_view(address).substr(0, scheme_end);
  // A page that came unprotected may have been written by anyone on the way.
  if (scheme != "https" && (scheme != "http" || http.over_tls)) return false;
  const auto begin = scheme_end + 3;
  const auto end = std::min(address.find_first_of("/?#", begin), address.size());
  return without_default_port(address.substr(begin, end - begin), scheme) ==
         without_default_port(lower_case(*http.host), scheme);
}

bool is_own_host(const HttpRequest& http, const std::string& public_names) {
  if (!http.host) return false;
  const std::string host = lower_case(*http.host);
  if (host.starts_with('[')) return true;
  const std::string name(std::string_view(host).substr(0, host.find(':')));
  if (name.find('.') == std::string::npos || is_ipv4(name)) return true;
  const auto is_end = [&](std::string_view domain) { return name.ends_with(domain); };
  if (std::ranges::any_of(kLocalDomains, is_end)) return true;
  std::istringstream words(lower_case(public_names));
  for (std::string word; words >> word;) {
    if (word == name) return true;
  }
  return false;
}

}  // namespace gateway
