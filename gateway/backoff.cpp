#include "gateway/backoff.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <vector>

#include "gateway/response.h"
#include "gateway/state.h"
#include "platform/common/read_file.h"

namespace gateway {
namespace {

constexpr const char* kFile = "failures";
constexpr int kFreeAttempts = 5;
constexpr std::int64_t kLongestWait = 900;      // seconds
constexpr std::int64_t kForgottenAfter = 3600;  // seconds
constexpr std::size_t kMostSources = 128;

// A line of the file.
struct Failures {
  std::string source;
  int count = 0;
  std::int64_t last = 0;  // of seconds_now()
};

// 2, 4, 8 ... seconds from the last free attempt on.
std::int64_t wait_after(int count) {
  if (count < kFreeAttempts) return 0;
  return std::min(kLongestWait, std::int64_t{2} << std::min(count - kFreeAttempts, 16));
}

// All sources that are remembered still, the longest silent first.
std::vector<Failures> load(std::int64_t now) {
  std::vector<Failures> all;
  std::istringstream lines(platform::read_file(state_path(kFile)).value_or(""));
  for (Failures one; lines >> one.source >> one.count >> one.last;) {
    // One from the future was written before the router started.
    if (one.last <= now && now - one.last < kForgottenAfter) all.push_back(one);
  }
  std::ranges::sort(all, {}, &Failures::last);
  return all;
}

void save(const StateLock& lock, const std::vector<Failures>& all) {
  std::string text;
  const auto surplus = all.size() - std::min(all.size(), kMostSources);
  for (auto one = all.begin() + static_cast<std::ptrdiff_t>(surplus); one != all.end(); ++one) {
    text += one->source + " " + std::to_string(one->count) + " " + std::to_string(one->last) + "\n";
  }
  replace_state(lock, kFile, text);
}

}  // namespace

void charge_attempt(const std::string& source) {
  const StateLock lock;
  const auto now = seconds_now();
  auto all = load(now);
  Failures charged{source, 0, now};
  const auto found = std::ranges::find(all, source, &Failures::source);
  if (found != all.end()) {
    charged.count = found->count;
    const auto left = found->last + wait_after(found->count) - now;
    if (left > 0) {
      throw Refusal{429,
                    "too_many_attempts",
                    "Too many wrong passwords; please wait.",
                    {"Retry-After: " + std::to_string(left)}};
    }
    all.erase(found);
  }
  ++charged.count;
  all.push_back(charged);
  save(lock, all);
}

void forgive(const std::string& source) {
  const StateLock lock;
  auto all = load(seconds_now());
  std::erase_if(all, [&](const Failures& one) { return one.source == source; });
  save(lock, all);
}

}  // namespace gateway
