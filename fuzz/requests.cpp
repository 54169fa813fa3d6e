// Whole requests, one after the other on the same router, and what holds for each whatever it asks.
//
// Of an input's lines, those that begin with one of these marks say what the router is like; every
// other one is a request. "\n" within them stands for a line feed.
//
//     /path text            a file that daemons write
//     =package.section.option text    a stored setting
//     >text                 what the next command or modem query gives
//     !text                 the same, with a status of failure

#include <cjson/cJSON.h>
#include <sys/inotify.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

#include <platform/easy_uci.h>
#include <zelto/zeltoapi.h>

#include "api/text.h"
#include "board/board.h"
#include "fuzz/fuzz.h"
#include "platform/easyuci/text.h"

namespace fuzz {

namespace {

using zelto::text::split_first;

// Where the library may store.
constexpr std::array kFolders = {"/etc",
                                 "/etc/config",
                                 "/etc/samba",
                                 "/etc/vsftpd",
                                 "/etc/wireless/mt7628",
                                 "/etc/wireless/mt7663",
                                 "/tmp",
                                 "/mnt/sda1"};
constexpr std::string_view kConfiguration = "/etc/config/";

struct Count {
  long asked = 0;
  long done = 0;  // without "result" 1, which tells of failure
};
std::map<std::string, Count> counts;  // of the table's commands
std::map<std::string, std::string> pristine;
std::map<int, std::string> watched;
std::set<std::string> planted;
int changes = -1;
int free_descriptor = -1;

// The files that have changed since the last call.
std::set<std::string> changed_files() {
  std::set<std::string> files;
  alignas(inotify_event) char block[65536];
  for (ssize_t size = 0; (size = read(changes, block, sizeof block)) > 0;) {
    for (const char* at = block; at < block + size;) {
      const auto* event = reinterpret_cast<const inotify_event*>(at);
      require((event->mask & IN_Q_OVERFLOW) == 0, "more changes than can be followed");
      if (event->len > 0) files.insert(watched[event->wd] + "/" + event->name);
      at += sizeof *event + event->len;
    }
  }
  return files;
}

void check_package(const std::string& name, const std::string& content) {
  const auto package = easyuci::parse(content);
  if (!package) fail("no configuration any more: " + name);
  for (const auto& section : package->sections()) {
    require_allowed("section", name + " " + section.type);
    const std::string place = section.anonymous ? "@" + section.type : section.name;
    for (const auto& option : section.options) {
      require_allowed("option", name + "." + place + "." + option.name);
    }
  }
}

void check_file(const std::string& path) {
  const std::string content = board::read_file(path);
  if (path.starts_with(kConfiguration)) {
    const auto name = path.substr(kConfiguration.size());
    if (!name.starts_with('.')) check_package(name, content);
    return;
  }
  if (planted.contains(path)) return;
  require_allowed("file", path);
  for (const auto line : lines_of(content)) {
    require_allowed("line", path + " " + std::string(line));
  }
}

// As it was before the input.
void restore(const std::set<std::string>& changed) {
  for (const auto& path : changed) {
    const auto known = pristine.find(path);
    if (known == pristine.end()) {
      std::filesystem::remove(path);
    } else if (board::read_file(path) != known->second) {
      board::write_file(path, known->second);
    }
  }
  changed_files();
}

std::string unescaped(std::string_view text) {
  std::string result(text);
  for (std::size_t at = 0; (at = result.find("\\n", at)) != std::string::npos; ++at) {
    result.replace(at, 2, "\n");
  }
  return result;
}

// Whether the line says what the router is like.
bool prepares(std::string_view line) {
  const auto [place, text] = split_first(line, ' ');
  if (line.starts_with('>') || line.starts_with('!')) {
    answer_commands(unescaped(line.substr(1)), line.front() == '!' ? 127 << 8 : 0);
  } else if (line.starts_with('/')) {
    if (!is_allowed("given", place)) return true;
    board::write_file(std::string(place), unescaped(text));
    planted.emplace(place);
  } else if (line.starts_with('=')) {
    const auto [package, behind] = split_first(place.substr(1), '.');
    const auto [section, option] = split_first(behind, '.');
    if (!is_allowed("option", place.substr(1)) || !zelto::text::is_storable(text, 127)) return true;
    easy_uci_set_option_string(std::string(package).c_str(), std::string(section).c_str(),
                               std::string(option).c_str(), std::string(text).c_str());
  } else {
    return false;
  }
  return true;
}

// By RFC 3629, and not by the library's own notion of it.
// NOLINTNEXTLINE(readability-function-cognitive-complexity): the ranges as they stand there
bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const std::size_t size = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if ((first >= 0x80 && first < 0xc2) || first > 0xf4 || size > text.size()) return false;
    for (std::size_t i = 1; i < size; ++i) {
      if ((byte(i) & 0xc0U) != 0x80) return false;
    }
    if ((first == 0xe0 && byte(1) < 0xa0) || (first == 0xed && byte(1) > 0x9f) ||
        (first == 0xf0 && byte(1) < 0x90) || (first == 0xf4 && byte(1) > 0x8f)) {
      return false;
    }
    text.remove_prefix(size);
  }
  return true;
}

