#include "access/parental_list.h"

#include <algorithm>
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

constexpr config::Option kSwitch = {"system", "route", "parental_switch"};
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestWord = 23;
constexpr std::size_t kLongestLine = 319;  // what readers take, the line end included
constexpr const char* kUnknownDevice = "unknow";

// Rewrites the list without the rules of a name, the others in their plain form.
list_file::Outcome remove_rules(const list_file::ChangeLock& lock, const std::string& alias) {
  const auto rules = read_rules();
  if (!rules) {
    log::error("fopen /etc/parental_list for del error!\n");
    return list_file::Outcome::kNotRead;
  }
  std::vector<std::string> kept;
  for (const auto& rule : *rules) {
    if (rule.alias != alias) kept.push_back(print(rule));
  }
  if (list_file::prepare(lock, kList, kept) && list_file::replace(kList)) {
    return list_file::Outcome::kDone;
  }
  log::error("fopen /tmp/parental_list for del error!\n");
  return list_file::Outcome::kNotWritten;
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
  const list_file::ChangeLock lock;
  for (const char* member : {"alias", "alias_old"}) {
    // A rule that stays must not get another beside it.
    const auto outcome = remove_rules(lock, names::encode(request.text(member).value_or("")));
    if (outcome == list_file::Outcome::kNotWritten) return kFailed;
  }
  if (!adds) return kDone;
  if (list_file::append(lock, kList, print(*rule)) == list_file::Outcome::kDone) return kDone;
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
    const auto outcome = remove_rules(list_file::ChangeLock(), alias);
    return outcome == list_file::Outcome::kDone ? 1 : 0;
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
