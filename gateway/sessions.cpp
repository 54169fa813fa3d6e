#include "gateway/sessions.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include <zelto/zeltoapi.h>

#include "gateway/response.h"
#include "gateway/state.h"
#include "gateway/token.h"
#include "gateway/token_file.h"
#include "platform/common/read_file.h"

namespace gateway {
namespace {

constexpr std::size_t kMostSessions = 32;
constexpr std::int64_t kTouchInterval = 5;  // seconds
constexpr std::string_view kPrefix = "session-";

std::string record_name(const std::string& token) {
  return std::string(kPrefix) + token;
}

// The record holds two times of seconds_now(): of the login, and of the last request that counted.
std::optional<Session> read_record(const std::string& token) {
  const auto record = platform::read_file(state_path(record_name(token)));
  if (!record) return std::nullopt;
  std::istringstream words(*record);
  std::int64_t created = 0;
  std::int64_t used = 0;
  if (!(words >> created >> used)) return std::nullopt;
  const auto now = seconds_now();
  return Session{now - created, now - used};
}

// A record from the future was written before the router started.
bool is_over(const Session& session) {
  return session.age < 0 || session.age >= kLongestSession || session.idle < 0 ||
         session.idle >= kLongestIdle;
}

void write_record(const StateLock& lock, const std::string& token, const Session& session) {
  const auto now = seconds_now();
  replace_state(
      lock, record_name(token),
      std::to_string(now - session.age) + " " + std::to_string(now - session.idle) + "\n");
}

// Needs no room, so that a full disk keeps nobody logged in.
void remove_record(const StateLock&, const std::string& token) {
  unlink(state_path(record_name(token)).c_str());
}

struct Stored {
  std::string token;
  Session session;
};

// All records, the one idle for longest first; what cannot be read counts as idle for too long.
// Takes away what a killed process left half written.
std::vector<Stored> all_records(const StateLock&) {
  std::vector<Stored> all;
  for (const auto& entry : std::filesystem::directory_iterator(kStateFolder)) {
    const std::string name = entry.path().filename();
    if (name.starts_with('.')) unlink(entry.path().c_str());
    if (!name.starts_with(kPrefix)) continue;
    const std::string token = name.substr(kPrefix.size());
    all.push_back({token, read_record(token).value_or(Session{kLongestSession, kLongestIdle})});
  }
  std::ranges::sort(all, [](const Stored& one, const Stored& other) {
    return one.session.idle > other.session.idle;
  });
  return all;
}

// Removes what is over, and what is too much to take one more; returns the tokens.
std::set<std::string> make_room(const StateLock& lock) {
  std::set<std::string> removed;
  const auto all = all_records(lock);
  auto left = static_cast<std::size_t>(
      std::ranges::count_if(all, [](const Stored& stored) { return !is_over(stored.session); }));
  for (const auto& [token, session] : all) {
    if (!is_over(session)) {
      if (left < kMostSessions) continue;
      --left;
    }
    remove_record(lock, token);
    removed.insert(token);
  }
  return removed;
}

}  // namespace

std::optional<Session> find_session(const std::string& token) {
  if (!is_token(token) || check_auth(token.c_str()) != 1 || !state_is_own()) return std::nullopt;
  const auto session = read_record(token);
  return session && !is_over(*session) ? session : std::nullopt;
}

void touch_session(const std::string& token, const Session& session) {
  if (session.idle < kTouchInterval) return;
  try {
    const StateLock lock;
    // Not to be brought back when it has been ended meanwhile.
    if (read_record(token)) write_record(lock, token, {session.age, 0});
  } catch (const Refusal&) {
    // A full disk makes the session end early; until then it is of use.
  }
}

std::string start_session(const std::string& library_token) {
  const StateLock lock;
  auto old = make_room(lock);
  old.insert(library_token);
  std::string token = make_token();
  change_token_file(lock, old, token);
  write_record(lock, token, {});
  return token;
}

void end_session(const std::string& token) {
  const StateLock lock;
  remove_record(lock, token);
  try {
    change_token_file(lock, {token}, "");
  } catch (const Refusal&) {
    // Without its record the token is of no use.
  }
}

}  // namespace gateway
