// Disks: which one is read and written, what a hostile one can do, and what is shared of them.

#include <sys/mount.h>
#include <sys/stat.h>

#include "storage/storage_test.h"

namespace zelto_test {
namespace {

class Disks : public StorageTest {
 protected:
  // The disks in the order in which the library finds them.
  static Lines plugged(const Lines& names) {
    for (const auto& name : names) board::add_usb_disk(name);
    Lines found;
    for (const auto& entry : std::filesystem::directory_iterator("/mnt")) {
      found.push_back(entry.path().string());
    }
    return found;
  }
};

TEST_F(Disks, TheFirstThatHasAFileIsReadAndWritten) {
  const auto disks = plugged({"sda1", "sdb1"});
  ASSERT_EQ(disks.size(), 2U);
  board::write_file(disks[0] + "/.ftp_user_pass", "incomplete\n");
  board::write_file(disks[1] + "/.ftp_user_pass", "anna\r\np\r\n");
  EXPECT_EQ(ask(command("getftpcfg")), ftp("anna", "p"));
  board::remove_file(disks[0] + "/.ftp_user_pass");
  EXPECT_EQ(ask(set_ftp("ben", "p")), result("setftpcfg", 0));
  EXPECT_EQ(board::read_file(disks[1] + "/.ftp_user_pass"), "ben\np\n");
  EXPECT_EQ(board::read_file(disks[0] + "/.ftp_user_pass"), "");
  EXPECT_EQ(ask(set_samba("carl", "p")), result("setsambacfg", 0));
  EXPECT_EQ(board::read_file(disks[0] + "/.samba_user_pass"), "carl\np\n") << "new: on the first";
  // Be it an empty one.
  board::write_file(disks[0] + "/.samba_share_dir", "");
  board::write_file(disks[1] + "/.samba_share_dir", "/mnt/sdb1/films\n");
  EXPECT_EQ(ask(command("getsambacfg")), samba("carl", "p"));
}

TEST_F(Disks, WhatAHostileOneBringsAlongIsNotThere) {
  const auto disk = plugged({"sda1"}).front();
  const auto reset_files = [&](const char* action) {
    for (const char* file :
         {"/.ftp_user_pass", "/.ftp_share_dir", "/.samba_user_pass", "/.samba_share_dir"}) {
      const auto path = disk + file;
      std::filesystem::remove(path);
      if (std::string(action) == "link") std::filesystem::create_symlink("/etc/two_lines", path);
      if (std::string(action) == "pipe") mkfifo(path.c_str(), 0600);
      if (std::string(action) == "folder") std::filesystem::create_directory(path);
      if (action[0] == '/') board::write_file(path, action);
    }
  };
  board::write_file("/etc/two_lines", "/mnt/sda1\np\n");
  for (const char* action : {"link", "pipe", "folder", "/etc\n/etc/passwd\n", "/mnt/../etc\n\n",
                             "/mnt/sda1/..\n/mntx\n", "/mnt/a\tb\n/mnt/a\x7f\n"}) {
    reset_files(action);
    EXPECT_EQ(ask(command("getftpcfg")), ftp("", "")) << action;
    EXPECT_EQ(ask(command("getsambacfg")), samba("", "")) << action;
  }
  reset_files("link");
  EXPECT_EQ(ask(set_ftp("anna", "p")), result("setftpcfg", 0));
  EXPECT_EQ(ask(set_paths({"/mnt/sda1/x"})), result("setsambapath", 0));
  EXPECT_EQ(board::read_file("/etc/two_lines"), "/mnt/sda1\np\n");
  EXPECT_EQ(ask(command("getftpcfg")), ftp("anna", "p"));
  for (const std::string path : {"/etc", "/mnt", "/mnt/../etc", "/mnt/sda1/..", "/mnt/a\\nb", ""}) {
    expect_refused("setftppath", R"("ftppath":")" + path + "\"");
    expect_refused("setsambapath", R"("list":[{"sambapath":")" + path + "\"}]");
  }
}

TEST_F(Disks, SharesEightFoldersAndReadsSevenBack) {
  const auto disk = plugged({"sda1"}).front();
  EXPECT_EQ(ask(set_samba("anna", "p")), result("setsambacfg", 0));
  Lines paths = {disk + "/Mum's \"best\" $films/", disk + "/;reboot"};
  while (paths.size() < 8) paths.push_back(disk + "/" + std::to_string(paths.size()));
  EXPECT_EQ(ask(set_paths(paths)), result("setsambapath", 0));
  EXPECT_THAT(samba_sections("name"),
              ElementsAre("Mum's \"best\" $films", ";reboot", "2", "3", "4", "5", "6", "7"));
  EXPECT_EQ(samba_sections("path"), paths);
  EXPECT_EQ(samba_sections("users"), Lines(8, "anna"));
  EXPECT_EQ(ask(command("getsambacfg")), samba("anna", "p", {paths.begin(), paths.end() - 1}));
  paths.push_back(disk + "/8");
  expect(set_paths(paths), result("setsambapath", 2), "");
  EXPECT_EQ(ask(command("delsambapath", member("sambapath", paths[0]))), result("delsambapath", 0));
  EXPECT_EQ(samba_sections("path"), Lines(paths.begin() + 1, paths.begin() + 7));
  expect_refused("setsambapath", R"("list":[{}])");
  board::remove_file(disk + "/.samba_share_dir");
  EXPECT_EQ(ask(command("delsambapath", R"("sambapath":"/mnt/x")")), result("delsambapath", 0));
  EXPECT_THAT(samba_sections("path"), IsEmpty());
}

