// The configuration store under rivals, foreign edits and full disks.
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <thread>

#include "platform/easyuci_fixture.h"

namespace easyuci_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

class EasyUciFile : public EasyUci {};

TEST_F(EasyUciFile, KeepsTheModeOfAFile) {
  ASSERT_EQ(add("t", "s"), 0);
  EXPECT_EQ(facts_of(kFile).st_mode & 07777U, 0600U);
  ASSERT_EQ(::chmod(kFile.c_str(), 0644), 0);
  ASSERT_EQ(set("s", "o", "v"), 0);
  EXPECT_EQ(facts_of(kFile).st_mode & 07777U, 0644U);
  EXPECT_THAT(files_beside_probe(), ElementsAre(".probe.lock"));
}

TEST_F(EasyUciFile, SeesAnEditInPlaceAtOnce) {
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

TEST_F(EasyUciFile, WritersInManyProcessesLoseNothing) {
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

TEST_F(EasyUciFile, ThreadsLoseNothingAndReadWholeValues) {
  constexpr int kThreads = 8;
  constexpr int kRounds = 25;
  ASSERT_EQ(add("t", "s"), 0);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread] {
      for (int round = 0; round < kRounds; ++round) {
        const std::string name = "o" + std::to_string(thread * kRounds + round);
        EXPECT_EQ(set("s", name, "v"), 0);
        EXPECT_EQ(get("s", name.c_str()), "v");
        EXPECT_EQ(set("s", "shared", round % 2 == 0 ? "aaaa" : "bbbb"), 0);
        EXPECT_THAT(get("s", "shared"), testing::AnyOf("aaaa", "bbbb"));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int option = 0; option < kThreads * kRounds; ++option) {
    EXPECT_EQ(get("s", ("o" + std::to_string(option)).c_str()), "v") << option;
  }
}

TEST_F(EasyUciFile, AFullFileSystemLeavesTheOldFileWhole) {
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

}  // namespace
}  // namespace easyuci_test
