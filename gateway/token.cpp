#include "gateway/token.h"

#include <strings.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

namespace gateway {
namespace {

constexpr std::size_t kRandomBytes = 16;
constexpr std::size_t kTokenSize = 2 * kRandomBytes;
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::string_view kCookie = "zelto_session=";
constexpr std::string_view kBearer = "Bearer ";

std::string_view cookie_value(std::string_view cookies) {
  std::string_view value;
  while (!cookies.empty()) {
    const auto end = std::min(cookies.find(';'), cookies.size());
    std::string_view cookie = cookies.substr(0, end);
    cookies.remove_prefix(std::min(end + 1, cookies.size()));
    cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
    if (!cookie.starts_with(kCookie)) continue;
    if (!value.empty()) return {};
    value = cookie.substr(kCookie.size());
  }
  return value;
}

std::string cookie_line(const std::string& value, bool over_tls) {
  return "Set-Cookie: " + std::string(kCookie) + value + "; Path=/; HttpOnly; SameSite=Strict" +
         (over_tls ? "; Secure" : "");
}

}  // namespace

bool is_token(std::string_view text) {
  return text.size() == kTokenSize && text.find_first_not_of(kDigits) == std::string_view::npos;
}

std::string presented_token(const HttpRequest& http) {
  std::string_view token = cookie_value(http.cookies);
  if (http.authorization &&
      strncasecmp(http.authorization->c_str(), kBearer.data(), kBearer.size()) == 0) {
    token = std::string_view(*http.authorization).substr(kBearer.size());
  }
  return is_token(token) ? std::string(token) : "";
}

std::string make_token() {
  std::array<unsigned char, kRandomBytes> bytes{};
  // So few bytes come whole or not at all.
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("getrandom");
  }
  std::string token;
  for (const unsigned byte : bytes) {
    token += kDigits[byte >> 4U];
    token += kDigits[byte & 0xFU];
  }
  return token;
}

std::string set_cookie(const std::string& token, bool over_tls) {
  return cookie_line(token, over_tls);
}

std::string clear_cookie(bool over_tls) {
  return cookie_line("", over_tls) + "; Max-Age=0";
}

}  // namespace gateway
