#include "gateway/http_request.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include "gateway/response.h"

namespace gateway {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr const char* kPath = "/sbin:/usr/sbin:/bin:/usr/bin";
constexpr auto kLongestRead = std::chrono::seconds(10);
// A longer body is read on for a while, or the client would see its connection break, not why.
constexpr std::size_t kMostDiscarded = std::size_t{32} << 20U;

std::optional<std::string> variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

// One text for one address, however the server spells it: IPv6 may come in brackets and with an
// interface, and with an IPv4 address inside. What is no address at all shares a name.
std::string normal_address(std::string text) {
  if (text.starts_with('[')) text.erase(0, 1);
  text.resize(std::min(text.find_first_of("]%"), text.size()));
  std::array<char, INET6_ADDRSTRLEN> printed{};
  in6_addr address{};
  const char* name = nullptr;
  if (inet_pton(AF_INET, text.c_str(), &address) == 1) {
    name = inet_ntop(AF_INET, &address, printed.data(), printed.size());
  } else if (inet_pton(AF_INET6, text.c_str(), &address) == 1) {
    name = IN6_IS_ADDR_V4MAPPED(&address)
               ? inet_ntop(AF_INET, &address.s6_addr[12], printed.data(), printed.size())
               : inet_ntop(AF_INET6, &address, printed.data(), printed.size());
  }
  return name == nullptr ? "unknown" : name;
}

// Waits until there is something to read; false when the time is over.
bool wait_for_input(int input, Clock::time_point end) {
  while (true) {
    const auto left = std::chrono::duration_cast<milliseconds>(end - Clock::now());
    if (left.count() <= 0) return false;
    pollfd event{input, POLLIN, 0};
    const int ready = poll(&event, 1, static_cast<int>(left.count()));
    if (ready > 0) return true;
    if (ready < 0 && errno != EINTR) throw std::runtime_error("poll");
  }
}

}  // namespace

HttpRequest take_environment() {
  HttpRequest http;
  http.method = variable("REQUEST_METHOD").value_or("");
  http.query = variable("QUERY_STRING").value_or("");
  http.content_type = variable("CONTENT_TYPE").value_or("");
  http.cookies = variable("HTTP_COOKIE").value_or("");
  http.source = normal_address(variable("REMOTE_ADDR").value_or(""));
  http.over_tls = variable("HTTPS") == "on";
  http.host = variable("HTTP_HOST");
  http.origin = variable("HTTP_ORIGIN");
  http.referer = variable("HTTP_REFERER");
  http.fetch_site = variable("HTTP_SEC_FETCH_SITE");
  http.authorization = variable("HTTP_AUTHORIZATION");
  if (clearenv() != 0 || setenv("PATH", kPath, 1) != 0) throw std::runtime_error("environment");
  return http;
}

std::string read_body(int input) {
  const auto end = Clock::now() + kLongestRead;
  std::string body;
  std::size_t total = 0;
  std::array<char, 16384> block{};
  while (total < kMostDiscarded) {
    if (!wait_for_input(input, end)) throw Refusal{400, "bad_request", "The request is not whole."};
    const ssize_t count = read(input, block.data(), block.size());
    if (count == 0) break;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw Refusal{400, "bad_request", "The request cannot be read."};
    total += static_cast<std::size_t>(count);
    if (total <= kLongestBody) body.append(block.data(), static_cast<std::size_t>(count));
  }
  if (total > kLongestBody) throw Refusal{413, "too_large", "The request is too long."};
  if (body.find('\0') != std::string::npos) {
    throw Refusal{400, "bad_request", "The request is not JSON."};
  }
  return body;
}

}  // namespace gateway
