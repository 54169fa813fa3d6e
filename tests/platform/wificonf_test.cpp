#include <gmock/gmock.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "board/board.h"
#include "platform/wifi_conf.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kFolder = "/etc/wireless/mt7628";
const std::string kProfile = kFolder + "/mt7628.dat";
const std::string kProfile5G = "/etc/wireless/mt7663/mt7663.dat";
const std::string kStaleTemporary = kFolder + "/.mt7628.dat.new";

const std::string kSample =
    "Default\n"
    "# SSID1=a comment\n"
    "#SSID1=another\n"
    "SSID1=home net; 50%=\"half\"\xc3\xa9 \n"
    "SSID12=x\n"
    "ssid1=lower\n"
    "AuthMode=WPA2PSK;OPEN;\n"
    "Empty=\n"
    "WIFIEnable=1\r\n"
    "WIFIEnable=7\n"
    "Last=no line end";

class WifiConf : public testing::Test {
 protected:
  void SetUp() override {
    board::reset();
    board::write_file(kProfile, kSample);
    board::write_file(kProfile5G, "Default\nSSID1=five\n");
  }
};

std::string get_2g(const char* key, int index = WIFI_CONF_WHOLE_VALUE) {
  std::array<char, WIFI_CONF_VALUE_SIZE> buffer{};
  return lib_conf_get_2G(key, index, buffer.data()) == 0 ? buffer.data() : "(failed)";
}

TEST_F(WifiConf, ReadsValuesAndElements) {
  const struct {
    const char* key;
    int index;
    const char* value;
  } kCases[] = {
      {"SSID1", -1, "home net; 50%=\"half\"\xc3\xa9 "},
      {"SSID1", 1, " 50%=\"half\"\xc3\xa9 "},
      {"ssid1", -1, "lower"},
      {"SSID", -1, "(failed)"},
      {"#SSID1", -1, "(failed)"},
      {"", -1, "(failed)"},
      {"AuthMode", -1, "WPA2PSK;OPEN;"},
      {"AuthMode", 0, "WPA2PSK"},
      {"AuthMode", 1, "OPEN"},
      {"AuthMode", 2, ""},
      {"AuthMode", 3, "(failed)"},
      {"AuthMode", 2147483647, "(failed)"},
      {"AuthMode", -2, "(failed)"},
      {"Empty", -1, ""},
      {"Empty", 0, ""},
      {"Empty", 1, "(failed)"},
      {"WIFIEnable", -1, "1"},
      {"Last", -1, "no line end"},
  };
  for (const auto& each : kCases) {
    EXPECT_EQ(get_2g(each.key, each.index), each.value) << each.key << " " << each.index;
  }
}

TEST_F(WifiConf, FailedReadEmptiesTheBuffer) {
  std::array<char, WIFI_CONF_VALUE_SIZE> buffer{};
  buffer.fill('x');
  EXPECT_EQ(lib_conf_get_2G("Missing", -1, buffer.data()), -1);
  EXPECT_STREQ(buffer.data(), "");
  board::remove_file(kProfile);
  EXPECT_EQ(lib_conf_get_2G("SSID1", -1, buffer.data()), -1);
  EXPECT_EQ(lib_conf_get_2G(nullptr, -1, buffer.data()), -1);
  EXPECT_EQ(lib_conf_get_2G("SSID1", -1, nullptr), -1);
}

