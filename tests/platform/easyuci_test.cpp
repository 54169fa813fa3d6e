// The configuration store: what a file means, what a write makes of it, and what is refused.
#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "platform/easyuci_fixture.h"

namespace easyuci_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(EasyUci, ReadsWhatTheFileMeans) {
  const struct {
    const char* text;  // of option `o`, in section `s` unless it opens one itself
    std::optional<std::string> value;
  } cases[] = {
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
  };
  for (const auto& [text, value] : cases) {
    board::write_file(kFile, std::string("config t 's'\n") + text);
    EXPECT_EQ(get("s", "o"), value) << text;
    EXPECT_EQ(type_of("s"), "t") << text;
  }
}

TEST_F(EasyUci, LeavesAFileAloneThatItCannotRead) {
  const std::string texts[] = {"option 'open",
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
                               std::string("option o 'a\0b'", 14)};
  for (const std::string& text : texts) {
    const std::string content = "config t 's'\n\toption whole 'x'\n" + text;
    board::write_file(kFile, content);
    EXPECT_EQ(get("s", "whole"), std::nullopt) << text;
    EXPECT_EQ(nth("t", 0), std::nullopt) << text;
    EXPECT_EQ(set("s", "whole", "y"), -1) << text;
    EXPECT_EQ(add("t", "s2"), -1) << text;
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
  const std::string values[] = {" blank ends ",
                                "'",
                                "\\",
                                "\\'",
                                "#",
                                "\"",
                                "a\nb",
                                "\r\n",
                                "'\n\toption forged 'x",
                                every_byte,
                                std::string(19000, 'x')};
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

  EXPECT_EQ(add("host", "cfg0392bd"), 0);
  EXPECT_EQ(easy_uci_delete_section(kProbe, "lan"), 0);
  EXPECT_EQ(get("cfg0392bd", "target"), "DROP");

  const std::string longest(EASY_UCI_NAME_SIZE - 1, 'n');
  EXPECT_EQ(add("zone", (longest + 'n').c_str()), -1);
  EXPECT_EQ(add("zone", longest.c_str()), 0);
  EXPECT_EQ(nth("zone", 0), longest);
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
    const char* section = missing == 1 ? nullptr : "s";
    const char* option = missing == 2 ? nullptr : "o";
    char* out = missing == 3 ? nullptr : buffer.data();
    EXPECT_EQ(easy_uci_get_option_string(package, section, option, out, 9), -1);
    EXPECT_EQ(easy_uci_set_option_string(package, section, option, out), -1);
    if (missing == 3) continue;
    EXPECT_EQ(easy_uci_delete_option(package, section, option), -1);
    if (missing == 2) continue;
    EXPECT_EQ(easy_uci_add_section(package, section, "x"), -1);
    EXPECT_EQ(easy_uci_delete_section(package, section), -1);
    EXPECT_EQ(easy_uci_get_section_type(package, section, out, 9), -1);
    EXPECT_EQ(easy_uci_get_nth_section_of_type(package, section, 0, out), -1);
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

}  // namespace
}  // namespace easyuci_test
