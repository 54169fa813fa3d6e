// The configuration store through its public header: what a file means, what a write leaves.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <platform/easy_uci.h>

#include "board/board.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kFolder = "/etc/config";
const std::string kFile = kFolder + "/probe";
constexpr const char* kProbe = "probe";

std::optional<std::string> get(const char* section, const char* option) {
  std::string value(20000, '\0');
  if (easy_uci_get_option_string(kProbe, section, option, value.data(), 19999) != 0) return {};
  return value.c_str();
}

int set(const char* section, const std::string& option, const std::string& value) {
  return easy_uci_set_option_string(kProbe, section, option.c_str(), value.c_str());
}

int add(const char* type, const char* name) {
  return easy_uci_add_section(kProbe, type, name);
}

std::optional<std::string> nth(const char* type, int n) {
  std::array<char, EASY_UCI_NAME_SIZE> name{};
  if (easy_uci_get_nth_section_of_type(kProbe, type, n, name.data()) != 0) return {};
  return name.data();
}

std::optional<std::string> type_of(const char* section) {
  std::array<char, 64> type{};
  if (easy_uci_get_section_type(kProbe, section, type.data(), type.size()) != 0) return {};
  return type.data();
}

struct stat facts_of(const std::string& path) {
  struct stat facts {};
  EXPECT_EQ(::stat(path.c_str(), &facts), 0) << path;
  return facts;
}

std::vector<std::string> files_beside_probe() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    const std::string name = entry.path().filename();
    if (name.find("probe") != std::string::npos && name != "probe") names.push_back(name);
  }
  return names;
}

// Runs `action` in a process of its own.
pid_t spawn(const std::function<bool()>& action) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(action() ? 0 : 1);
  return child;
}

int status_of(pid_t child) {
  int status = -1;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status;
}

class EasyUci : public testing::Test {
 protected:
  void SetUp() override {
    board::reset();
    std::filesystem::remove(kFile);
  }
};

