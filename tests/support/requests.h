// Requests and replies as texts, and the passwords that they set.
#pragma once

#include <string>

#include "board/board.h"
#include "support/ask.h"
#include "support/effects.h"

namespace zelto_test {

// A request or a reply.
inline std::string command(const std::string& type, const std::string& members = "") {
  return R"({"type":")" + type + (members.empty() ? "\"}" : "\"," + members + "}");
}
inline std::string result(const std::string& type, int number) {
  return command(type, R"("result":)" + std::to_string(number));
}

// A member with a text of any characters but control characters.
inline std::string member(const std::string& name, const std::string& value) {
  std::string json = "\"" + name + "\":\"";
  for (const char c : value) {
    if (c == '"' || c == '\\') json += '\\';
    json += c;
  }
  return json + "\"";
}

// Asks a handler, or the library, and compares reply and effects.
inline void expect(const std::string& request, const std::string& reply, const std::string& effects,
                   CommandHandler handler = share_func) {
  board::settle();
  board::clear_journal();
  EXPECT_EQ(call(handler, request.c_str()).reply, reply) << request;
  expect_effects(effects, request);
}
// A request that is refused with 1 and does nothing.
inline void expect_refused(const std::string& type, const std::string& members) {
  expect(command(type, members), result(type, 1), "");
}

// Whether the system, or Samba, knows the user by exactly that password.
inline bool has_password(const std::string& user, const std::string& password) {
  constexpr const char* kCompare = R"sh(hash=$(grep "^$1:" /etc/shadow | cut -d : -f 2)
      salt=$(echo "$hash" | cut -d '$' -f 3)
      [ "$hash" = "$(printf '%s\n' "$2" | mkpasswd -P 0 -m sha512 -S "$salt")" ])sh";
  return board::quiet({"/bin/sh", "-c", kCompare, "sh", user, password}) == 0;
}
inline bool has_samba_password(const std::string& user, const std::string& password) {
  constexpr const char* kCompare = R"sh(hash=$(grep "^$1:" /etc/samba/smbpasswd | cut -d : -f 4)
      [ "$hash" = "$(printf %s "$2" | md5sum | cut -c -32 | tr a-f A-F)" ])sh";
  return board::quiet({"/bin/sh", "-c", kCompare, "sh", user, password}) == 0;
}

}  // namespace zelto_test
