// Limits on the speed of single devices.

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include <zelto/services.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

using list_file::ChangeLock;

constexpr ListFile kLimits = {
    .path = "/etc/qos_limit_list",
    .work_path = "/tmp/qos_limit_list",
    .replacement = "rm -rf /etc/qos_limit_list;mv /tmp/qos_limit_list /etc/qos_limit_list",
    .shortest = 31,
};
constexpr config::Option kLastMark = {"system", "route", "qos_mark"};
constexpr const char* kHandOver = "/tmp/edit_rule_file";
constexpr const char* kNoHandOver = "fopen /tmp/edit_rule_file failed!\n";
constexpr std::size_t kLongestLine = 127;
constexpr std::size_t kLongestWord = 39;

struct Limit {
  std::string mac;
  std::string ip;
  std::string up;
  std::string down;
  std::string mark;
};

Limit parse(const std::string& record) {
  Limit limit;
  text::read_words(record, {&limit.mac, &limit.ip, &limit.up, &limit.down, &limit.mark});
  return limit;
}

std::string print(const Limit& limit) {
  const auto number = [](const std::string& text) { return std::to_string(text::to_int(text)); };
  return limit.mac + " " + limit.ip + " " + number(limit.up) + " " + number(limit.down) + " " +
         number(limit.mark);
}

// ---- getqos

void add_limit(const Limit& limit, Object& object) {
  object.text("MAC", limit.mac);
  object.text("Up_Speed", limit.up);
  object.text("Dl_Speed", limit.down);
}

void add_limits(const Request& request, Reply& reply) {
  const auto mac = request.text("MAC");
  if (!mac) return reply.result(kFailed);
  const auto records = list_file::read_whole(kLimits);
  if (!records) {
    log::error("fopen /etc/qos_limit_list failed!\n");
    return reply.result(kFailed);
  }
  if (*mac == "ALL") {
    auto list = reply.list("list");
    for (const auto& record : *records) {
      auto entry = list.add();
      add_limit(parse(record), entry);
    }
    return;
  }
  for (const auto& record : *records) {
    const auto limit = parse(record);
    if (limit.mac == *mac) return add_limit(limit, reply);
  }
  reply.text("MAC", *mac);
}

// ---- setqos

// One call of the firmware's script, which finds its rule in the hand-over file.
struct RuleEdit {
  const char* action;
  std::string rule;
};

bool run_edit(const RuleEdit& edit) {
  if (!files::write_all(kHandOver, edit.rule + "\n")) {
    log::error(kNoHandOver);
    return false;
  }
  shell::run(std::string("/sbin/qos_rule_edit.sh ") + edit.action);
  return true;
}

// The list as it is to be, and what the firmware is to be told.
struct Plan {
  std::vector<std::string> records;
  std::vector<RuleEdit> edits;
};

// Every device has a mark of its own; marks are never used again.
std::string take_mark() {
  const auto last = text::to_int(config::read_or_empty(kLastMark));
  auto mark = text::format("%lld", last + 1LL);
  config::write(kLastMark, mark);
  return mark;
}

// Up to the device's record others are written in their plain form, behind it as they are.
Plan plan_change(const std::vector<std::string>& records, Limit wanted) {
  const int up = text::to_int(wanted.up);
  const int down = text::to_int(wanted.down);
  Plan plan;
  bool found = false;
  for (const auto& record : records) {
    const auto limit = parse(record);
    if (found || limit.mac != wanted.mac) {
      plan.records.push_back(found ? record : print(limit));
      continue;
    }
    found = true;
    plan.edits.push_back({"del", print(limit)});
    if (up == 0 || down == 0) continue;
    wanted.mark = limit.mark;
    plan.records.push_back(print(wanted));
    plan.edits.push_back({"add", print(wanted)});
  }
  if (!found && up > 0 && down > 0) {
    wanted.mark = take_mark();
    plan.records.push_back(print(wanted));
    plan.edits.push_back({"add", print(wanted)});
  }
  return plan;
}

int apply(const ChangeLock& lock, const Plan& plan) {
  if (!list_file::prepare(lock, kLimits, plan.records)) {
    log::error("fopen /tmp/qos_limit_list failed!\n");
    return kFailed;
  }
  if (!std::all_of(plan.edits.begin(), plan.edits.end(), run_edit)) {
    files::remove(kLimits.work_path);
    return kFailed;
  }
  return list_file::replace(lock, kLimits) ? kDone : kFailed;
}

bool is_acceptable(const Limit& limit) {
  const auto line = print(limit).size() + 1;
  return list_file::is_word(limit.mac, kLongestWord) &&
         list_file::is_word(limit.ip, kLongestWord) && line >= kLimits.shortest &&
         line <= kLongestLine;
}

int change(const Request& request) {
  const auto text = [&](const char* member) {
    return std::string(request.text(member).value_or(""));
  };
  if (!request.text("MAC") || !request.text("Up_Speed") || !request.text("Dl_Speed")) {
    return kFailed;
  }
  const Limit wanted = {text("MAC"), text("IP"), text("Up_Speed"), text("Dl_Speed"), "0"};
  const bool limits = text::to_int(wanted.up) != 0 && text::to_int(wanted.down) != 0;
  if (limits && !is_acceptable(wanted)) {
    log::refused("setqos");
    return kFailed;
  }
  const ChangeLock lock;
  const auto records = list_file::read_whole(lock, kLimits);
  if (!records) {
    log::error("fopen /etc/qos_limit_list failed!\n");
    return kFailed;
  }
  // Before a mark is taken or the script runs.
  if (!files::write_all(kHandOver, "")) {
    log::error(kNoHandOver);
    return kFailed;
  }
  return apply(lock, plan_change(*records, wanted));
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetQosInfo(const char* request, char* out) {
  return answer({.type = "getqos"}, request, out, add_limits);
}

int bs_SetQosInfo(const char* request, char* out) {
  return answer({.type = "setqos"}, request, out,
                [](const Request& parsed, Reply& reply) { reply.result(change(parsed)); });
}
