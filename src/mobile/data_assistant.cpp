// The monthly data allowance, and the traffic that the modem daemon counts.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include <zelto/mobile.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto::mobile {
namespace {

constexpr config::Option option(const char* name) {
  return {"mobile", "action", name};
}

constexpr config::Option kSwitch = option("flowswitch");
// What is set is not what is shown: the daemon's firmware knows both.
constexpr config::Option kShownAllowance = option("monthlypackage");
constexpr config::Option kStoredAllowance = option("MonthlyPackage");

constexpr std::size_t kLongestValue = 63;
constexpr std::size_t kLongestAllowance = 31;

std::int64_t bytes(const char* counter) {
  return text::to_int64(config::read_or_empty(option(counter), kLongestValue));
}

std::string sum(const char* month, const char* current) {
  using Limits = std::numeric_limits<std::int64_t>;
  const auto counted = bytes(month);
  std::int64_t total = 0;
  if (__builtin_add_overflow(counted, bytes(current), &total)) {
    total = counted < 0 ? Limits::min() : Limits::max();
  }
  return text::format("%lld", static_cast<long long>(total));
}

void add_traffic(const Request& /*request*/, Reply& reply) {
  reply.number("Switch", config::read_or_empty(kSwitch, kLongestValue).starts_with('1') ? 1 : 0);
  const auto allowance = config::read_or_empty(kShownAllowance, kLongestAllowance);
  reply.text("MonthlyPackage", allowance.empty() ? "0" : allowance);
  reply.text("MonUp", sum("monup", "curup"));
  reply.text("MonDown", sum("mondown", "curdown"));
}

void store_allowance(const Request& request, Reply& reply) {
  const auto state = request.text("Switch").value_or("");
  const auto allowance = request.text("MonthlyPackage").value_or("");
  if (!text::is_storable(state, kLongestValue) || !text::is_storable(allowance, kLongestValue)) {
    log::refused("set4gflowassistant");
    return reply.result(kFailed);
  }
  config::write(kSwitch, state);
  config::write(kStoredAllowance, allowance);
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto::mobile

using namespace zelto;
using namespace zelto::mobile;

int bs_get_4gflowassistant(const char* request, char* out) {
  return answer({.type = "get4gflowassistant"}, request, out, add_traffic);
}

int bs_set_4gflowassistant(const char* request, char* out) {
  return answer({.type = "set4gflowassistant"}, request, out, store_allowance);
}
