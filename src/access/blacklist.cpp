// Devices that are cut off from the router and the Internet, by MAC address.

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <zelto/access.h>

#include "api/boundary.h"
#include "api/envelope.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

using list_file::ChangeLock;
using list_file::Outcome;

constexpr ListFile kBlacklist = {
    .path = "/etc/blacklist",
    .work_path = "/tmp/blacklist",
    .replacement = "mv /tmp/blacklist /etc/blacklist",
    .shortest = 17,
    .rewrites_whole = true,
};
// The user's own lines stand in the script beside ours, and must come through a rewrite unharmed.
constexpr ListFile kFirewallScript = {
    .path = "/etc/firewall.user",
    .work_path = "/tmp/firewall.user",
    .replacement = "mv /tmp/firewall.user /etc/firewall.user",
    .shortest = 0,
    .rewrites_whole = true,
};
constexpr std::size_t kLongestMac = 23;
constexpr std::size_t kLongestLine = 127;  // what readers take, the line end included
constexpr int kMostEntries = 32;
constexpr const char* kComment = "blacklist";
constexpr const char* kUnknownDevice = "unknow";

constexpr int kAlreadyThere = 2;
constexpr int kFull = 3;

// The two rules that cut a device off: from the Internet and from the router.
std::array<std::string, 2> rules(const char* action, const std::string& mac) {
  const auto rule = [&](const char* chain) {
    return std::string("iptables -t filter ") + action + " " + chain + " -m mac --mac-source " +
           shell::word(mac) + " -m comment --comment " + kComment + " -j DROP";
  };
  return {rule("FORWARD"), rule("INPUT")};
}

void run_rules(const char* action, const std::string& mac) {
  for (const auto& rule : rules(action, mac)) shell::run(rule);
}

bool contains(const std::string& line, const std::string& text) {
  return line.find(text) != std::string::npos;
}

using Entries = std::optional<std::vector<std::string>>;

// 1 or 0; -1 when the list could not be read.
int find(const Entries& entries, const std::string& mac) {
  if (!entries) {
    log::error("fopen /etc/blacklist failed!\n");
    return -1;
  }
  const bool found = std::any_of(entries->begin(), entries->end(),
                                 [&](const auto& entry) { return contains(entry, mac); });
  return found ? 1 : 0;
}

int count(const Entries& entries) {
  if (!entries) log::error("fopen /etc/blacklist failed!\n");
  return entries ? static_cast<int>(entries->size()) : 0;
}

// ---- getblacklist

void add_entries(const Request& /*request*/, Reply& reply) {
  auto list = reply.list("list");
  for (const auto& record : list_file::read(kBlacklist).value_or(std::vector<std::string>())) {
    const auto [mac, name] = text::two_words(record);
    auto entry = list.add();
    entry.text("mac", mac);
    entry.text("name", name);
  }
}

// ---- setmacblack

// Both rules at once: one of them alone would be half a block.
bool append_rules(const ChangeLock& lock, const std::string& mac) {
  const auto [internet, router] = rules("-I", mac);
  return list_file::append(lock, kFirewallScript, internet + "\n" + router) == Outcome::kDone;
}

// A line that readers would skip or could not read whole.
bool is_unreadable(const std::string& entry) {
  return entry.size() + 1 < kBlacklist.shortest || entry.size() + 1 > kLongestLine;
}

int refuse() {
  log::refused("setmacblack");
  return kFailed;
}

int block(const std::string& mac, const std::string& name) {
  const auto entry = mac + " " + name;
  const ChangeLock lock;
  if (find(list_file::read(lock, kBlacklist), mac) == 1) return kAlreadyThere;
  if (is_unreadable(entry)) return refuse();
  if (count(list_file::read(lock, kBlacklist)) >= kMostEntries) return kFull;
  if (list_file::append(lock, kBlacklist, entry) != Outcome::kDone) {
    log::error("fopen /etc/blacklist for add error!\n");
    return kFailed;
  }
  if (!append_rules(lock, mac)) {
    log::error("fopen /etc/firewall.user for add error!\n");
    return kFailed;
  }
  run_rules("-I", mac);
  return kDone;
}

// Leaves the lines of a device out of a list.
bool remove_lines(const ListFile& list, const char* name,
                  const std::function<bool(const std::string&)>& is_of_device) {
  const auto outcome = list_file::rewrite(
      ChangeLock(), list, [&](const std::string& line) { return !is_of_device(line); });
  if (outcome == Outcome::kNotWritten) {
    log::error(text::format("fopen /tmp/%s for del error!\n", name));
  } else if (outcome != Outcome::kDone) {
    log::error(text::format("fopen /etc/%s for del error!\n", name));
  }
  return outcome == Outcome::kDone;
}

int unblock(const std::string& mac) {
  del_mac_from_blacklist(mac.c_str());
  del_mac_from_firewall(mac.c_str());
  run_rules("-D", mac);
  return kDone;
}

int change(const Request& request) {
  const std::string mac(request.text("mac").value_or(""));
  std::string name(request.text("devname").value_or(""));
  if (name.empty()) name = kUnknownDevice;
  const auto enable = request.text_or_integer("enable");
  if (mac.empty() || !enable) return kFailed;
  const bool blocks = *enable == "1";
  // The script runs as root at every start of the firewall: only one printable word gets near it.
  if (!list_file::is_word(mac, kLongestMac) ||
      (blocks && !list_file::is_rest(name, kLongestLine))) {
    return refuse();
  }
  return blocks ? block(mac, name) : unblock(mac);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int find_mac_from_blacklist(const char* mac) {
  if (mac == nullptr) return 0;
  return guarded(-1, [&] { return find(list_file::read(kBlacklist), mac); });
}

int get_blacklist_num() {
  return guarded(0, [] { return count(list_file::read(kBlacklist)); });
}

int del_mac_from_blacklist(const char* mac) {
  if (mac == nullptr || *mac == '\0') return 0;
  return guarded(0, [&] {
    return remove_lines(kBlacklist, "blacklist",
                        [&](const std::string& line) { return contains(line, mac); })
               ? 1
               : 0;
  });
}

int del_mac_from_firewall(const char* mac) {
  if (mac == nullptr || *mac == '\0') return 0;
  return guarded(0, [&] {
    const auto quoted = shell::word(mac);
    const auto is_of_device = [&](const std::string& line) {
      return contains(line, kComment) && (contains(line, mac) || contains(line, quoted));
    };
    return remove_lines(kFirewallScript, "firewall.user", is_of_device) ? 1 : 0;
  });
}

int bs_GetBlackList(const char* request, char* out) {
  return answer({.type = "getblacklist", .unparsed_log = "json is NULL\n"}, request, out,
                add_entries);
}

int bs_SetMacBlack(const char* request, char* out) {
  return answer({.type = "setmacblack"}, request, out,
                [](const Request& parsed, Reply& reply) { reply.result(change(parsed)); });
}
