#include "mobile/basic_info.h"

#include <unistd.h>

#include <cstddef>
#include <string_view>

#include <zelto/mobile.h>
#include <zelto/system.h>

#include "api/boundary.h"
#include "api/envelope.h"
#include "api/modem.h"
#include "api/shell.h"
#include "api/text.h"
#include "mobile/answers.h"
#include "mobile/apn_lookup.h"

namespace zelto::mobile {
namespace {

constexpr std::size_t kSignalSize = 64;
constexpr std::size_t kOperatorSize = 64;
constexpr std::size_t kTechnologySize = 12;
constexpr std::size_t kKindLength = 31;
constexpr const char* kDevice = "/dev/ttyUSB1";

enum class SignalSource { kNone, kQuality, kServingCell };

// Where a modem of the kind that its daemon names tells its signal.
SignalSource signal_source() {
  const auto kind = shell::capture(R"(cat /tmp/mob_type | tr -d '\n')", kKindLength);
  switch (text::to_int(kind ? kind->text : "")) {
    case 1:
    case 2:
    case 3:
      return SignalSource::kQuality;
    case 4:
    case 5:
      return SignalSource::kServingCell;
    default:
      return SignalSource::kNone;
  }
}

std::string ask_operator() {
  const auto identity = modem::ask("AT+CIMI", nullptr);
  return identity.find("OK") == std::string::npos ? "" : std::string(operator_of(identity));
}

std::string ask_technology() {
  return technology_in(modem::ask("AT+COPS?", "+COPS:"));
}

int ask_cell_signal(std::string_view technology) {
  const auto& query = cell_query(technology);
  return cell_signal(modem::ask(kServingCell, query.prefix), query);
}

void add_basic_info(const Request& /*request*/, Reply& reply) {
  reply.text("simcardstatus", sim_is_ready() ? "1" : "0");
  const auto info = collect();
  reply.text("serviceinfo", service_name(info.operator_name));
  reply.text("nettype", network_name(info.technology));
  reply.text("rssi", bars(info.signal));
}

}  // namespace

BasicInfo collect() {
  const auto source = signal_source();
  BasicInfo info;
  if (source == SignalSource::kNone) return info;
  info.operator_name = ask_operator();
  if (source == SignalSource::kQuality) {
    const auto quality = modem::ask("AT+CESQ", "+CESQ:");
    info.technology = ask_technology();
    info.signal = quality_signal(quality, info.technology);
  } else {
    info.technology = ask_technology();
    info.signal = ask_cell_signal(info.technology);
  }
  return info;
}

bool sim_is_ready() {
  return get_online_status() != 0 ||
         modem::ask("AT+CPIN?", "+CPIN:").find("READY") != std::string::npos;
}

}  // namespace zelto::mobile

using namespace zelto;
using namespace zelto::mobile;

int getmobilebasicinfo(char* signal, char* operator_name, char* technology) {
  return guarded(0, [&] {
    const auto info = collect();
    if (signal != nullptr) text::copy(std::to_string(info.signal), signal, kSignalSize);
    if (operator_name != nullptr) text::copy(info.operator_name, operator_name, kOperatorSize);
    if (technology != nullptr) text::copy(info.technology, technology, kTechnologySize);
    return 0;
  });
}

int bs_Get4gBasicInfo(const char* request, char* out) {
  return answer({.type = "get4gbasicinfo"}, request, out, add_basic_info);
}

int bs_Get_4Gmodule_status(const char* request, char* out) {
  return answer({.type = "get4gmodulestatus"}, request, out, [](const Request&, Reply& reply) {
    reply.text("module_4Gstatus", access(kDevice, F_OK) == 0 ? "1" : "0");
  });
}
