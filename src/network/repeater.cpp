// The networks around, and the one that the router has joined.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <zelto/network.h>
#include <zelto/utilities.h>

#include "api/boundary.h"
#include "api/clock.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/site_survey.h"

namespace zelto {
namespace {

constexpr config::Option kOthersAtWork = {"system", "route", "wifi_do_action"};
constexpr config::Option kSurveyRuns = {"system", "route", "7663_wifi_scan"};
constexpr const char* kFunction = "bs_GetApcliScanInfo";

constexpr std::size_t kLongestWord = 7;
constexpr std::size_t kLongestMode = 23;
constexpr std::size_t kLongestSsid = 255;
constexpr std::size_t kLongestAddress = 23;
constexpr std::size_t kScanStateLine = 126;

// Seconds. Waits end at last: a page has been given up long before.
constexpr int kOthersInterval = 3;
constexpr int kOthersLimit = 60;
constexpr int kSurveyTime = 20;
constexpr int kFileInterval = 1;
constexpr int kFileLimit = 30;
constexpr int kRunningScanTime = 3;

// One radio's survey.
struct Survey {
  const char* command;
  const char* file;
  const char* not_opened;
  const survey::Columns& columns;
  const char* band;  // in the reply
};
constexpr Survey kSurvey2G = {
    "iwpriv apcli0 set PartialScanNumOfCh=1;iwpriv apcli0 set PartialScan=1;sleep 20;"
    "iwpriv apcli0 get_site_survey > /tmp/2G_list &",
    "/tmp/2G_list", "fopen /tmp/2G_list failed!", survey::k2G, "2.4G"};
constexpr Survey kSurvey5G = {
    "iwpriv apclii0 set PartialScanNumOfCh=2;iwpriv apclii0 set PartialScan=1;sleep 20;"
    "iwpriv apclii0 get_site_survey > /tmp/5G_list &",
    "/tmp/5G_list", "fopen /tmp/5G_list failed!", survey::k5G, "5.8G"};

// True when nobody else works on the radios, or nobody can tell.
bool wait_for_others() {
  return clock::wait_until(kOthersInterval, kOthersLimit / kOthersInterval, [] {
    const auto at_work = config::read(kOthersAtWork, kLongestWord);
    if (!at_work) log::error("get system.route.wifi_do_action failed!\n");
    return !at_work || text::to_int(*at_work) == 0;
  });
}

// A client that goes on looking for its access point would disturb the survey.
void stop_client() {
  const auto mode = config::read(config::kOperationMode);
  config::Option band = {};
  if (mode == "wisp") band = {"internet", "wisp", "wisp_type"};
  if (mode == "repeater") band = {"internet", "repeater", "repeater_type"};
  if (band.package == nullptr) return;
  if (config::read(band) != "2.4G") {
    shell::run("iwpriv apclii0 set ApCliAutoConnect=0");
    return;
  }
  if (check_ap_scan_running() == 1) clock::pause(kRunningScanTime);
  shell::run("iwpriv apcli0 set ApCliAutoConnect=0");
}

// The survey's text; nothing when its file never came or cannot be opened.
std::optional<std::string> collect(const Survey& survey) {
  const bool is_there = clock::wait_until(kFileInterval, kFileLimit / kFileInterval,
                                          [&] { return check_file_exist(survey.file) == 1; });
  auto content = is_there ? files::read_all(survey.file) : std::nullopt;
  if (!content) console::trace(kFunction, survey.not_opened);
  return content;
}

void add_networks(const Survey& survey, const std::string& content, List& list) {
  const auto networks = std::make_unique<ScanList>();
  survey::parse(content, survey.columns, *networks);
  sort_scan_list(networks.get());
  for (int i = 0; i < networks->count; ++i) {
    const auto& network = networks->records[i];
    auto entry = list.add();
    entry.number("channel", network.channel);
    entry.text("ssid", text::in_buffer(network.ssid));
    entry.text("bssid", text::in_buffer(network.bssid));
    entry.text("security", text::in_buffer(network.security));
    entry.number("signal", network.signal);
    entry.text("ext_ch", text::in_buffer(network.ext_ch));
    entry.text("wifi_type", survey.band);
  }
}

// False when the survey did not come about.
bool survey_both(Reply& reply) {
  if (!wait_for_others()) return false;
  stop_client();
  config::write(kSurveyRuns, "1");
  shell::run("ifconfig rai0 up");
  shell::start(kSurvey2G.command);
  shell::start(kSurvey5G.command);
  clock::pause(kSurveyTime);
  const auto content_2g = collect(kSurvey2G);
  if (!content_2g) return false;
  const auto content_5g = collect(kSurvey5G);
  if (!content_5g) return false;
  auto list = reply.list("list");
  add_networks(kSurvey2G, *content_2g, list);
  add_networks(kSurvey5G, *content_5g, list);
  return true;
}

// Whatever was asked for, the radios go back to their work.
void scan(const Request& request, Reply& reply) {
  bool done = false;
  if (request.type()) {
    shell::run("ifconfig apcli0 up");
    shell::run("ifconfig apclii0 up");
    done = request.type() == "getrepeaterinfo" && survey_both(reply);
  }
  if (!done) reply.result(kFailed);
  config::write(kSurveyRuns, "0");
  reply.afterwards([] {
    files::remove(kSurvey2G.file);
    files::remove(kSurvey5G.file);
    shell::run("iwpriv apcli0 set PartialScan=0");
    shell::run("iwpriv apclii0 set PartialScan=0");
  });
}

void add_joined_network(const Request& /*request*/, Reply& reply) {
  const auto mode = config::read(config::kOperationMode, kLongestMode);
  if (!mode) {
    console::trace("bs_ConnetSta", "uci get system.route.operationmode failed!");
    return reply.result(kFailed);
  }
  if (*mode != "wisp" && *mode != "repeater") {
    reply.text("ssid", "NULL");
    reply.text("mac", "NULL");
    return;
  }
  const config::Option ssid = {"internet", mode->c_str(), "ApCliSsid"};
  reply.text("ssid", config::read_or_empty(ssid, kLongestSsid));
  reply.text("mac", config::read_or_empty({"system", "route", "superior_bssid"}, kLongestAddress));
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int check_ap_scan_running() {
  return guarded(-1, [] {
    const auto answer = shell::capture("iwpriv apcli0 ap_scan_running", 2 * (kScanStateLine + 1));
    if (!answer) {
      log::error("check_ap_scan_running popen failed!\n");
      return -1;
    }
    return text::to_int(text::split_first(answer->text, '\n').second);
  });
}

int bs_GetApcliScanInfo(const char* request, char* out) {
  return answer(
      {.type = "getrepeaterinfo", .unparsed_traced_as = kFunction, .accepts_any_type = true},
      request, out, scan);
}

int bs_ConnetSta(const char* request, char* out) {
  return answer({.type = "getconnetsta", .unparsed_traced_as = "bs_ConnetSta"}, request, out,
                add_joined_network);
}
