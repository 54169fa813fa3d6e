// Friendly names of devices. The service that lists the devices reads them.

#include <cstddef>
#include <optional>
#include <string>

#include <zelto/access.h>

#include "api/boundary.h"
#include "api/envelope.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto {
namespace {

using list_file::ChangeLock;
using list_file::Outcome;

constexpr ListFile kAliases = {
    .path = "/etc/mac_alias_list",
    .work_path = "/tmp/mac_alias_list",
    .replacement = "mv /tmp/mac_alias_list /etc/mac_alias_list",
    .shortest = 17,
    .rewrites_whole = true,
};
constexpr std::size_t kLongestMac = 23;
constexpr std::size_t kLongestLine = 319;  // what readers take, the line end included

// Takes the device's old record away and puts the new one, if there is one, at the end.
Outcome replace_alias(const ChangeLock& lock, const std::string& mac,
                      const std::optional<std::string>& fresh) {
  const auto is_of_other = [&](const std::string& record) {
    return text::two_words(record).first != mac;
  };
  const auto outcome = list_file::rewrite(lock, kAliases, is_of_other, fresh);
  if (outcome == Outcome::kNotWritten) {
    log::error("fopen /tmp/mac_alias_list for del error!\n");
  } else if (outcome != Outcome::kDone) {
    log::error("fopen /etc/mac_alias_list for del error!\n");
  }
  return outcome;
}

int change(const Request& request) {
  const auto mac = request.text("mac");
  const auto alias = request.text("alias");
  if (!mac || !alias) return kFailed;
  const auto record = std::string(*mac) + " " + std::string(*alias);
  if (!list_file::is_word(*mac, kLongestMac) || !list_file::is_rest(*alias, kLongestLine) ||
      record.size() + 1 < kAliases.shortest || record.size() + 1 > kLongestLine) {
    log::refused("setalias");
    return kFailed;
  }
  const ChangeLock lock;
  const auto outcome = replace_alias(lock, std::string(*mac), record);
  if (outcome != Outcome::kMissing) return outcome == Outcome::kDone ? kDone : kFailed;
  if (list_file::append(lock, kAliases, record) == Outcome::kDone) return kDone;
  log::error("fopen /etc/mac_alias_list for add error!\n");
  return kFailed;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int alias_name_del(const char* mac) {
  if (mac == nullptr) return 0;
  return guarded(
      0, [&] { return replace_alias(ChangeLock(), mac, std::nullopt) == Outcome::kDone ? 1 : 0; });
}

int bs_SetAlias(const char* request, char* out) {
  return answer({.type = "setalias"}, request, out,
                [](const Request& parsed, Reply& reply) { reply.result(change(parsed)); });
}
