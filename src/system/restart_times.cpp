// The times at which the router is to restart.

#include <zelto/system.h>

#include "api/envelope.h"
#include "api/timetable.h"

namespace zelto {
namespace {

constexpr Timetable kRestartTimes = {
    .file =
        {
            .path = "/etc/periodic_restart_list",
            .work_path = "/tmp/periodic_restart_list",
            .replacement = "rm -rf /etc/periodic_restart_list;mv /tmp/periodic_restart_list "
                           "/etc/periodic_restart_list",
            .shortest = 7,
        },
    .state = {"system", "route", "periodic_restart_switch"},
    .time = "timing",
    .longest_word = 63,
};

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_get_periodic_restart(const char* request, char* out) {
  return answer({.type = "get_periodic_restart", .unparsed_log = "json is NULL\n"}, request, out,
                [](const Request&, Reply& reply) { timetable::show(kRestartTimes, reply); });
}

int bs_periodic_restart_apply(const char* request, char* out) {
  static constexpr const char* kType = "periodic_restart_apply";
  return answer({.type = kType}, request, out, [](const Request& parsed, Reply& reply) {
    timetable::change(kRestartTimes, kType, parsed, reply);
  });
}

int bs_periodic_restart_switch(const char* request, char* out) {
  static constexpr const char* kType = "periodic_restart_switch";
  return answer({.type = kType}, request, out, [](const Request& parsed, Reply& reply) {
    timetable::change_switch(kRestartTimes, kType, parsed, reply);
  });
}