TEST_F(WifiConf, WritesOneValueAndLeavesTheRest) {
  const struct {
    const char* key;
    int index;
    const char* value;
    const char* old_line;  // empty: appended as a last line
    const char* new_line;
    const char* journal;
  } kCases[] = {
      {"SSID1", -1, " a;b=c\\'\t", "\nSSID1=home net; 50%=\"half\"\xc3\xa9 \n",
       "\nSSID1= a;b=c\\'\t\n", "wifi 2.4G set SSID1= a;b=c\\\\'\t"},
      {"AuthMode", 0, "OPEN", "=WPA2PSK;", "=OPEN;", "wifi 2.4G set AuthMode[0]=OPEN"},
      {"AuthMode", 2, "SAE", ";OPEN;\n", ";OPEN;SAE\n", "wifi 2.4G set AuthMode[2]=SAE"},
      {"SSID12", 3, "y", "SSID12=x\n", "SSID12=x;;;y\n", "wifi 2.4G set SSID12[3]=y"},
      {"Empty", 1, "", "Empty=\n", "Empty=;\n", "wifi 2.4G set Empty[1]="},
      {"WIFIEnable", -1, "0", "WIFIEnable=1\r\n", "WIFIEnable=0\r\n", "wifi 2.4G set WIFIEnable=0"},
      {"Last", -1, "", "=no line end", "=", "wifi 2.4G set Last="},
      {"New", -1, "n", "", "\nNew=n\n", "wifi 2.4G set New=n"},
      {"New", 1, "n", "", "\nNew=;n\n", "wifi 2.4G set New[1]=n"},
      {"SSID12", -1, "x", "SSID12=x\n", "SSID12=x\n", "wifi 2.4G set SSID12=x"},
  };
  for (const auto& each : kCases) {
    SetUp();
    std::string expected = kSample;
    const std::string old_line = each.old_line;
    const size_t position = old_line.empty() ? expected.size() : expected.find(old_line);
    expected.replace(position, old_line.size(), each.new_line);

    EXPECT_EQ(lib_conf_set_2G(each.key, each.index, each.value), 0);
    EXPECT_EQ(board::read_file(kProfile), expected);
    EXPECT_THAT(board::journal(), ElementsAre(each.journal));
  }
  EXPECT_EQ(board::read_file(kProfile5G), "Default\nSSID1=five\n");
}

