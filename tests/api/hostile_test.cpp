// Every command under requests that mean harm. Each begins as the example of its comment, so that
// it gets deep into the handler, and has some of its members spoilt.

#include <cjson/cJSON.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <regex>
#include <set>
#include <sstream>

#include <zelto/access.h>
#include <zelto/mobile.h>
#include <zelto/services.h>
#include <zelto/system.h>

#include "api/text.h"
#include "catalogue/catalogue.h"
#include "support/effects.h"
#include "support/router_test.h"

namespace zelto_test {
namespace {

using Json = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

Json parse(const std::string& text) {
  return {cJSON_ParseWithOpts(text.c_str(), nullptr, /*require_null_terminated=*/1), cJSON_Delete};
}
std::string print(const cJSON* json) {
  const std::unique_ptr<char, decltype(&cJSON_free)> text(cJSON_PrintUnformatted(json), cJSON_free);
  return text.get();
}
std::string text_of(const cJSON* object, const char* member) {
  const char* text = cJSON_GetStringValue(cJSON_GetObjectItemCaseSensitive(object, member));
  return text == nullptr ? "" : text;
}

// Read on the machine, before the router is booted.
const Json kExamples = [] {
  std::stringstream content;
  content << std::ifstream(EXAMPLES).rdbuf();
  return parse(content.str());
}();

std::string example(const std::string& command) {
  return text_of(cJSON_GetObjectItemCaseSensitive(kExamples.get(), command.c_str()), "request");
}

std::vector<CommandEntry> all_handlers() {
  std::vector<CommandEntry> handlers(std::begin(zelto_handle), std::end(zelto_handle));
  handlers.insert(handlers.end(), {{"getwifistainfo", bs_GetWiFiStaInfo},
                                   {"getcurstainfo", bs_GetCurStaInfo},
                                   {"get4gmodulestatus", bs_Get_4Gmodule_status},
                                   {"getsystimeinfo", bs_GetSysTimeInfo},
                                   {"getupnpport", bs_GetUpnpPort}});
  return handlers;
}

std::vector<std::string> split(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, '~');) parts.push_back(part);
  return parts;
}

// Put before, behind or in place of a good text. What would run leaves /tmp/pwned.
const auto kHarmful = split(
    with(R"($(RUN)~`RUN`~;RUN;~";RUN;"~';RUN;'~\';RUN #~&RUN|x~EOLRUNEOL~\EOLRUN~EOLpwned=1EOL~)"
         R"('EOLconfig pwned 'x'EOL~pwned 1 2~%s%n%99999d~-x~../../../tmp~~ ~a b~;~)",
         {{"RUN", "touch /tmp/pwned"}, {"EOL", "\r\n"}}) +
    "\x01\x7f\"\t~\xFF\xC3(\xED\xA0\x80~" + std::string(128, '\'') + "~" + std::string(600, '"') +
    "~" + std::string(32, 'x') + "~" + std::string(20000, 'x'));
const auto kPlausible = split(
    "1~0~-1~99999999999~on~off~add~del~router~AP~wisp~repeater~mobilenetmode~dhcp~static~pppoe~"
    "192.168.20.1~255.255.255.0~open~wpa2~WPA2PSK~02:AA:00:00:00:01~ALL~1,2,TCP~22:00-06:00~"
    "/mnt/sda1/x~anna");

class Spoiler {
 public:
  std::size_t pick(std::size_t count) { return random_() % count; }

  // A request made of a good one.
  std::string spoil(const std::string& command, bool with_harm) {
    with_harm_ = with_harm;
    const auto request = parse(example(command));
    const auto* known = zelto::catalogue::find(command);
    for (const auto& member : known == nullptr ? decltype(known->request)() : known->request) {
      if (cJSON_HasObjectItem(request.get(), member.name) == 0) {
        cJSON_AddItemToObject(request.get(), member.name, value(""));
      }
    }
    spoil_members(request.get());
    const auto text = print(request.get());
    return pick(30) == 0 ? text.substr(0, pick(text.size())) : text;
  }

