// The times at which Wi-Fi is to be off.

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/timetable.h"

namespace zelto {
namespace {

constexpr Timetable kOffTimes = {
    .file =
        {
            .path = "/etc/wifi_schedule_list",
            .work_path = "/tmp/wifi_schedule_list",
            .replacement = "rm -rf /etc/wifi_schedule_list;mv /tmp/wifi_schedule_list "
                           "/etc/wifi_schedule_list",
            .shortest = 13,
        },
    .state = {"system", "route", "wifi_schedule"},
    .time = "period",
    .longest_word = 23,
};

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetWifiScheduleData(const char* request, char* out) {
  return answer({.type = "wifi_schedule", .unparsed_log = "json is NULL\n"}, request, out,
                [](const Request&, Reply& reply) { timetable::show(kOffTimes, reply); });
}

int bs_SetWifiScheduleData(const char* request, char* out) {
  static constexpr const char* kType = "wifi_schedule_apply";
  return answer({.type = kType}, request, out, [](const Request& parsed, Reply& reply) {
    timetable::change(kOffTimes, kType, parsed, reply);
  });
}

int bs_SetWifiScheduleSwitch(const char* request, char* out) {
  static constexpr const char* kType = "wifi_schedule_switch";
  return answer({.type = kType}, request, out, [](const Request& parsed, Reply& reply) {
    timetable::change_switch(kOffTimes, kType, parsed, reply);
  });
}
