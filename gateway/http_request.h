// What the web server hands over, by the rules of CGI.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace gateway {

inline constexpr std::size_t kLongestBody = std::size_t{64} * 1024;

struct HttpRequest {
  std::string method;
  std::string query;
  std::string content_type;
  std::string cookies;
  std::string source;  // the client's address as text, or "unknown"
  bool over_tls = false;
  // Headers, where it matters whether the client sent them.
  std::optional<std::string> host;
  std::optional<std::string> origin;
  std::optional<std::string> referer;
  std::optional<std::string> fetch_site;
  std::optional<std::string> authorization;

  // A request that the page sends by itself and that therefore does not keep a session alive.
  bool is_poll() const { return query == "poll"; }
};

// Takes the request over from the environment and leaves in that nothing but PATH: the shells that
// commands start would inherit what a client wrote.
HttpRequest take_environment();

// The request's body, read to its end: how long it says it is counts for nothing. Throws a refusal
// when it is longer than kLongestBody, comes too slowly or holds a NUL.
std::string read_body(int input);

}  // namespace gateway
