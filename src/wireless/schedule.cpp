// The list of times at which Wi-Fi is to be off. An agent of the firmware acts on it.

#include <string>

#include <zelto/wireless.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto::wireless {
namespace {

constexpr config::Option kSwitch = {"system", "route", "wifi_schedule"};
constexpr std::size_t kLongestWord = 23;

// A record is the period, a blank and the days.
constexpr ListFile kSchedule = {
    .path = "/etc/wifi_schedule_list",
    .work_path = "/tmp/wifi_schedule_list",
    .replacement =
        "rm -rf /etc/wifi_schedule_list;mv /tmp/wifi_schedule_list "
        "/etc/wifi_schedule_list",
    .shortest = 13,
};

constexpr const char* kNotRead = "fopen /etc/wifi_schedule_list for read error!\n";
constexpr const char* kNotAdded = "fopen /etc/wifi_schedule_list for add error!\n";
constexpr const char* kNotRewritten = "fopen /tmp/wifi_schedule_list for write error!\n";

void add_schedule(const Request& /*request*/, Reply& reply) {
  reply.text("Switch", config::read(kSwitch).value_or("0"));
  auto list = reply.list("list");
  for (const auto& record : list_file::read(kSchedule).value_or(std::vector<std::string>())) {
    const auto [period, week] = text::two_words(record);
    auto entry = list.add();
    entry.text("period", period.substr(0, kLongestWord));
    entry.text("week", week.substr(0, kLongestWord));
  }
}

int report(list_file::Outcome outcome, const char* not_written) {
  if (outcome == list_file::Outcome::kDone) return kDone;
  log::error(outcome == list_file::Outcome::kNotRead ? kNotRead : not_written);
  return kFailed;
}

// An entry that no reader of the list would find again is not added.
int add_entry(const std::string& period, const std::string& week, const std::string& record) {
  if (!list_file::is_word(period, kLongestWord) || !list_file::is_word(week, kLongestWord) ||
      record.size() + 1 < kSchedule.shortest) {
    log::refused("wifi_schedule_apply");
    return kFailed;
  }
  return report(list_file::add_once(list_file::ChangeLock(), kSchedule, record), kNotAdded);
}

void change_schedule(const Request& request, Reply& reply) {
  const auto action = request.text("action");
  const std::string period(request.text("period").value_or(""));
  const std::string week(request.text("week").value_or(""));
  const std::string record = period + " " + week;
  if (!action) return reply.result(kFailed);
  if (*action == "add") return reply.result(add_entry(period, week, record));
  const auto differs = [&](const std::string& other) { return other != record; };
  reply.result(
      report(list_file::rewrite(list_file::ChangeLock(), kSchedule, differs), kNotRewritten));
}

void change_switch(const Request& request, Reply& reply) {
  const auto state = request.text("Switch");
  if (!state) return reply.result(kFailed);
  if (!text::is_storable(*state, config::kLongestValue)) {
    log::refused("wifi_schedule_switch");
    return reply.result(kFailed);
  }
  config::write(kSwitch, *state);
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetWifiScheduleData(const char* request, char* out) {
  return answer({.type = "wifi_schedule", .unparsed_log = "json is NULL\n"}, request, out,
                add_schedule);
}

int bs_SetWifiScheduleData(const char* request, char* out) {
  return answer({.type = "wifi_schedule_apply"}, request, out, change_schedule);
}

int bs_SetWifiScheduleSwitch(const char* request, char* out) {
  return answer({.type = "wifi_schedule_switch"}, request, out, change_switch);
}