TEST_F(EasyUci, ReadsWhatTheFileMeans) {
  const struct {
    const char* text;  // of option `o`, in section `s` unless it opens one itself
    std::optional<std::string> value;
  } cases[] = {
      {"option o plain", "plain"},
      {"\toption\to\t'a b'  ", "a b"},
      {"option 'o' \"a b\"", "a b"},
      {"o o short", "short"},
      {"option o a#comment", "a"},
      {"option o 'a#b' # it's free", "a#b"},
      {"# option o x", std::nullopt},
      {R"(option o 'it'\''s')", "it's"},
      {R"(option o a'b'"c"d)", "abcd"},
      {R"(option o 'a\b"c')", R"(a\b"c)"},
      {R"(option o "a\"b\\c\nd'e")", R"(a"b\cnd'e)"},
      {R"(option o a\ b\'c)", "a b'c"},
      {"option o 'two\nlines'", "two\nlines"},
      {"option o \"two\nlines\\\n joined\"", "two\nlines joined"},
      {"option o a\\\nb", "ab"},
      {"option \\\n o x", "x"},
      {"option o 'crlf'\r\noption p 2\r", "crlf"},
      {"option o first\noption p x\noption o last", "last"},
      {"option o x\noption o ''", std::nullopt},
      {"option o", std::nullopt},
      {"list o a\nlist o 'b c'\nl o d", "a b c d"},
      {"option o a\nlist o b", "a b"},
      {"list o a\noption o b", "b"},
      {"option o x\nconfig other t\noption o y", "x"},
      {"option o x\nconfig other t\nconfig t s\noption o again", "again"},
      {"package elsewhere\noption o \xc3\xa4\xff", "\xc3\xa4\xff"},
      {"option O x", std::nullopt},
  };
  for (const auto& [text, value] : cases) {
    board::write_file(kFile, std::string("config t 's'\n") + text);
    EXPECT_EQ(get("s", "o"), value) << text;
    EXPECT_EQ(type_of("s"), "t") << text;
  }
}

TEST_F(EasyUci, LeavesAFileAloneThatItCannotRead) {
  const std::string texts[] = {
      "option 'open",
      "option o \"open",
      "option o open\\",
      "option bad-name x",
      "option '' x",
      "option",
      "list",
      "option o x y",
      "config",
      "config t 'bad name'",
      "config 'bad type' s",
      "config t a b",
      "package",
      "package a.b",
      "unknown o x",
      "optional o x",
      std::string("option o 'a\0b'", 14),
  };
  for (const std::string& text : texts) {
    const std::string content = "config t 's'\n\toption whole 'x'\n" + text;
    board::write_file(kFile, content);
    EXPECT_EQ(get("s", "whole"), std::nullopt) << text;
    EXPECT_EQ(type_of("s"), std::nullopt) << text;
    EXPECT_EQ(nth("t", 0), std::nullopt) << text;
    EXPECT_EQ(set("s", "whole", "y"), -1) << text;
    EXPECT_EQ(add("t", "s2"), -1) << text;
    EXPECT_EQ(easy_uci_delete_section(kProbe, "s"), -1) << text;
    EXPECT_EQ(board::read_file(kFile), content);
  }
  board::write_file(kFile, "option o 'before any section'\n");
  EXPECT_EQ(add("t", "s"), -1);
  std::filesystem::remove(kFile);
  std::filesystem::create_directory(kFile);
  EXPECT_EQ(add("t", "s"), -1);
  EXPECT_TRUE(std::filesystem::remove(kFile));
  std::filesystem::create_symlink(kFile, kFile);
  EXPECT_EQ(add("t", "s"), -1);
  EXPECT_TRUE(std::filesystem::is_symlink(kFile));
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(EasyUci, WritesTheUsualLayout) {
  board::write_file(kFile,
                    "# gone\nc interface lan\n o mtu \"1500\"\n l dns 1.1.1.1\n l dns 'b'\n");
  EXPECT_EQ(add("rule", nullptr), 0);
  EXPECT_EQ(set(nth("rule", 0)->c_str(), "name", "it's"), 0);
  EXPECT_EQ(add("odd#'type", "odd"), 0);
  EXPECT_EQ(add("bridge", "lan"), 0);
  EXPECT_EQ(board::read_file(kFile), R"(
config bridge 'lan'
	option mtu '1500'
	list dns '1.1.1.1'
	list dns 'b'

config rule
	option name 'it'\''s'

config 'odd#'\''type' 'odd'
)");
  EXPECT_EQ(set("lan", "dns", "1.1.1.1 b"), 0);
  EXPECT_EQ(easy_uci_delete_option(kProbe, "lan", "mtu"), 0);
  EXPECT_EQ(easy_uci_delete_section(kProbe, nth("rule", 0)->c_str()), 0);
  EXPECT_EQ(easy_uci_delete_section(kProbe, "odd"), 0);
  EXPECT_EQ(board::read_file(kFile), "\nconfig bridge 'lan'\n\toption dns '1.1.1.1 b'\n");
}

TEST_F(EasyUci, AnyValueAndTypeSurvivesTheFile) {
  std::string every_byte;
  for (int byte = 1; byte < 256; ++byte) every_byte += static_cast<char>(byte);
  const std::string values[] = {
      "plain",    " blank ends ",
      "'",        "''",
      "\\",       "\\'",
      "a\nb",     "\n",
      "\r\n",     "'\n\toption forged 'x",
      "#",        "\"",
      every_byte, std::string(19000, 'x'),
  };
  ASSERT_EQ(add("a\"b\\c;d", "s"), 0);
  for (const std::string& value : values) {
    ASSERT_EQ(set("s", "o", value), 0);
    // The appended comment makes the store read the text afresh, instead of trusting its memory.
    board::write_file(kFile, board::read_file(kFile) + "#\n");
    EXPECT_EQ(get("s", "o"), value);
    EXPECT_EQ(get("s", "forged"), std::nullopt);
    EXPECT_EQ(type_of("s"), "a\"b\\c;d");
  }
  EXPECT_EQ(set("s", "o", ""), 0);
  EXPECT_EQ(get("s", "o"), std::nullopt);
}

TEST_F(EasyUci, NamesAnonymousSectionsByOrdinalAndType) {
  board::write_file(kFile, "config dnsmasq\nconfig zone 'lan'\nconfig rule\nconfig rule ''\n");
  EXPECT_EQ(nth("dnsmasq", 0), "cfg01411c");
  EXPECT_EQ(nth("zone", 0), "lan");
  EXPECT_EQ(nth("rule", 1), "cfg0492bd");
  EXPECT_EQ(nth("rule", 2), std::nullopt);
  EXPECT_EQ(nth("rule", -1), std::nullopt);
  EXPECT_EQ(set("cfg0492bd", "target", "DROP"), 0);

  EXPECT_EQ(easy_uci_delete_section(kProbe, "cfg01411c"), 0);
  EXPECT_EQ(get("cfg0392bd", "target"), "DROP");
  EXPECT_EQ(type_of("cfg0492bd"), std::nullopt);

  // A name given by hand that looks like the generated one of another section.
  EXPECT_EQ(add("rule", "cfg0592bd"), 0);
  EXPECT_EQ(add("rule", nullptr), 0);
  EXPECT_EQ(nth("rule", 2), "cfg0592bd");
  ASSERT_NE(nth("rule", 3), "cfg0592bd");
  EXPECT_EQ(set(nth("rule", 3)->c_str(), "target", "ACCEPT"), 0);
  EXPECT_EQ(get("cfg0592bd", "target"), std::nullopt);

  const std::string longest(EASY_UCI_NAME_SIZE - 1, 'n');
  EXPECT_EQ(add("zone", (longest + 'n').c_str()), -1);
  EXPECT_EQ(add("zone", longest.c_str()), 0);
  EXPECT_EQ(nth("zone", 1), longest);
  board::write_file(kFile, "config zone '" + longest + "n'\n");
  EXPECT_EQ(nth("zone", 0), std::nullopt);
}

TEST_F(EasyUci, CutsWhatTheBufferCannotHold) {
  board::write_file(kFile, "config interface 's'\noption o 'abcdef'\nlist l 'ab'\nlist l 'cd'\n");
  const struct {
    const char* option;
    int max_length;
    const char* value;
  } cases[] = {{"o", 6, "abcdef"}, {"o", 5, "abcde"}, {"o", 0, ""},     {"l", 2, "ab"},
               {"l", 3, "ab "},    {"l", 4, "ab c"},  {"l", 9, "ab cd"}};
  for (const auto& [option, max_length, value] : cases) {
    std::string buffer(16, '!');
    ASSERT_EQ(easy_uci_get_option_string(kProbe, "s", option, buffer.data(), max_length), 0);
    EXPECT_STREQ(buffer.c_str(), value);
    EXPECT_EQ(buffer[static_cast<size_t>(max_length) + 1], '!') << option << max_length;
  }
  std::string buffer(16, '!');
  EXPECT_EQ(easy_uci_get_section_type(kProbe, "s", buffer.data(), 6), 0);
  EXPECT_EQ(buffer, std::string("inter\0!!!!!!!!!!", 16));
  EXPECT_EQ(easy_uci_get_section_type(kProbe, "s", buffer.data(), 0), -1);
  EXPECT_EQ(easy_uci_get_option_string(kProbe, "s", "o", buffer.data(), -1), -1);
  EXPECT_EQ(easy_uci_get_option_string(kProbe, "s", "absent", buffer.data(), 9), -1);
  EXPECT_EQ(buffer, std::string("inter\0!!!!!!!!!!", 16));
}

TEST_F(EasyUci, RefusesBadNamesAndNullArguments) {
  ASSERT_EQ(add("t", "s"), 0);
  ASSERT_EQ(set("s", "o", "v"), 0);
  const std::string content = board::read_file(kFile);
  board::clear_journal();
  for (const char* name : {"", "a b", "a.b", "a-b", "a'b", "x\n\toption y", "@t[0]", "\xc3\xa4"}) {
    EXPECT_EQ(set("s", name, "v"), -1) << name;
    EXPECT_EQ(set("s", name, ""), -1) << name;
    EXPECT_EQ(set(name, "o", "v"), -1) << name;
    EXPECT_EQ(add("t", name), -1) << name;
  }
  for (const char* type : {"", "a b", "t\nconfig x", "\x7f", "\xc3\xa4"}) {
    EXPECT_EQ(add(type, "x"), -1) << type;
    EXPECT_EQ(add(type, nullptr), -1) << type;
  }
  for (const char* package : {"", ".", "..", "../probe", "a.b", "a/b", "/etc/config/probe"}) {
    EXPECT_EQ(easy_uci_add_section(package, "t", "s"), -1) << package;
    EXPECT_EQ(easy_uci_set_option_string(package, "s", "o", "v"), -1) << package;
    EXPECT_EQ(easy_uci_get_section_type(package, "s", std::array<char, 9>{}.data(), 9), -1);
  }
  std::array<char, EASY_UCI_NAME_SIZE> buffer{};
  for (int missing = 0; missing < 4; ++missing) {
    const char* package = missing == 0 ? nullptr : kProbe;
    const char* first = missing == 1 ? nullptr : "s";
    const char* second = missing == 2 ? nullptr : "o";
    char* out = missing == 3 ? nullptr : buffer.data();
    EXPECT_EQ(easy_uci_get_option_string(package, first, second, out, 9), -1);
    EXPECT_EQ(easy_uci_set_option_string(package, first, second, out), -1);
    if (missing == 3) continue;
    EXPECT_EQ(easy_uci_delete_option(package, first, second), -1);
    if (missing == 2) continue;
    EXPECT_EQ(easy_uci_add_section(package, first, "x"), -1);
    EXPECT_EQ(easy_uci_delete_section(package, first), -1);
    EXPECT_EQ(easy_uci_get_section_type(package, first, out, 9), -1);
    EXPECT_EQ(easy_uci_get_nth_section_of_type(package, first, 0, out), -1);
  }
  EXPECT_EQ(easy_uci_get_section_type(kProbe, "s", nullptr, 9), -1);
  EXPECT_EQ(easy_uci_get_nth_section_of_type(kProbe, "t", 0, nullptr), -1);
  EXPECT_EQ(board::read_file(kFile), content);
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(EasyUci, NotesEveryStoreAndOnlyStores) {
  EXPECT_EQ(set("lan", "mtu", "1500"), -1);  // no file yet
  EXPECT_THAT(files_beside_probe(), IsEmpty());
  EXPECT_EQ(add("interface", "lan"), 0);
  EXPECT_EQ(set("wan", "mtu", "1500"), -1);
  EXPECT_EQ(set("lan", "mtu", "1500"), 0);
  const ino_t before = facts_of(kFile).st_ino;
  EXPECT_EQ(set("lan", "mtu", "1500"), 0);
  EXPECT_EQ(set("lan", "none", ""), 0);
  EXPECT_EQ(add("interface", "lan"), 0);
  EXPECT_EQ(facts_of(kFile).st_ino, before) << "rewritten though nothing changed";
  EXPECT_EQ(set("lan", "text", "a\nb\r\\"), 0);
  EXPECT_EQ(easy_uci_delete_option(kProbe, "lan", "mtu"), 0);
  EXPECT_EQ(easy_uci_delete_option(kProbe, "lan", "mtu"), -1);
  EXPECT_EQ(add("rule", nullptr), 0);
  EXPECT_EQ(easy_uci_delete_section(kProbe, "lan"), 0);
  EXPECT_EQ(easy_uci_delete_section(kProbe, "lan"), -1);
  ::setenv("ZELTO_BOARD_FIRMWARE", "1", 1);
  EXPECT_EQ(add("interface", "lan"), 0);
  ::unsetenv("ZELTO_BOARD_FIRMWARE");
  EXPECT_THAT(board::journal(),
              ElementsAre("uci add probe.lan=interface", "uci set probe.lan.mtu=1500",
                          "uci set probe.lan.mtu=1500",
                          "uci set probe.lan.none=", "uci add probe.lan=interface",
                          R"(uci set probe.lan.text=a\nb\r\\)", "uci del probe.lan.mtu",
                          "uci add probe.cfg0292bd=rule", "uci del probe.lan"));
}

TEST_F(EasyUci, KeepsTheModeOfAFile) {
  ASSERT_EQ(add("t", "s"), 0);
  EXPECT_EQ(facts_of(kFile).st_mode & 07777U, 0600U);
  ASSERT_EQ(::chmod(kFile.c_str(), 0644), 0);
  ASSERT_EQ(set("s", "o", "v"), 0);
  EXPECT_EQ(facts_of(kFile).st_mode & 07777U, 0644U);
  EXPECT_THAT(files_beside_probe(), ElementsAre(".probe.lock"));
}

TEST_F(EasyUci, SeesAnEditInPlaceAtOnce) {
  // The kernel keeps times by the tick only on this file system: several edits share one.
  ASSERT_EQ(::mount("ticks", kFolder.c_str(), "ramfs", 0, nullptr), 0);
  ASSERT_EQ(add("t", "s"), 0);
  ASSERT_EQ(set("s", "o", "000"), 0);
  for (int round = 100; round < 400; ++round) {
    const std::string value = std::to_string(round);
    if (round % 3 == 0) {
      ASSERT_EQ(set("s", "o", value), 0);
    } else {
      std::fstream file(kFile);
      file.seekp(static_cast<std::streamoff>(board::read_file(kFile).rfind("o '") + 3));
      file << value;
    }
    ASSERT_EQ(get("s", "o"), value);
  }
  // Long enough after the last write that the store answers from memory.
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  ASSERT_EQ(get("s", "o"), "399");
  board::write_file(kFile, "config t 's'\noption o '400'\n");
  EXPECT_EQ(get("s", "o"), "400");
  std::filesystem::remove(kFile);
  EXPECT_EQ(get("s", "o"), std::nullopt);
  EXPECT_EQ(::umount(kFolder.c_str()), 0);
}

TEST_F(EasyUci, WritersInManyProcessesLoseNothing) {
  constexpr int kWriters = 32;
  ASSERT_EQ(add("t", "s"), 0);
  std::array<int, 2> gate{};
  ASSERT_EQ(::pipe(gate.data()), 0);
  std::vector<pid_t> writers;
  writers.reserve(kWriters);
  for (int writer = 0; writer < kWriters; ++writer) {
    writers.push_back(spawn([&] {
      ::close(gate[1]);
      char byte = 0;
      if (::read(gate[0], &byte, 1) != 0) return false;
      const std::string name = "o" + std::to_string(writer);
      return set("s", name, name) == 0 && add("t", name.c_str()) == 0 &&
             set(name.c_str(), "own", name) == 0;
    }));
  }
  ::close(gate[0]);
  ::close(gate[1]);
  for (const pid_t writer : writers) EXPECT_EQ(status_of(writer), 0);
  for (int writer = 0; writer < kWriters; ++writer) {
    const std::string name = "o" + std::to_string(writer);
    EXPECT_EQ(get("s", name.c_str()), name);
    EXPECT_EQ(get(name.c_str(), "own"), name);
  }
  EXPECT_EQ(board::journal().size(), 1U + 3 * kWriters);
}

TEST_F(EasyUci, ThreadsLoseNothingAndReadWholeValues) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 25;
  ASSERT_EQ(add("t", "s"), 0);
  ASSERT_EQ(set("s", "shared", "aaaa"), 0);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread] {
      for (int round = 0; round < kRounds; ++round) {
        const std::string name = "o" + std::to_string(thread) + "_" + std::to_string(round);
        EXPECT_EQ(set("s", name, "v"), 0);
        EXPECT_EQ(get("s", name.c_str()), "v");
        EXPECT_EQ(set("s", "shared", round % 2 == 0 ? "aaaa" : "bbbb"), 0);
        EXPECT_THAT(get("s", "shared"), testing::AnyOf("aaaa", "bbbb"));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int option = 0; option < kThreads * kRounds; ++option) {
    const std::string name =
        "o" + std::to_string(option / kRounds) + "_" + std::to_string(option % kRounds);
    EXPECT_EQ(get("s", name.c_str()), "v") << name;
  }
}

TEST_F(EasyUci, AFullFileSystemLeavesTheOldFileWhole) {
  ASSERT_EQ(::mount("small", kFolder.c_str(), "tmpfs", 0, "size=64k"), 0);
  ASSERT_EQ(add("t", "s"), 0);
  ASSERT_EQ(set("s", "bulk", std::string(10000, 'b')), 0);
  const std::string content = board::read_file(kFile);
  const std::string filler = kFolder + "/filler";
  board::clear_journal();
  // With no room at all, and with room for a part of the new file.
  for (const off_t room : {0, 4096, 8192}) {
    {
      std::ofstream file(filler);
      while (file << std::string(4096, 'f') << std::flush) {
      }
    }
    ASSERT_EQ(::truncate(filler.c_str(), facts_of(filler).st_size - room), 0);
    EXPECT_EQ(set("s", "o", "new"), -1);
    EXPECT_EQ(add("t", "s2"), -1);
    EXPECT_EQ(board::read_file(kFile), content);
    EXPECT_EQ(get("s", "bulk"), std::string(10000, 'b'));
    EXPECT_EQ(get("s", "o"), std::nullopt);
    EXPECT_THAT(files_beside_probe(), ElementsAre(".probe.lock"));
    std::filesystem::remove(filler);
  }
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_EQ(set("s", "o", "new"), 0);
  EXPECT_EQ(::umount(kFolder.c_str()), 0);
}

TEST_F(EasyUci, AWriterKilledAtAnyMomentLeavesAWholeFile) {
  constexpr int kRounds = 150;
  const std::string values[] = {std::string(9000, 'a'), std::string(3, 'b')};
  ASSERT_EQ(add("t", "first"), 0);
  ASSERT_EQ(add("t", "last"), 0);
  ASSERT_EQ(set("first", "o", values[0]), 0);
  ASSERT_EQ(set("last", "o", "kept"), 0);
  for (int round = 0; round < kRounds; ++round) {
    const pid_t writer = spawn([&] {
      for (int turn = 0;; ++turn) set("first", "o", values[turn % 2]);
      return false;
    });
    ::usleep(static_cast<useconds_t>(37 * round % 3000));
    ASSERT_EQ(::kill(writer, SIGKILL), 0);
    ASSERT_TRUE(WIFSIGNALED(status_of(writer)));
    ASSERT_THAT(get("first", "o"), testing::AnyOf(values[0], values[1]));
    ASSERT_EQ(get("last", "o"), "kept");
    ASSERT_EQ(set("last", "round", std::to_string(round)), 0) << "lock or temporary in the way";
  }
  EXPECT_THAT(files_beside_probe(), ElementsAre(".probe.lock"));
}

}  // namespace