TEST_F(Disks, OneThatCannotBeWrittenKeepsWhatItHas) {
  const auto disk = plugged({"sda1"}).front();
  EXPECT_EQ(ask(set_ftp("anna", "p")), result("setftpcfg", 0));
  EXPECT_EQ(ask(set_samba("anna", "p")), result("setsambacfg", 0));
  EXPECT_EQ(ask(set_paths({disk + "/films", disk + "/a"})), result("setsambapath", 0));
  EXPECT_EQ(ask(command("setftppath", R"("ftppath":"/mnt/sda1/a")")), result("setftppath", 0));
  const std::pair<std::string, std::string> changes[] = {
      {set_ftp("ben", "q"), ".ftp_user_pass"},
      {set_samba("ben", "q"), ".samba_user_pass"},
      {set_paths({disk + "/b"}), ".samba_share_dir"},
      {command("delsambapath", member("sambapath", disk + "/films")), ".samba_share_dir"},
      {command("setftppath", R"("ftppath":"/mnt/sda1/b")"), ".ftp_share_dir"},
  };
  const auto expect_kept = [&] {
    for (const auto& [request, file] : changes) {
      const auto type = request.substr(9, request.find('"', 9) - 9);
      expect(request, result(type, 1), "");
      EXPECT_EQ(board::log().back(), "<3>fopen " + disk + "/" + file + " for write error!");
    }
    EXPECT_EQ(ask(command("getftpcfg")), ftp("anna", "p", "/mnt/sda1/a"));
    EXPECT_EQ(ask(command("getsambacfg")), samba("anna", "p", {disk + "/films", disk + "/a"}));
  };
  EXPECT_NE(board::quiet({"dd", "if=/dev/zero", "of=" + disk + "/full", "bs=4k"}), 0);
  expect_kept();
  board::remove_file(disk + "/full");
  ASSERT_EQ(mount(nullptr, disk.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
  expect_kept();
}

TEST_F(Disks, AreFoundAndEjected) {
  const auto usb = [](const char* state) {
    return command("getusbenable", member("usbenable", state));
  };
  EXPECT_EQ(ask(command("getusbenable")), usb("disable"));
  board::add_usb_disk("My disk", {"Mum's \"films\"", ".hidden"});
  board::add_usb_disk("files only");
  board::write_file("/mnt/My disk/file", "");
  board::write_file("/mnt/files only/file", "");
  std::filesystem::create_directory_symlink("/etc", "/mnt/My disk/link");
  EXPECT_EQ(ask(command("getusbenable")), usb("enable"));
  const auto reply = ask(command("getusballpath"));
  for (const std::string folder : {"Mum's \"films\"", ".hidden"}) {
    EXPECT_THAT(reply, testing::HasSubstr("{" + member("usbpath", "/mnt/My disk/" + folder + "/")));
  }
  EXPECT_THAT(reply, testing::Not(testing::ContainsRegex("only|link|file/")));
  expect(command("umountusb"), result("umountusb", 0),
         "run /etc/init.d/samba stop 2>/dev/null &\nrun /etc/init.d/vsftpd stop 2>/dev/null &\n"
         "run umount /mnt/*;rm -rf /mnt/*");
  EXPECT_TRUE(std::filesystem::is_empty("/mnt"));
  EXPECT_EQ(ask(command("getusballpath")), command("getusballpath", R"("list":[])"));
}

TEST_F(Disks, WithoutOneNothingCanBeSet) {
  EXPECT_EQ(ask(command("getftpcfg")), ftp("", ""));
  EXPECT_EQ(ask(command("getsambacfg")), samba("", ""));
  for (const auto& request :
       {set_ftp("anna", "p"), set_samba("anna", "p"), set_paths({"/mnt/x"}),
        command("setftppath", R"("ftppath":"/mnt/x")"), command("delftppath")}) {
    expect(request, result(request.substr(9, request.find('"', 9) - 9), 1), "");
    EXPECT_EQ(board::log().back(), "<3>not have mount usb!");
  }
  std::array<char, ZELTO_SHARE_PATH_SIZE> user{'u'};
  get_ftp_user_passwd(user.data(), nullptr);
  get_ftp_share_dir(user.data());
  EXPECT_STREQ(user.data(), "u");
  EXPECT_EQ(check_system_user("root"), 0) << "fields are divided by \":\"";
  EXPECT_EQ(ask(command("delsambapath", R"("sambapath":"/mnt/x")")), result("delsambapath", 0));
}

}  // namespace
}  // namespace zelto_test
