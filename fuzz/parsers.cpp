// The readers of foreign text one by one: of the host's stores, drivers, daemons, modem, browsers.

#include <cjson/cJSON.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <memory>

#include <platform/easy_uci.h>
#include <zelto/network.h>
#include <zelto/services.h>
#include <zelto/utilities.h>
#include <zelto/zeltoapi.h>

#include "access/terminal_list.h"
#include "api/list_file.h"
#include "api/shell.h"
#include "api/text.h"
#include "board/board.h"
#include "fuzz/fuzz.h"
#include "gateway/http_request.h"
#include "gateway/json.h"
#include "gateway/origin.h"
#include "gateway/response.h"
#include "gateway/token.h"
#include "mobile/answers.h"
#include "network/site_survey.h"
#include "platform/easyuci/text.h"
#include "platform/uart/answer.h"
#include "platform/wificonf/profile.h"

namespace fuzz {
namespace {

using zelto::text::split_first;

bool contains(std::string_view whole, std::string_view part) {
  return part.empty() ||
         (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

// ---- uci: the first line is a value, the rest a configuration file

void run_uci(std::string_view input) {
  const auto [value, text] = split_first(input, '\n');
  auto package = easyuci::parse(text);
  if (!package) return;
  const std::string printed = easyuci::print(*package);
  const auto again = easyuci::parse(printed);
  require(again && easyuci::print(*again) == printed, "a printed package reads as another");
  if (value.find('\0') != std::string_view::npos) return;
  package->add_section("type", "added");
  package->set_option("added", "option", value);
  if (!package->sections().empty()) {
    const std::string first = package->sections().front().name;
    package->set_option(first, "option", value);
  }
  const auto changed = easyuci::parse(easyuci::print(*package));
  require(changed.has_value(), "a changed package cannot be read");
  const auto section = std::ranges::find(changed->sections(), "added", &easyuci::Section::name);
  require(section != changed->sections().end(), "a section is lost");
  const auto option = std::ranges::find(section->options, "option", &easyuci::Option::name);
  const bool is_there = option != section->options.end();
  require(is_there == !value.empty(), "an option is lost, or an empty one stored");
  require(!is_there || option->items.front() == value, "an option reads as another");
}

// ---- profile: key, value, index; then a driver profile

void run_profile(std::string_view input) {
  const auto [key, behind_key] = split_first(input, '\n');
  const auto [value, behind_value] = split_first(behind_key, '\n');
  const auto [number, profile] = split_first(behind_value, '\n');
  if (!wificonf::is_key(key) || value.find('\r') != std::string_view::npos) return;
  const int index = number.empty() ? 0 : number.front() % 4;
  const auto before = wificonf::find_value(profile, key);
  require(!before || contains(profile, *before), "a value outside its profile");
  const auto other_before = wificonf::find_value(profile, "SSID1");
  const std::string changed = wificonf::with_value(profile, key, value);
  require(wificonf::find_value(changed, key) == value, "a value reads as another");
  require(key == "SSID1" || wificonf::find_value(changed, "SSID1") == other_before,
          "another value is changed");
  if (value.find(';') != std::string_view::npos) return;
  const std::string list = wificonf::with_element(before.value_or(""), index, value);
  require(wificonf::find_element(list, index) == value, "an element reads as another");
}

// ---- survey: what the drivers print of the networks around

void run_survey(std::string_view input) {
  const auto list = std::make_unique<ScanList>();
  for (const auto* columns : {&zelto::survey::k2G, &zelto::survey::k5G}) {
    zelto::survey::parse(input, *columns, *list);
    require(list->count >= 0 && list->count <= ZELTO_SCAN_LIMIT, "too many networks");
    sort_scan_list(list.get());
    for (int i = 0; i < list->count; ++i) {
      const ScanRecord& record = list->records[i];
      require(record.ssid[0] != '\0', "a network without a name");
      require(std::strlen(record.ssid) <= 33, "a name beyond its columns");
      require(i == 0 || record.signal <= list->records[i - 1].signal, "not sorted");
    }
  }
}

// ---- terminals: lines of the list of devices

void run_terminals(std::string_view input) {
  for (const auto line : lines_of(input)) {
    const auto terminal = zelto::terminals::parse(line);
    for (const auto field :
         {terminal.ip, terminal.mac, terminal.seconds, terminal.down_rate, terminal.up_rate,
          terminal.interface, terminal.name, terminal.down_total, terminal.up_total}) {
      require(contains(line, field), "a field outside its line");
    }
    for (const auto word : {terminal.ip, terminal.mac, terminal.interface, terminal.up_total}) {
      require(word.find(' ') == std::string_view::npos, "a word with a blank");
    }
  }
}

// ---- leases: the file of mappings that the UPnP daemon writes

void run_leases(std::string_view input) {
  board::write_file("/tmp/upnp.leases", input);
  const std::unique_ptr<char[]> out(new char[ZELTO_REPLY_SIZE]);
  bs_GetUpnpInfo(R"({"type":"get_upnp_info"})", out.get());
  const std::string_view reply(out.get(), strnlen(out.get(), ZELTO_REPLY_SIZE));
  require(reply.size() < ZELTO_REPLY_SIZE, "a reply without an end");
  const std::unique_ptr<cJSON, decltype(&cJSON_Delete)> json(cJSON_Parse(out.get()), cJSON_Delete);
  const cJSON* list = cJSON_GetObjectItemCaseSensitive(json.get(), "list");
  require(cJSON_IsArray(list) != 0, "no list");
  for (const cJSON* lease = list->child; lease != nullptr; lease = lease->next) {
    for (const char* member : {"ip", "internalPort", "externalPort", "protocol"}) {
      const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(lease, member));
      require(text != nullptr && std::strchr(text, ':') == nullptr, "a field beyond its colons");
    }
  }
  // Unless there is more than fits, or a line that is no text of its own.
  const auto lines = lines_of(input);
  if (reply.size() > ZELTO_REPLY_SIZE / 2 || input.find('\r') != std::string_view::npos ||
      input.find('\0') != std::string_view::npos ||
      std::ranges::any_of(lines, [](auto line) { return line.size() > 200; })) {
    return;
  }
  const auto leases =
      std::ranges::count_if(lines, [](std::string_view line) { return !line.empty(); });
  require(cJSON_GetArraySize(list) == leases, "a lease is lost or made up");
}

// ---- modem: command, prefix; then what the modem sends

void run_modem(std::string_view input) {
  const auto [command, behind_command] = split_first(input, '\n');
  const auto [prefix, bytes] = split_first(behind_command, '\n');
  uartat::Answer whole(command, prefix);
  uartat::Answer pieces(command, prefix);
  const bool is_complete = whole.take(bytes);
  for (std::size_t i = 0; i < bytes.size(); i += 7) pieces.take(bytes.substr(i, 7));
  require(whole.text() == pieces.text(), "the answer depends on how its bytes come");
  require(!is_complete || whole.text().ends_with("\r\n"), "an answer without its last line");
  const auto answer = uartat::from_prefix(whole.text(), prefix);
  require(contains(whole.text(), answer), "an answer from elsewhere");

  namespace mobile = zelto::mobile;
  const std::string technology = mobile::technology_in(bytes);
  mobile::network_name(technology);
  mobile::quality_signal(bytes, technology);
  const int signal = mobile::cell_signal(bytes, mobile::cell_query(technology));
  require(std::strlen(mobile::bars(signal)) == 1, "no bars");
  mobile::service_name(bytes.substr(0, 12));
  require(mobile::revision_in(bytes).find_first_of(" \r\n") == std::string_view::npos,
          "a revision of several words");
}

// ---- list: a record to add; then a list file

void run_list(std::string_view input) {
  static constexpr zelto::ListFile kList = {.path = "/etc/blacklist",
                                            .work_path = "/tmp/blacklist",
                                            .replacement = "mv /tmp/blacklist /etc/blacklist",
                                            .shortest = 5,
                                            .rewrites_whole = true};
  namespace list_file = zelto::list_file;
  const auto [record, content] = split_first(input, '\n');
  board::write_file(kList.path, content);
  const auto before = list_file::read_whole(kList);
  require(list_file::read(kList)->size() == before->size(), "two readers, two lists");
  const auto all = [](const std::string&) { return true; };
  list_file::rewrite(list_file::ChangeLock(), kList, all);
  require(list_file::read_whole(kList) == before, "a rewrite changes records");
  if (record.size() + 1 < kList.shortest || !list_file::is_rest(record, 300)) return;
  list_file::append(list_file::ChangeLock(), kList, std::string(record));
  const auto appended = list_file::read_whole(kList);
  require(appended->size() == before->size() + 1 && appended->back() == record,
          "an added record reads as another");
}

// ---- cgi: a line for each variable that a web server sets; an empty line; the body

constexpr std::array kVariables = {"REQUEST_METHOD",      "QUERY_STRING",      "CONTENT_TYPE",
                                   "HTTP_COOKIE",         "REMOTE_ADDR",       "HTTPS",
                                   "HTTP_HOST",           "HTTP_ORIGIN",       "HTTP_REFERER",
                                   "HTTP_SEC_FETCH_SITE", "HTTP_AUTHORIZATION"};

void check_body(std::string_view content) {
  const int input = memfd_create("body", MFD_CLOEXEC);
  require(write(input, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
              lseek(input, 0, SEEK_SET) == 0,
          "no body");
  try {
    const std::string body = gateway::read_body(input);
    require(body == content, "the body is another");
    if (const auto object = gateway::JsonObject::parse(body)) {
      const auto again = gateway::JsonObject::parse(object->print());
      require(again && again->text("type") == object->text("type"),
              "the library would read another request");
    }
  } catch (const gateway::Refusal& refusal) {
    require(refusal.status == 400 || refusal.status == 413, "a status of its own");
  }
  close(input);
}

void run_cgi(std::string_view input) {
  for (const char* name : kVariables) {
    const auto [value, rest] = split_first(input, '\n');
    if (!value.empty()) setenv(name, std::string(value).c_str(), 1);
    input = rest;
  }
  const auto http = gateway::take_environment();
  require(environ[0] != nullptr && environ[1] == nullptr, "the environment keeps something");
  require(http.source.find_first_not_of("0123456789abcdef.:unkow") == std::string::npos,
          "an address that is none");
  const std::string token = gateway::presented_token(http);
  require(token.empty() || gateway::is_token(token), "no token");
  gateway::is_own_host(http, "router.example");
  const bool is_own = gateway::is_same_origin(http);
  require(!is_own || http.host, "an own page of no host");
  require(!is_own || http.fetch_site.value_or("same-origin") == "same-origin", "a foreign page");
  check_body(input);
}

// ---- text: quoting, base64 and what else takes any bytes

// As a shell takes a word apart; nothing when a quote stays open.
std::string unquoted(std::string_view text, bool in_double_quotes) {
  std::string result;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!in_double_quotes && text[i] == '\'') {
      quoted = !quoted;
    } else if (!quoted && text[i] == '\\') {
      require(++i < text.size(), "a backslash at the end");
      result += text[i];
    } else {
      const bool is_special =
          std::string_view("$`\"").find(text[i]) != std::string_view::npos ||
          (!in_double_quotes && std::strchr(" \t\n;|&<>()*?#~!", text[i]) != nullptr);
      require(quoted || !is_special, "a character that the shell would act on");
      result += text[i];
    }
  }
  require(!quoted, "a quote left open");
  return result;
}

void run_text(std::string_view input) {
  const std::string bytes(input.substr(0, input.find('\0')));
  require(unquoted(zelto::shell::word(bytes), false) == bytes, "a word that is another");
  require(unquoted(zelto::shell::inside_double_quotes(bytes), true) == bytes, "a text changed");
  const std::string utf8 = zelto::text::to_utf8(input);
  require(zelto::text::to_utf8(utf8) == utf8, "no valid UTF-8");
  zelto::text::to_int(input);
  zelto::text::to_int64(input);
  zelto::text::hexadecimal(input);
  // To the byte as large as the contract says.
  const std::size_t size = input.size();
  const std::unique_ptr<char[]> encoded(new char[4 * ((size + 2) / 3) + 1]);
  zelto_base64_encode(reinterpret_cast<const unsigned char*>(input.data()), encoded.get(),
                      static_cast<int>(size));
  std::string decoded(3 * ((std::strlen(encoded.get()) + 3) / 4), '\0');
  decoded.resize(static_cast<std::size_t>(
      zelto_base64_decode(encoded.get(), reinterpret_cast<unsigned char*>(decoded.data()))));
  require(decoded == input, "base64 loses bytes");
  const std::unique_ptr<unsigned char[]> any(new unsigned char[3 * ((bytes.size() + 3) / 4)]);
  zelto_base64_decode(bytes.c_str(), any.get());
}

constexpr Target kParsers[] = {
    {"uci", run_uci},       {"profile", run_profile},
    {"survey", run_survey}, {"terminals", run_terminals},
    {"leases", run_leases}, {"modem", run_modem},
    {"list", run_list},     {"cgi", run_cgi},
    {"text", run_text},
};

}  // namespace

std::span<const Target> parsers() {
  return kParsers;
}

std::vector<std::string_view> lines_of(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto [line, others] = split_first(text, '\n');
    lines.push_back(line);
    text = others;
  }
  return lines;
}

}  // namespace fuzz
