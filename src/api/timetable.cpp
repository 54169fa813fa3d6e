#include "api/timetable.h"

#include <string>
#include <vector>

#include "api/log.h"
#include "api/text.h"

namespace zelto::timetable {
namespace {

constexpr const char* kDays = "week";

int report(list_file::Outcome outcome, const char* path, const char* purpose) {
  if (outcome == list_file::Outcome::kDone) return kDone;
  log::error(text::format("fopen %s for %s error!\n", path, purpose));
  return kFailed;
}

int report_read(const Timetable& table) {
  return report(list_file::Outcome::kNotRead, table.file.path, "read");
}

// An entry that no reader of the list would find again is not added.
bool is_acceptable(const Timetable& table, const std::string& time, const std::string& days) {
  return list_file::is_word(time, table.longest_word) &&
         list_file::is_word(days, table.longest_word) &&
         time.size() + days.size() + 2 >= table.file.shortest;
}

int add(const Timetable& table, const std::string& record) {
  const auto outcome = list_file::add_once(list_file::ChangeLock(), table.file, record);
  if (outcome == list_file::Outcome::kNotRead) return report_read(table);
  return report(outcome, table.file.path, "add");
}

int remove(const Timetable& table, const std::string& record) {
  const auto outcome = list_file::rewrite(list_file::ChangeLock(), table.file,
                                          [&](const auto& other) { return other != record; });
  if (outcome == list_file::Outcome::kNotWritten) {
    return report(outcome, table.file.work_path, "write");
  }
  return outcome == list_file::Outcome::kDone ? kDone : report_read(table);
}

}  // namespace

void show(const Timetable& table, Reply& reply) {
  reply.text("Switch", config::read(table.state).value_or("0"));
  auto list = reply.list("list");
  for (const auto& record : list_file::read(table.file).value_or(std::vector<std::string>())) {
    const auto [time, days] = text::two_words(record);
    auto entry = list.add();
    entry.text(table.time, time.substr(0, table.longest_word));
    entry.text(kDays, days.substr(0, table.longest_word));
  }
}

void change(const Timetable& table, const char* command, const Request& request, Reply& reply) {
  const auto action = request.text("action");
  const std::string time(request.text(table.time).value_or(""));
  const std::string days(request.text(kDays).value_or(""));
  if (!action) return reply.result(kFailed);
  if (*action != "add") return reply.result(remove(table, time + " " + days));
  if (!is_acceptable(table, time, days)) {
    log::refused(command);
    return reply.result(kFailed);
  }
  reply.result(add(table, time + " " + days));
}

void change_switch(const Timetable& table, const char* command, const Request& request,
                   Reply& reply) {
  const auto state = request.text("Switch");
  if (!state) return reply.result(kFailed);
  if (!text::is_storable(*state, config::kLongestValue)) {
    log::refused(command);
    return reply.result(kFailed);
  }
  config::write(table.state, *state);
  reply.result(kDone);
}

}  // namespace zelto::timetable