 private:
  void spoil_members(cJSON* parent) {
    for (cJSON *child = parent->child, *next = nullptr; child != nullptr; child = next) {
      next = child->next;
      const bool is_type = child->string != nullptr && std::string(child->string) == "type";
      if (pick(is_type ? 40 : 3) == 0) {
        const char* good = cJSON_GetStringValue(child);
        auto* const other = value(good == nullptr ? "" : good);
        if (child->string == nullptr) {
          cJSON_ReplaceItemViaPointer(parent, child, other);
        } else {
          const std::string name = child->string;
          cJSON_ReplaceItemInObjectCaseSensitive(parent, name.c_str(), other);
        }
      } else if (child->child != nullptr) {
        if (cJSON_IsArray(child) != 0 && cJSON_IsObject(child->child) != 0 && pick(3) == 0) {
          for (auto copies = pick(70); copies > 0; --copies) {
            cJSON_AddItemToArray(child, cJSON_Duplicate(child->child, 1));
          }
        }
        spoil_members(child);
      }
    }
  }

  cJSON* value(const std::string& good) {
    static const auto kOthers =
        split(R"(null~true~0.5~-1~2147483648~1e308~{"a":{"b":[{"c":null}]}}~[1,"x",{}]~)" +
              std::string(900, '[') + std::string(900, ']'));
    const auto choice = pick(10);
    if (choice < 3) return parse(kOthers[pick(kOthers.size())]).release();
    if (choice < 5 || !with_harm_) {
      return cJSON_CreateString(kPlausible[pick(kPlausible.size())].c_str());
    }
    const auto& harm = kHarmful[pick(kHarmful.size())];
    const std::string texts[] = {harm, good + harm, harm + good};
    return cJSON_CreateString(texts[pick(3)].c_str());
  }

  std::mt19937 random_;
  bool with_harm_ = true;
};

// What the shell does not take as quoted of a command in the journal, where a backslash is doubled.
std::string unquoted(const std::string& command) {
  std::string rest;
  char quote = 0;
  for (std::size_t i = 0; i < command.size(); ++i) {
    const char c = command[i];
    if (c == '\\' && quote != '\'') {
      i += command.compare(i + 1, 2, "\\\\") == 0 ? 3 : command[i + 1] == '\\' ? 2 : 1;
    } else if (c == quote) {
      quote = 0;
    } else if (quote == 0 && (c == '\'' || c == '"')) {
      quote = c;
    } else if (quote == 0 || (quote == '"' && (c == '`' || c == '$'))) {
      rest += quote == 0 ? std::string(1, c) : command.substr(i, 20);
    }
  }
  return rest;
}

// The forms of the lines that are left behind, by file.
const std::pair<const char*, const char*> kForms[] = {
    {"/etc/blacklist", R"(\S+ .*)"},
    {"/etc/mac_alias_list", R"(\S+ .*)"},
    {"/etc/parental_list", R"(\S+ \S+ \S+ \S+ \S+)"},
    {"/etc/wifi_schedule_list", R"(\S+ \S+)"},
    {"/etc/periodic_restart_list", R"(\S+ \S+)"},
    {"/etc/qos_limit_list", R"(\S+ \S+ -?\d+ -?\d+ \d+)"},
    {"/etc/port_forward_list", R"(\S+ [^; ]+(;\S+ \S+ \S+)*)"},
    {"/etc/firewall.user", R"(iptables -t filter -I (FORWARD|INPUT) -m mac --mac-source )"
                           R"((\S+|'.*') -m comment --comment blacklist -j DROP)"},
    {"/tmp/token", "[0-9a-f]{32}"},
    {"/etc/wireless/", R"(Default|(?!pwned)\w+=.*)"},
    {"/etc/config/", R"(|config (?!pwned)\S+( \S+)?|\t(option|list) \w+ '.*')"},
};

// Files that are as they were are not looked at again.
void expect_no_forged_line() {
  static std::map<std::string, std::string> seen;
  for (const auto& [path, form] : kForms) {
    const std::regex pattern(form);
    std::vector<std::string> files = {path};
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) files.push_back(entry.path().string());
      }
    }
    for (const auto& file : files) {
      auto now = board::read_file(file);
      if (now == seen[file]) continue;
      std::istringstream content(seen[file] = std::move(now));
      for (std::string line; std::getline(content, line);) {
        EXPECT_TRUE(std::regex_match(line, pattern)) << file << ": " << line;
      }
    }
  }
}