using Json = std::unique_ptr<cJSON, decltype(&cJSON_Delete)>;

void check_reply(const char* reply, Count* count) {
  const std::size_t size = strnlen(reply, ZELTO_REPLY_SIZE);
  require(size < ZELTO_REPLY_SIZE, "a reply without an end");
  require(is_utf8({reply, size}), "no valid UTF-8");
  const Json json(cJSON_ParseWithOpts(reply, nullptr, 1), cJSON_Delete);
  if (cJSON_IsObject(json.get()) == 0) fail("no JSON object: " + std::string(reply));
  const cJSON* result = cJSON_GetObjectItemCaseSensitive(json.get(), "result");
  if (count == nullptr) return;
  if (cJSON_IsNumber(result) == 0 || result->valueint != 1) ++count->done;
}

void ask(const std::string& request) {
  const Json json(cJSON_Parse(request.c_str()), cJSON_Delete);
  const char* type = cJSON_GetStringValue(cJSON_GetObjectItem(json.get(), "type"));
  const auto known = counts.find(type == nullptr ? "" : type);
  Count* count = known == counts.end() ? nullptr : &known->second;
  if (count != nullptr) ++count->asked;
  // On the heap, where a byte too many is seen.
  const std::unique_ptr<char[]> out(new char[ZELTO_REPLY_SIZE]);
  std::memset(out.get(), '\1', ZELTO_REPLY_SIZE);
  asked_type = type == nullptr ? "" : type;
  const int status = share_func(request.c_str(), out.get());
  require(status == 0 || status == -1, "a status of its own");
  if (count == nullptr && type != nullptr) {
    // The name comes back as it was sent, be it JSON then or not.
    const auto expected = R"({"type":")" + asked_type.substr(0, 255) + R"(","result":6})";
    require(out.get() == expected, "another answer to an unknown command");
  } else if (out[0] != '\1') {
    check_reply(out.get(), count);
  }
}

}  // namespace

void begin_requests() {
  // It would note every store.
  board::remove_file("/run/board/journal");
  for (const auto& row : zelto_handle) counts[row.name];
  changes = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  for (const char* folder : kFolders) {
    const int watch = inotify_add_watch(
        changes, folder, IN_CREATE | IN_MODIFY | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE);
    require(watch >= 0, folder);
    watched[watch] = folder;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.is_regular_file()) pristine[entry.path()] = board::read_file(entry.path());
    }
  }
  // Traces go nowhere: the router would keep them all.
  require(mount("/dev/null", "/dev/console", nullptr, MS_BIND, nullptr) == 0, "no console");
  (void)std::atexit(report_requests);
}

void run_requests(std::string_view input) {
  for (const auto line : lines_of(input)) {
    if (!prepares(line)) ask(std::string(line));
  }
  forget_answers();
  const auto changed = changed_files();
  for (const auto& path : changed) {
    if (std::filesystem::exists(path)) check_file(path);
  }
  restore(changed);
  planted.clear();
  const int descriptor = dup(STDIN_FILENO);
  close(descriptor);
  if (free_descriptor < 0) free_descriptor = descriptor;
  require(descriptor == free_descriptor, "a descriptor is left open");
}

void report_requests() {
  long asked = 0;
  int reached = 0;
  (void)std::fprintf(stderr, "command                     requests   answered without failure\n");
  for (const auto& [name, count] : counts) {
    (void)std::fprintf(stderr, "%-24s %11ld %11ld\n", name.c_str(), count.asked, count.done);
    asked += count.asked;
    if (count.done > 0) ++reached;
  }
  (void)std::fprintf(stderr, "%ld requests; %d of %zu commands answered without failure\n", asked,
                     reached, counts.size());
}

}  // namespace fuzz
