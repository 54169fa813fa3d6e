// The firewall's sections of parental control: accept in a rule's window, reject a device that has
// rules otherwise.

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include <zelto/access.h>

#include "access/parental_list.h"
#include "api/boundary.h"
#include "api/config.h"
#include "api/files.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto::parental {
namespace {

constexpr int kAcceptSectionsSearched = 33;
constexpr std::size_t kLongestMac = 23;
constexpr std::size_t kLongestAlias = 255;
constexpr std::size_t kMacLine = 63;
constexpr const char* kSeenMacs = "/tmp/record_set_mac";

// The work file of an operation on the rejected devices.
struct RejectFile {
  const char* path;
  const char* not_read;
  const char* not_written;
};
constexpr RejectFile kAddition = {"/tmp/parental_reject_mac",
                                  "fopen /tmp/parental_reject_mac for read error!\n",
                                  "fopen /tmp/parental_reject_mac for write error!\n"};
constexpr RejectFile kRemoval = {"/tmp/parental_reject_mac_del",
                                 "fopen /tmp/parental_reject_mac_del for read error!\n",
                                 "fopen /tmp/parental_reject_mac_del for write error!\n"};

void add_section(const std::string& name, std::initializer_list<config::Value> values) {
  config::add_section("firewall", "rule", name.c_str());
  config::write_section("firewall", name, values);
}

std::string accept_name(int number) {
  return "parental_accept" + std::to_string(number);
}

std::string reject_name(int number) {
  return "parental_reject" + std::to_string(number);
}

// Names the days of a rule, Monday first. `follows` says that a day was named before, and a later
// day then begins with a blank: it is kept from rule to rule, so after the first rule a list of
// days that begins later than Monday begins with a blank. The firewall reads it all the same, and
// what compares sections relies on it.
std::string name_days(const std::string& days, bool& follows) {
  static constexpr std::array kNames = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
  std::string names;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (days.find(static_cast<char>('1' + i)) == std::string::npos) continue;
    if (follows && i > 0) names += ' ';
    names += kNames[i];
    follows = true;
  }
  return names;
}

void add_accept_section(int number, const Rule& rule, bool& follows) {
  const bool is_window = rule.time.find('-') != std::string::npos;
  const auto [start, stop] = text::split_first(rule.time, '-');
  add_section(accept_name(number), {{"src", "lan"},
                                    {"dest", "wan"},
                                    {"utc_time", "0"},
                                    {"target", "ACCEPT"},
                                    {"name", rule.alias},
                                    {"src_mac", rule.mac},
                                    {"start_time", is_window ? std::string(start) : ""},
                                    {"stop_time", std::string(stop)},
                                    {"weekdays", name_days(rule.days, follows)}});
}

void add_reject_section(int number, const std::string& mac) {
  add_section(reject_name(number),
              {{"src", "lan"}, {"src_mac", mac}, {"dest", "wan"}, {"target", "REJECT"}});
}

// The device of a reject section; nothing behind the last one.
std::optional<std::string> rejected_mac(int number) {
  const auto name = reject_name(number);
  return config::read({"firewall", name.c_str(), "src_mac"}, kLongestMac);
}

std::optional<std::vector<Rule>> read_rules_or_log() {
  auto rules = read_rules();
  if (!rules) log::error("fopen /etc/parental_list for read error!\n");
  return rules;
}

std::optional<std::vector<std::string>> read_macs(const char* path) {
  const auto file = files::open(path);
  if (!file) return std::nullopt;
  std::vector<std::string> macs;
  while (const auto line = files::read_line(file.get(), kMacLine)) {
    macs.emplace_back(text::without_line_end(*line));
  }
  return macs;
}

// Makes the reject sections of a work file's devices, numbered from 0, and removes the file.
void build_reject_sections(const char* path, const char* not_read) {
  const auto macs = read_macs(path);
  if (!macs) return log::error(not_read);
  int number = 0;
  for (const auto& mac : *macs) add_reject_section(number++, mac);
  files::remove(path);
}

