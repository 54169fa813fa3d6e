// Port forwarding rules, kept twice: as lines of a list, which pages read back, and as sections of
// the firewall, which applies them.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <zelto/network.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/names.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

using list_file::ChangeLock;
using list_file::Outcome;

constexpr ListFile kRules = {
    .path = "/etc/port_forward_list",
    .work_path = "/tmp/port_forward_list",
    .replacement = "mv /tmp/port_forward_list /etc/port_forward_list",
    .shortest = 9,
    .rewrites_whole = true,
};
constexpr std::size_t kLongestLine = 319;  // what readers take, the line end included
constexpr std::size_t kLongestPort = 47;
constexpr std::size_t kLongestProtocol = 23;
constexpr std::size_t kLongestName = 255;
constexpr int kSectionsSearched = 65;
constexpr const char* kEveryHost = "all";

struct Mapping {
  std::string lan_port;
  std::string wan_port;
  std::string protocol;
};

struct Rule {
  std::string name;  // base64
  std::string address;
  std::vector<Mapping> mappings;
};

std::string section_name(int number) {
  return "redirect" + std::to_string(number);
}

// ---- the list

std::string name_of(const std::string& record) {
  return text::two_words(text::split_first(record, ';').first).first;
}

Rule parse(const std::string& record) {
  auto [head, rest] = text::split_first(record, ';');
  Rule rule;
  std::tie(rule.name, rule.address) = text::two_words(head);
  while (!rest.empty()) {
    const auto [mapping, others] = text::split_first(rest, ';');
    const auto [lan_port, behind] = text::first_word(mapping);
    const auto [wan_port, protocol] = text::two_words(behind);
    rest = others;
    if (mapping.empty()) continue;  // runs of separators count as one
    rule.mappings.push_back({std::string(lan_port), wan_port, protocol});
  }
  return rule;
}

std::string print(const Rule& rule) {
  std::string line = rule.name + " " + rule.address;
  for (const auto& mapping : rule.mappings) {
    line += ";" + mapping.lan_port + " " + mapping.wan_port + " " + mapping.protocol;
  }
  return line;
}

// Takes the lines of some names away and puts a new one, if there is one, at the end.
Outcome replace_lines(const ChangeLock& lock, const std::vector<std::string>& names,
                      const std::optional<std::string>& fresh) {
  const auto is_of_other = [&](const std::string& record) {
    return std::find(names.begin(), names.end(), name_of(record)) == names.end();
  };
  const auto outcome = list_file::rewrite(lock, kRules, is_of_other, fresh);
  if (outcome == Outcome::kNotWritten) {
    log::error("fopen /tmp/port_forward_list for del error!\n");
  } else if (outcome != Outcome::kDone) {
    log::error("fopen /etc/port_forward_list for del error!\n");
  }
  return outcome;
}

// ---- the sections

std::optional<std::string> name_of_section(int number) {
  const auto section = section_name(number);
  return config::read({"firewall", section.c_str(), "name"}, kLongestName);
}

void remove_sections(const std::string& name) {
  for (int number = 0; number < kSectionsSearched; ++number) {
    if (name_of_section(number) == name) {
      config::remove_section("firewall", section_name(number));
    }
  }
}

const char* firewall_protocol(const std::string& protocol) {
  if (protocol == "TCP") return "tcp";
  return protocol == "UDP" ? "udp" : "tcp udp";
}

void add_section(int number, const Rule& rule, const Mapping& mapping) {
  const auto section = section_name(number);
  config::add_section("firewall", "redirect", section.c_str());
  config::write_section("firewall", section,
                        {{"target", "DNAT"},
                         {"src", "wan"},
                         {"dest", "lan"},
                         {"src_dport", mapping.wan_port},
                         {"dest_port", mapping.lan_port},
                         {"name", rule.name},
                         {"proto", firewall_protocol(mapping.protocol)}});
  if (rule.address != kEveryHost) {
    config::write({"firewall", section.c_str(), "dest_ip"}, rule.address);
  }
}

int first_free_section(int from) {
  while (config::section_exists("firewall", section_name(from))) ++from;
  return from;
}

// Each takes the lowest free number; the search goes on where it stopped, as all below are taken.
void add_sections(const Rule& rule) {
  int number = 0;
  for (const auto& mapping : rule.mappings) {
    number = first_free_section(number);
    add_section(number, rule, mapping);
  }
}

// ---- getforwarding

void add_rules(const Request& /*request*/, Reply& reply) {
  auto list = reply.list("list");
  for (const auto& record : list_file::read(kRules).value_or(std::vector<std::string>())) {
    const auto rule = parse(record);
    auto entry = list.add();
    entry.text("name", names::decode(rule.name));
    entry.text("ip", rule.address);
    auto mappings = entry.list("sublist");
    for (const auto& mapping : rule.mappings) {
      auto object = mappings.add();
      object.text("lanport", mapping.lan_port);
      object.text("wanport", mapping.wan_port);
      object.text("protocol", mapping.protocol);
    }
  }
}