TEST_F(WifiConf, RefusesWhatWouldNotReadBack) {
  const std::string too_long(WIFI_CONF_VALUE_SIZE, 'x');
  const struct {
    const char* key;
    int index;
    const char* value;
  } kCases[] = {
      {"SSID1", -1, "a\nb"},
      {"SSID1", -1, "a\r"},
      {"AuthMode", 0, "a;b"},
      {"AuthMode", 16, "a"},
      {"AuthMode", -2, "a"},
      {"", -1, "a"},
      {"#SSID1", -1, "a"},
      {"SSID 1", -1, "a"},
      {"SSID1=x\nKey", -1, "a"},
      {"SSID1", -1, nullptr},
      {nullptr, -1, "a"},
      {"SSID1", -1, too_long.c_str()},
      {"AuthMode", 1, too_long.c_str() + 8},
  };
  for (const auto& each : kCases) EXPECT_EQ(lib_conf_set_2G(each.key, each.index, each.value), -1);
  EXPECT_EQ(board::read_file(kProfile), kSample);
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(WifiConf, LongestValueFitsAndALongerOneIsCut) {
  const std::string longest(WIFI_CONF_VALUE_SIZE - 1, 'x');
  EXPECT_EQ(lib_conf_set_2G("SSID1", -1, longest.c_str()), 0);
  EXPECT_EQ(get_2g("SSID1"), longest);
  board::write_file(kProfile, "SSID1=" + longest + "yz\n");
  EXPECT_EQ(get_2g("SSID1"), longest);
}

TEST_F(WifiConf, BandsAreApartAndAMissingRadioFails) {
  EXPECT_EQ(lib_conf_set_5G("AuthMode", 1, "OPEN"), 0);
  EXPECT_EQ(board::read_file(kProfile5G), "Default\nSSID1=five\nAuthMode=;OPEN\n");
  EXPECT_EQ(board::read_file(kProfile), kSample);
  EXPECT_THAT(board::journal(), ElementsAre("wifi 5G set AuthMode[1]=OPEN"));

  board::remove_file(kProfile5G);
  std::array<char, WIFI_CONF_VALUE_SIZE> buffer{};
  EXPECT_EQ(lib_conf_get_5G("SSID1", -1, buffer.data()), -1);
  EXPECT_EQ(lib_conf_set_5G("SSID1", -1, "x"), -1);
  EXPECT_FALSE(std::filesystem::exists(kProfile5G));
}

TEST_F(WifiConf, KeepsModeOwnerAndLink) {
  const std::string target = "/tmp/profile.dat";
  board::write_file(target, kSample);
  ASSERT_EQ(chown(target.c_str(), 0, 0), 0);
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  std::filesystem::remove(kProfile);
  std::filesystem::create_symlink(target, kProfile);
  // What a writer that was killed left behind is in nobody's way.
  board::write_file(kStaleTemporary, "half a pro");

  EXPECT_EQ(lib_conf_set_2G("Last", -1, "1"), 0);
  EXPECT_TRUE(std::filesystem::is_symlink(kProfile));
  struct stat facts {};
  ASSERT_EQ(stat(target.c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0640u);
  EXPECT_EQ(get_2g("Last"), "1");
  std::filesystem::remove(kProfile);
}

TEST_F(WifiConf, FullDiskLeavesTheOldProfile) {
  ASSERT_EQ(mount("tmpfs", kFolder.c_str(), "tmpfs", 0, "size=16k"), 0);
  const std::string profile = "SSID1=" + std::string(3000, 'a') + "\n# " + std::string(2000, 'b');
  const std::string value(3000, 'c');
  board::write_file(kProfile, profile);
  // Room for a part of the new profile only.
  board::write_file(kFolder + "/filler", std::string(4096, 'f'));

  EXPECT_EQ(lib_conf_set_2G("SSID1", -1, value.c_str()), -1);
  EXPECT_TRUE(board::read_file(kProfile) == profile);
  EXPECT_FALSE(std::filesystem::exists(kStaleTemporary));
  EXPECT_THAT(board::journal(), IsEmpty());

  board::remove_file(kFolder + "/filler");
  EXPECT_EQ(lib_conf_set_2G("SSID1", -1, value.c_str()), 0);
  EXPECT_EQ(get_2g("SSID1"), value);
  EXPECT_EQ(umount(kFolder.c_str()), 0);
}

TEST_F(WifiConf, NoConcurrentChangeIsLost) {
  constexpr int kProcesses = 4;
  constexpr int kThreads = 4;
  constexpr int kRounds = 32;
  const auto key = [](int process, int thread, int round) {
    return "Key" + std::to_string((process * kThreads + thread) * kRounds + round);
  };
  std::vector<pid_t> children;
  for (int process = 0; process < kProcesses; ++process) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      std::atomic<bool> all_done = true;
      {
        std::array<std::jthread, kThreads> writers;
        for (int thread = 0; thread < kThreads; ++thread) {
          writers.at(static_cast<size_t>(thread)) = std::jthread([&, thread] {
            for (int round = 0; round < kRounds; ++round) {
              if (lib_conf_set_2G(key(process, thread, round).c_str(), -1, "x") != 0) {
                all_done = false;
              }
            }
          });
        }
      }
      _exit(all_done ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  for (int number = 0; number < kProcesses * kThreads * kRounds; ++number) {
    EXPECT_EQ(get_2g(("Key" + std::to_string(number)).c_str()), "x") << number;
  }
}

TEST_F(WifiConf, KilledWriterLeavesAWholeProfile) {
  const std::array<std::string, 2> values = {std::string(4000, 'a'), std::string(20, 'b')};
  ASSERT_EQ(lib_conf_set_2G("SSID1", -1, values[0].c_str()), 0);
  for (int round = 0; round < 20; ++round) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      for (size_t i = 0;; i = 1 - i) lib_conf_set_2G("SSID1", -1, values.at(i).c_str());
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(2 + round));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);

    const std::string value = get_2g("SSID1");
    EXPECT_TRUE(value == values[0] || value == values[1]) << value;
    EXPECT_EQ(get_2g("Last"), "no line end");
  }
  EXPECT_EQ(lib_conf_set_2G("Last", -1, "the lock is free"), 0);
}

}  // namespace