// Writes the rejected devices, as `change` makes them, to a work file and takes their sections
// away. The file comes first: what it could not hold must not be lost.
void unbuild_reject_sections(const RejectFile& work,
                             const std::function<void(std::vector<std::string>&)>& change) {
  std::vector<std::string> macs;
  while (const auto mac = rejected_mac(static_cast<int>(macs.size()))) macs.push_back(*mac);
  const int sections = static_cast<int>(macs.size());
  change(macs);
  std::string lines;
  for (const auto& mac : macs) lines.append(mac).append("\n");
  if (!files::write_all(work.path, lines)) {
    files::remove(work.path);  // or the next half would make sections of what is there
    return log::error(work.not_written);
  }
  for (int number = 0; number < sections; ++number) {
    config::remove_section("firewall", reject_name(number));
  }
}

void switch_on() {
  const auto rules = read_rules_or_log();
  if (!rules) return;
  int number = 0;
  bool follows = false;
  for (const auto& rule : *rules) {
    if (find_set_mac(rule.mac.c_str()) == 0) record_set_mac(rule.mac.c_str());
    add_accept_section(number++, rule, follows);
  }
  set_parental_reject_list_on();
}

void switch_off() {
  const auto rules = read_rules_or_log();
  if (!rules) return;
  for (const auto& rule : *rules) del_parental_accept_mac(rule.alias.c_str());
  for (int number = 0; rejected_mac(number); ++number) {
    config::remove_section("firewall", reject_name(number));
  }
}

// For functions without a result.
template <typename Work>
void run_guarded(const Work& work) {
  guarded(0, [&] {
    work();
    return 0;
  });
}

}  // namespace
}  // namespace zelto::parental

using namespace zelto;
using namespace zelto::parental;

void parental_switch_on() {
  run_guarded(switch_on);
}

void parental_switch_off() {
  run_guarded(switch_off);
}

int get_new_parental_accept_id() {
  return guarded(-1, [] {
    int number = 0;
    while (config::section_exists("firewall", accept_name(number))) ++number;
    return number;
  });
}

void del_parental_accept_mac(const char* alias) {
  if (alias == nullptr) return;
  run_guarded([&] {
    for (int number = 0; number < kAcceptSectionsSearched; ++number) {
      const auto name = accept_name(number);
      if (config::read({"firewall", name.c_str(), "name"}, kLongestAlias) != alias) continue;
      config::remove_section("firewall", name);
      return;
    }
  });
}

void handle_parental_reject_mac(const char* mac) {
  if (mac == nullptr) return;
  run_guarded([&] {
    unbuild_reject_sections(kAddition, [&](std::vector<std::string>& macs) {
      if (std::find(macs.begin(), macs.end(), mac) == macs.end()) macs.emplace_back(mac);
    });
  });
}

void set_parental_reject_list() {
  run_guarded([] { build_reject_sections(kAddition.path, kAddition.not_read); });
}

void del_parental_reject_mac(const char* mac) {
  if (mac == nullptr) return;
  run_guarded([&] {
    unbuild_reject_sections(kRemoval, [&](std::vector<std::string>& macs) {
      const auto found = std::find(macs.begin(), macs.end(), mac);
      if (found != macs.end()) macs.erase(found);
    });
  });
}

void set_parental_reject_list_del() {
  run_guarded([] { build_reject_sections(kRemoval.path, kRemoval.not_read); });
}

void deal_with_parental_reject_mac(const char* mac) {
  if (mac == nullptr) return;
  run_guarded([&] {
    const auto rules = read_rules_or_log();
    if (!rules) return;
    for (const auto& rule : *rules) {
      if (rule.mac == mac) return;
    }
    del_parental_reject_mac(mac);
    set_parental_reject_list_del();
  });
}

void record_set_mac(const char* mac) {
  if (mac == nullptr) return;
  run_guarded([&] { files::write_all(kSeenMacs, std::string(mac) + "\n", "ae"); });
}

int find_set_mac(const char* mac) {
  if (mac == nullptr) return 0;
  return guarded(0, [&] {
    for (const auto& seen : read_macs(kSeenMacs).value_or(std::vector<std::string>())) {
      if (seen.find(mac) != std::string::npos) return 1;
    }
    return 0;
  });
}

void set_parental_reject_list_on() {
  run_guarded(
      [] { build_reject_sections(kSeenMacs, "fopen /tmp/record_set_mac for read error!\n"); });
}
