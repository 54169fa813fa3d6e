// The login token of a browser: its form, where it travels, and how it is made.
#pragma once

#include <string>
#include <string_view>

#include "gateway/http_request.h"

namespace gateway {

// Exactly 32 lower-case hexadecimal characters. Nothing else may reach check_auth, which accepts
// every part of a token.
bool is_token(std::string_view text);

// What the client presents: "Authorization: Bearer", otherwise the cookie. Empty when that is no
// token, or when several cookies claim to be it.
std::string presented_token(const HttpRequest& http);

// A fresh one, from the kernel's random numbers.
std::string make_token();

// Header lines that give the cookie to the browser, and that take it back.
std::string set_cookie(const std::string& token, bool over_tls);
std::string clear_cookie(bool over_tls);

}  // namespace gateway
