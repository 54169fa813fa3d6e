#include "board/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "board/board.h"

namespace board {

namespace fs = std::filesystem;

std::runtime_error system_failure(const std::string& what) {
  return std::runtime_error(what + ": " + std::strerror(errno));
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    reset();
    number_ = other.release();
  }
  return *this;
}

int Descriptor::release() {
  return std::exchange(number_, -1);
}

void Descriptor::reset() {
  if (number_ >= 0) close(number_);
  number_ = -1;
}

bool write_all(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    text.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

std::string read_file(const std::string& path) {
  // A file of /proc may go away while it is being read; what was read until then is the answer.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::string content;
  std::array<char, 4096> block{};
  ssize_t count = 0;
  while (file.valid() && (count = read(file.get(), block.data(), block.size())) != 0) {
    if (count < 0 && errno != EINTR) break;
    if (count > 0) content.append(block.data(), static_cast<size_t>(count));
  }
  return content;
}

void write_file(const std::string& path, std::string_view content) {
  std::error_code ignored;
  fs::create_directories(fs::path(path).parent_path(), ignored);
  const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  if (!file.valid() || !write_all(file.get(), content)) throw system_failure("write " + path);
}

void remove_file(const std::string& path) {
  fs::remove_all(path);
}

namespace {

bool same_file(const fs::path& a, const fs::path& b) {
  return fs::file_size(a) == fs::file_size(b) && fs::last_write_time(a) == fs::last_write_time(b);
}

// An entry of the pristine tree; `target` may be missing or anything.
void mirror_entry(const fs::path& pristine, const fs::path& target,
                  const std::set<fs::path>& spared) {
  const fs::file_status wanted = fs::symlink_status(pristine);
  fs::file_status found = fs::symlink_status(target);
  if (fs::exists(found) && found.type() != wanted.type()) {
    fs::remove_all(target);
    found = fs::file_status(fs::file_type::not_found);
  }
  if (fs::is_symlink(wanted)) {
    const fs::path destination = fs::read_symlink(pristine);
    if (fs::exists(found) && fs::read_symlink(target) == destination) return;
    fs::remove(target);
    fs::create_symlink(destination, target);
    return;
  }
  if (fs::is_directory(wanted)) {
    mirror(pristine, target, spared);
  } else if (!fs::exists(found) || !same_file(pristine, target)) {
    fs::copy_file(pristine, target, fs::copy_options::overwrite_existing);
    fs::last_write_time(target, fs::last_write_time(pristine));
  }
  if (!fs::exists(found) || found.permissions() != wanted.permissions()) {
    fs::permissions(target, wanted.permissions());
  }
}

}  // namespace

void mirror(const fs::path& pristine, const fs::path& target, const std::set<fs::path>& spared) {
  fs::create_directories(target);
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(pristine)) {
    const fs::path name = entry.path().filename();
    names.insert(name.string());
    if (!spared.contains(target / name)) mirror_entry(entry.path(), target / name, spared);
  }
  std::set<fs::path> extra;
  for (const auto& entry : fs::directory_iterator(target)) {
    if (!names.contains(entry.path().filename().string()) && !spared.contains(entry.path())) {
      extra.insert(entry.path());
    }
  }
  for (const fs::path& path : extra) fs::remove_all(path);
}

}  // namespace board
