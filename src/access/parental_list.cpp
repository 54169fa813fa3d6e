#include "access/parental_list.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>

#include <zelto/access.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/names.h"
#include "api/text.h"

namespace zelto::parental {

const ListFile kList = {
    .path = "/etc/parental_list",
    .work_path = "/tmp/parental_list",
    .replacement = "mv /tmp/parental_list /etc/parental_list",
    .shortest = 9,
};

Rule parse(const std::string& record) {
  Rule rule;
  text::read_words(record, {&rule.alias, &rule.device, &rule.mac, &rule.time, &rule.days});
  return rule;
}

std::string print(const Rule& rule) {
  return rule.alias + " " + rule.device + " " + rule.mac + " " + rule.time + " " + rule.days;
}

std::optional<std::vector<Rule>> read_rules() {
  const auto records = list_file::read(kList);
  if (!records) return std::nullopt;
  std::vector<Rule> rules;
  for (const auto& record : *records) rules.push_back(parse(record));
  return rules;
}

namespace {

using list_file::ChangeLock;
using list_file::Outcome;

constexpr config::Option kSwitch = {"system", "route", "parental_switch"};
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestWord = 23;
constexpr std::size_t kLongestLine = 319;  // what readers take, the line end included
constexpr const char* kUnknownDevice = "unknow";

// Rewrites the list without the rules of some names, the others in their plain form, and with a new
// one, if there is one, at the end.
Outcome replace_rules(const ChangeLock& lock, const std::vector<std::string>& names,
                      const std::optional<Rule>& fresh) {
  const auto records = list_file::read(lock, kList);
  if (!records) {
    const bool is_missing = errno == ENOENT;
    log::error("fopen /etc/parental_list for del error!\n");
    return is_missing ? Outcome::kMissing : Outcome::kNotRead;
  }
  std::vector<std::string> lines;
  for (const auto& record : *records) {
    const auto rule = parse(record);
    if (std::find(names.begin(), names.end(), rule.alias) == names.end()) {
      lines.push_back(print(rule));
    }
  }
  if (fresh) lines.push_back(print(*fresh));
  if (list_file::prepare(lock, kList, lines) && list_file::replace(lock, kList)) {
    return Outcome::kDone;
  }
  log::error("fopen /tmp/parental_list for del error!\n");
  return Outcome::kNotWritten;
}

// ---- getparentalinfo

void add_rules(const Request& /*request*/, Reply& reply) {
  const auto state = config::read(kSwitch);
  reply.text("Switch", !state || *state == "0" ? "off" : "on");
  auto list = reply.list("list");
  for (const auto& rule : read_rules().value_or(std::vector<Rule>())) {
    auto entry = list.add();
    entry.text("alias", names::decode(rule.alias));
    entry.text("devname", rule.device);
    entry.text("mac", rule.mac);
    entry.text("accesstime", rule.time);
    entry.text("day", rule.days);
  }
}

// ---- setparentalinfo

// The rule that a request asks for; nothing when a word is missing or cannot be one. The device's
// name stands in the middle of the line, so its blanks become underscores.
std::optional<Rule> wanted_rule(const Request& request) {
  const auto word = [&](const char* member) {
    return std::string(request.text(member).value_or(""));
  };
  Rule rule = {names::encode(word("alias")), word("devname"), word("mac"), word("accesstime"),
               word("day")};
  std::replace(rule.device.begin(), rule.device.end(), ' ', '_');
  if (rule.device.empty()) rule.device = kUnknownDevice;
  const bool fits =
      list_file::is_rest(word("alias"), kLongestName) &&
      list_file::is_word(rule.alias, kLongestName) &&
      list_file::is_word(rule.device, kLongestName) && list_file::is_word(rule.mac, kLongestWord) &&
      list_file::is_word(rule.time, kLongestWord) && list_file::is_word(rule.days, kLongestWord) &&
      print(rule).size() < kLongestLine;
  return fits ? std::optional(rule) : std::nullopt;
}

int change_rules(const Request& request) {
  const auto action = request.text("cfg_type");
  if (!action) return kFailed;
  const bool adds = *action == "add";
  const auto rule = adds ? wanted_rule(request) : std::nullopt;
  if (adds && !rule) {
    log::refused("setparentalinfo");
    return kFailed;
  }
  std::vector<std::string> names;
  for (const char* member : {"alias", "alias_old"}) {
    names.push_back(names::encode(request.text(member).value_or("")));
  }
  const ChangeLock lock;
  auto outcome = Outcome::kDone;
  // The list is replaced once for each name; the first time does all there is to do.
  for (std::size_t i = 0; i < names.size(); ++i) {
    outcome = replace_rules(lock, names, rule);
    if (outcome == Outcome::kNotWritten) return kFailed;
  }
  if (!adds || outcome == Outcome::kDone) return kDone;
  if (outcome == Outcome::kNotRead) return kFailed;
  if (list_file::append(lock, kList, print(*rule)) == Outcome::kDone) return kDone;
  log::error("fopen /etc/parental_list for add error!\n");
  return kFailed;
}

void change_switch(const Request& request, Reply& reply) {
  const auto state = request.text("Switch");
  if (!state) return reply.result(kFailed);
  set_parental_state(state->data());
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto::parental

using namespace zelto;
using namespace zelto::parental;

int parental_name_exist(const char* alias) {
  if (alias == nullptr) return 0;
  return guarded(0, [&] {
    const auto rules = read_rules();
    if (!rules) {
      log::error("fopen /etc/parental_list error \n");
      return 0;
    }
    return std::any_of(rules->begin(), rules->end(),
                       [&](const Rule& rule) { return rule.alias == alias; })
               ? 1
               : 0;
  });
}

int parental_name_del(const char* alias) {
  if (alias == nullptr) return 0;
  return guarded(0, [&] {
    return replace_rules(ChangeLock(), {alias}, std::nullopt) == Outcome::kDone ? 1 : 0;
  });
}

int set_parental_state(const char* state) {
  return guarded(-1, [&] {
    const bool on = state != nullptr && std::string_view(state) == "on";
    return config::write(kSwitch, on ? "1" : "0") ? 0 : -1;
  });
}

int bs_GetParentalInfo(const char* request, char* out) {
  return answer({.type = "getparentalinfo", .unparsed_log = "json is NULL\n"}, request, out,
                add_rules);
}

int bs_SetParentalInfo(const char* request, char* out) {
  return answer({.type = "setparentalinfo"}, request, out,
                [](const Request& parsed, Reply& reply) { reply.result(change_rules(parsed)); });
}

int bs_SetParentalSwitch(const char* request, char* out) {
  return answer({.type = "setparentalswitch"}, request, out, change_switch);
}