// Whether a reply is whole, within its buffer and fit for who reads it.
bool is_sound(const CommandEntry& entry, const std::string& request) {
  constexpr std::size_t kBehind = 64;
  std::string out(ZELTO_REPLY_SIZE + kBehind, '#');
  out.replace(0, 2, std::string("-\0", 2));
  entry.handler(request.c_str(), out.data());
  const std::string reply = out.substr(0, out.find('\0'));
  const auto parsed = parse(reply);
  const auto asked = parse(request);
  // Nothing is written for what is not JSON; a few say nothing without "type".
  const bool may_be_silent = !asked || text_of(asked.get(), "type").empty();
  return out.ends_with(std::string(kBehind, '#')) &&
         ((reply == "-" && may_be_silent) ||
          (parsed && print(parsed.get()) == reply && zelto::text::to_utf8(reply) == reply));
}

// How many: fewer of those without members, which see little of a request, and of those that have
// the router run a dozen commands for each; with ZELTO_EVERY_REQUEST set as many of all.
int requests(const std::string& command) {
  constexpr int kAll = 200;
  if (std::getenv("ZELTO_EVERY_REQUEST") != nullptr) return kAll;
  // Each program that a command starts takes a tenth of a second there.
  if (std::getenv("ZELTO_UNDER_QEMU_USER") != nullptr) return 20;
  static const auto kSlow = split(
      "sethwnat~sethideall~setAllswitch~seteasycfg~setlancfg~setWifiMode"
      "~setmanpwd~sethide2~sethide5~setwlancfgall");
  const auto* known = zelto::catalogue::find(command);
  if (known == nullptr || known->request.empty()) return 20;
  return std::ranges::find(kSlow, command) == kSlow.end() ? kAll : 60;
}

class Hostile : public RouterTest {};

TEST_F(Hostile, ForeignTypesAreRefused) {
  const auto names = split(
      "getupgradestatus~set2gswitch~set5gswitch~setAllswitch~sethide2~sethide5~sethideall~"
      "setchannelall~setpptpinfo~setl2tpinfo~gethide2~gethide5~set2channel~set5channel~"
      "getwifistainfo~getcurstainfo~getsystimeinfo");
  const std::set<std::string> echoing(names.begin(), names.end());
  std::map<std::string, std::string> others = {
      {"restore", R"({"type":"restore","result":0})"},
      {"getterminallist", R"({"type":"getterminallist","ver":"2","result":1})"},
      {"getWifiMode", R"({"type":"foreign","twoWifiMode":0,"fiveWifiMode":0})"},
      {"setWifiMode", R"({"type":"foreign","result":0})"}};
  for (const auto& [name, handler] : all_handlers()) {
    auto& expected = others[name];
    if (expected.empty()) {
      expected = R"({"type":")" + (echoing.contains(name) ? "foreign" : std::string(name)) +
                 R"(","result":1})";
    }
    EXPECT_EQ(call(handler, R"({"type":"foreign"})").reply, expected);
    EXPECT_EQ(text_of(parse(call(handler, example(name).c_str()).reply).get(), "type"), name);
  }
}

TEST_F(Hostile, RequestsHarmNobody) {
  Spoiler spoiler;
  call(bs_GetHeartBeat, "");  // opens the log
  const auto descriptors = open_descriptors();
  for (const auto& entry : all_handlers()) {
    SCOPED_TRACE(entry.name);
    if (!std::filesystem::exists("/mnt/sda1")) board::add_usb_disk("sda1", {"films"});
    for (int i = requests(entry.name); i > 0; --i) {
      const auto request = spoiler.spoil(entry.name, entry.name != std::string("setcmd"));
      ASSERT_TRUE(is_sound(entry, request)) << request;
    }
    const auto journal = board::journal();
    board::clear_journal();
    for (const auto& effect : journal) {
      if (!effect.starts_with("run ") && !effect.starts_with("start ")) continue;
      EXPECT_EQ(unquoted(effect).find("pwned"), std::string::npos) << effect;
    }
    ASSERT_FALSE(std::filesystem::exists("/tmp/pwned"));
    EXPECT_EQ(open_descriptors(), descriptors);
    expect_no_forged_line();
  }
}

}  // namespace
}  // namespace zelto_test
