// Accounts of the file services: what is refused, what arrives, and what is kept.

#include "storage/storage_test.h"

namespace zelto_test {
namespace {

constexpr const char* kFtpFile = "/mnt/sda1/.ftp_user_pass";
constexpr const char* kSambaFile = "/mnt/sda1/.samba_user_pass";

class Accounts : public StorageTest {
 protected:
  void SetUp() override {
    StorageTest::SetUp();
    board::add_usb_disk("sda1", {"films"});
  }
};

TEST_F(Accounts, PasswordsArriveAsTheyAre) {
  for (const std::string& password :
       {std::string("it's"), std::string(R"("$HOME" $(touch /tmp/pwned) `touch /tmp/pwned`)"),
        std::string("a:b::"), std::string("  blanks  "), std::string(R"(\back\\slash\n\c)"),
        std::string("-x"), std::string(";touch /tmp/pwned #"), std::string("&|<>(){}*?[a]~!%s"),
        std::string("gr\xC3\xBC\xC3\x9F"), std::string(200, '\'')}) {
    EXPECT_EQ(ask(set_ftp("anna", password)), result("setftpcfg", 0)) << password;
    EXPECT_EQ(ask(set_samba("ben", password)), result("setsambacfg", 0)) << password;
    EXPECT_TRUE(has_password("anna", password)) << password;
    EXPECT_TRUE(has_samba_password("ben", password)) << password;
    EXPECT_EQ(ask(command("getftpcfg")), ftp("anna", password));
    EXPECT_EQ(ask(command("getsambacfg")), samba("ben", password));
    EXPECT_EQ(board::read_file(kFtpFile), "anna\n" + password + "\n");
  }
  EXPECT_EQ(board::quiet({"test", "-e", "/tmp/pwned"}), 1);
  EXPECT_EQ(board::read_file("/etc/vsftpd/vsftpd.users"), "anna\n");
}

TEST_F(Accounts, NamesAndPasswordsThatAreRefused) {
  for (const std::string& user :
       {std::string(), std::string("-x"), std::string("a b"), std::string("a;b"),
        std::string("a$b"), std::string("a:b"), std::string("../a"), std::string("1000"),
        std::string(".."), std::string("\xC3\xBC"), std::string(33, 'u'), std::string("root"),
        std::string("nobody")}) {
    expect(set_ftp(user, "p"), result("setftpcfg", 1), "");
    expect(set_samba(user, "p"), result("setsambacfg", 1), "");
    // Nor is one deleted that a disk brings along.
    board::write_file(kFtpFile, user + "\np\n");
    board::write_file(kSambaFile, user + "\np\n");
    EXPECT_EQ(ask(command("getftpcfg")), ftp("", ""));
    EXPECT_EQ(ask(command("getsambacfg")), samba("", ""));
    EXPECT_EQ(ask(command("delftppath")), result("delftppath", 0));
    EXPECT_EQ(ask(set_samba("ben", "p")), result("setsambacfg", 0));
    EXPECT_THAT(board::journal(), testing::Not(testing::Contains(testing::HasSubstr("userdel"))));
    EXPECT_EQ(board::quiet({"rm", kFtpFile, kSambaFile}), 0);
  }
  for (const char* password : {"", "-n", "-eEn", "a\\nb", "a\\tb", "a\\u007f"}) {
    const std::string member = std::string(R"(passwd":")") + password + "\"";
    expect(command("setftpcfg", R"("ftpuser":"anna","ftp)" + member), result("setftpcfg", 1), "");
    expect(command("setsambacfg", R"("sambauser":"anna","samba)" + member),
           result("setsambacfg", 1), "");
  }
  expect(set_ftp("anna", std::string(512, 'p')), result("setftpcfg", 1), "");
  expect_refused("setftpcfg", R"("ftpuser":"anna")");
  EXPECT_EQ(board::quiet({"test", "-e", kFtpFile}), 1);
}

TEST_F(Accounts, AnFtpAccountReplacesTheOldOne) {
  const auto created = [](const std::string& user, const std::string& home) {
    return with(
        "run useradd HOME-s /bin/false USER\nrun echo \"USER:p\" | chpasswd\n"
        "run touch /etc/vsftpd/chroot_list\nstart /etc/init.d/vsftpd restart &",
        {{"USER", user}, {"HOME", home}});
  };
  const auto listed = [](const std::string& user) {
    return "run echo \"" + user + "\" > /etc/vsftpd/vsftpd.users\n";
  };
  const auto done = result("setftpcfg", 0);
  expect(set_ftp("anna", "p"), done, listed("anna") + created("anna", ""));
  const std::string deleted = "run userdel anna 2>/dev/null\n";
  const std::string home = "-d '/mnt/sda1/our films' ";
  expect(command("setftppath", R"("ftppath":"/mnt/sda1/our films")"), result("setftppath", 0),
         deleted + created("anna", home));
  EXPECT_THAT(board::read_file("/etc/passwd"),
              testing::HasSubstr("\nanna:x:1000:1000::/mnt/sda1/our films:/bin/false\n"));
  EXPECT_EQ(ask(command("getftpcfg")), ftp("anna", "p", "/mnt/sda1/our films"));
  expect(set_ftp("ben", "p"), done, deleted + listed("ben") + created("ben", home));
  expect(command("delftppath"), result("delftppath", 0),
         "run userdel ben 2>/dev/null\n" + created("ben", ""));
  EXPECT_EQ(ask(set_samba("ben", "s")), result("setsambacfg", 0));
  expect(set_ftp("carl", "p"), done, listed("carl") + created("carl", ""));
  EXPECT_TRUE(has_password("ben", "p")) << "is Samba's as well";
}

TEST_F(Accounts, ASambaAccountIsChangedWhileTheServiceRuns) {
  const std::string created =
      "run useradd -s /bin/false USER;(echo p;echo p) | "
      "smbpasswd -a -s USER 1>/dev/null 2>&1\n";
  const std::string deleted =
      "run smbpasswd -x USER 1>/dev/null 2>&1;userdel USER "
      "1>/dev/null 2>&1\n";
  const std::string begun = "uci set system.route.samba=1\nrun /etc/init.d/samba start\n";
  const std::string ended = "uci set system.route.samba=0\nrun /etc/init.d/samba stop\n";
  const std::string restart = "start /etc/init.d/samba restart &";
  const auto done = result("setsambacfg", 0);
  expect(set_samba("anna", "p"), done, begun + with(created, {{"USER", "anna"}}) + ended + restart);
  given("system", "route", "samba", "1");
  EXPECT_EQ(ask(set_paths({"/mnt/sda1/films/"})), result("setsambapath", 0));
  expect(set_samba("ben", "p"), done,
         "run /etc/init.d/samba restart\n" + with(deleted, {{"USER", "anna"}}) +
             with(created, {{"USER", "ben"}}) +
             "uci del samba.cfg*\nuci add samba.cfg*=sambashare\n"
             "uci set samba.cfg*.{name=films, path=/mnt/sda1/films/, users=ben, read_only=no, "
             "guest_ok=no, create_mask=0777, dir_mask=0777}\n" +
             restart);
  EXPECT_EQ(ask(set_ftp("ben", "f")), result("setftpcfg", 0));
  EXPECT_EQ(ask(set_samba("carl", "p")), done);
  EXPECT_TRUE(has_samba_password("ben", "p")) << "is FTP's as well";
  EXPECT_TRUE(has_samba_password("carl", "p"));
}

TEST_F(Accounts, Switches) {
  for (const std::string service : {"ftp", "samba"}) {
    const std::string daemon = service == "ftp" ? "vsftpd" : service;
    const auto type = "set" + service + "switch";
    for (const std::string state : {"on", "1"}) {
      const bool is_on = state == "on";
      expect(command(type, member("Switch", state)), result(type, 0),
             "uci set system.route." + daemon + (is_on ? "=1" : "=0") + "\nstart /etc/init.d/" +
                 daemon + (is_on ? " restart &" : " stop &"));
      EXPECT_THAT(ask(command("get" + service + "cfg")),
                  testing::HasSubstr(is_on ? R"("Switch":"on")" : R"("Switch":"off")"));
    }
    expect_refused(type, R"("Switch":1)");
  }
}

}  // namespace
}  // namespace zelto_test
