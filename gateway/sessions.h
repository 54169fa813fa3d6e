// Who is logged in: a record for each token that the gateway issued. A token without one does not
// pass, whatever check_auth says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace gateway {

inline constexpr std::int64_t kLongestIdle = 600;       // seconds without a request
inline constexpr std::int64_t kLongestSession = 43200;  // seconds after the login

struct Session {
  std::int64_t age = 0;   // seconds since the login
  std::int64_t idle = 0;  // seconds since the last request that counted
};

// The session of a token of the right form; nothing when check_auth does not know it, it has no
// record, or that is over.
std::optional<Session> find_session(const std::string& token);

// A request came: the idle time begins anew. (To spare writes, one that follows another within
// seconds does not count.)
void touch_session(const std::string& token, const Session& session);

// Starts a session under a fresh token, which replaces `library_token` in the token file; sessions
// that are over go, and the one idle for longest where there are too many. Throws a refusal when
// it cannot be stored.
std::string start_session(const std::string& library_token);

void end_session(const std::string& token);

}  // namespace gateway