// ---- setforwarding

// A word that separates nothing in a line of the list.
bool is_plain_word(std::string_view word, std::size_t longest) {
  return list_file::is_word(word, longest) && word.find(';') == std::string_view::npos;
}

// WAN port, comma, LAN port, comma, protocol word; nothing for any other text.
std::optional<Mapping> parse_mapping(std::string_view text) {
  const auto [wan_port, behind] = text::split_first(text, ',');
  const auto [lan_port, protocol] = text::split_first(behind, ',');
  const auto is_port = [](std::string_view port) {
    return is_plain_word(port, kLongestPort) && port.find('\'') == std::string_view::npos;
  };
  if (!is_port(wan_port) || !is_port(lan_port) || !is_plain_word(protocol, kLongestProtocol)) {
    return std::nullopt;
  }
  return Mapping{std::string(lan_port), std::string(wan_port), std::string(protocol)};
}

// The rule that a request asks for; nothing when it cannot be kept.
std::optional<Rule> wanted_rule(const Request& request) {
  const auto name = request.text("name").value_or("");
  Rule rule = {names::encode(name), std::string(request.text("ip").value_or("")), {}};
  if (!list_file::is_rest(name, kLongestName) || !list_file::is_word(rule.name, kLongestName) ||
      !is_plain_word(rule.address, kLongestLine)) {
    return std::nullopt;
  }
  for (int i = 0;; ++i) {
    const auto text = request.text(("list" + std::to_string(i)).c_str());
    if (!text) break;
    const auto mapping = parse_mapping(*text);
    if (!mapping) return std::nullopt;
    rule.mappings.push_back(*mapping);
  }
  const auto line = print(rule).size() + 1;
  return line >= kRules.shortest && line <= kLongestLine ? std::optional(rule) : std::nullopt;
}

// The names under which copies of a rule may be kept. A missing one names nothing.
std::vector<std::string> names_to_remove(const Request& request) {
  std::vector<std::string> encoded;
  for (const char* member : {"name", "name_old"}) {
    const auto name = request.text(member).value_or("");
    if (!name.empty()) encoded.push_back(names::encode(name));
  }
  return encoded;
}

void change_rules(const Request& request, Reply& reply) {
  const bool adds = request.text_or_integer("enable") == "1";
  const auto rule = adds ? wanted_rule(request) : std::nullopt;
  if (adds && !rule) {
    log::refused("setforwarding");
    return reply.result(kFailed);
  }
  const auto names = names_to_remove(request);
  const auto line = adds ? std::optional(print(*rule)) : std::nullopt;
  const ChangeLock lock;
  auto outcome = Outcome::kDone;
  // The list is replaced once for each name; the first time does all there is to do.
  for (std::size_t i = 0; i < names.size(); ++i) {
    outcome = replace_lines(lock, names, line);
    if (outcome == Outcome::kNotWritten) return reply.result(kFailed);
  }
  for (const auto& name : names) remove_sections(name);
  if (adds) {
    if (outcome == Outcome::kMissing) outcome = list_file::append(lock, kRules, *line);
    if (outcome != Outcome::kDone) {
      log::error("fopen /etc/port_forward_list for add error!\n");
      return reply.result(kFailed);
    }
    add_sections(*rule);
  }
  shell::start("/etc/init.d/firewall restart &");
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int forward_name_exist(const char* name) {
  if (name == nullptr) return 0;
  return guarded(0, [&] {
    const auto records = list_file::read(kRules);
    if (!records) {
      log::error("fopen /etc/port_forward_list error \n");
      return 0;
    }
    return std::any_of(records->begin(), records->end(),
                       [&](const std::string& record) { return name_of(record) == name; })
               ? 1
               : 0;
  });
}

int forward_name_del(const char* name) {
  if (name == nullptr) return 0;
  return guarded(0, [&] {
    return replace_lines(ChangeLock(), {name}, std::nullopt) == Outcome::kDone ? 1 : 0;
  });
}

int get_new_redirect_id() {
  return guarded(-1, [] { return first_free_section(0); });
}

int get_exist_redirect_id(const char* name) {
  if (name == nullptr) return -1;
  return guarded(-1, [&] {
    for (int number = 0; number < kSectionsSearched; ++number) {
      if (name_of_section(number) == name) return number;
    }
    return -1;
  });
}

int bs_GetForwardingInfo(const char* request, char* out) {
  return answer({.type = "getforwarding", .unparsed_log = "json is NULL\n"}, request, out,
                add_rules);
}

int bs_SetForwardingInfo(const char* request, char* out) {
  return answer({.type = "setforwarding"}, request, out, change_rules);
}
