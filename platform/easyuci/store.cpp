#include "platform/easyuci/store.h"

#include <cerrno>
#include <cstddef>
#include <mutex>
#include <optional>

#include "platform/common/read_file.h"
#include "platform/common/replace_file.h"
#include "platform/easyuci/text.h"
#include "platform/journal/journal.h"

namespace easyuci {
namespace {

constexpr int64_t kNanosecondsPerSecond = 1'000'000'000;
// File times advance by the kernel's tick, at most 10 ms ...
constexpr int64_t kTickMargin = 50'000'000;
// ... but by whole seconds on file systems that keep no finer ones, as flash file systems do.
constexpr int64_t kWholeSecondMargin = 2 * kNanosecondsPerSecond;

int64_t nanoseconds(const struct timespec& time) {
  return static_cast<int64_t>(time.tv_sec) * kNanosecondsPerSecond + time.tv_nsec;
}

// The stamp of the file, nothing with errno set when there is none.
std::optional<FileStamp> stamp_of(const std::string& path) {
  struct stat facts {};
  if (::stat(path.c_str(), &facts) != 0) return std::nullopt;
  return FileStamp(facts);
}

// Whether an edit after the moment `now` cannot leave the file with the same times: they would be
// the same if it came within one tick of the file's clock.
bool is_settled(const FileStamp& stamp, int64_t now) {
  const bool whole_seconds = stamp.changed % kNanosecondsPerSecond == 0;
  return stamp.changed < now - (whole_seconds ? kWholeSecondMargin : kTickMargin);
}

}  // namespace

Snapshot::Snapshot(std::string text, Package package)
    : text_(std::move(text)), package_(std::move(package)) {}

const Snapshot::Index& Snapshot::index() const {
  if (indexed_.load(std::memory_order_acquire)) return index_;
  const std::lock_guard lock(index_mutex_);
  if (indexed_.load(std::memory_order_relaxed)) return index_;
  Index index;
  for (const Section& section : package_.sections()) {
    index.sections.emplace(section.name, &section);
    for (const Option& option : section.options) {
      index.options.emplace(Place(section.name, option.name), &option);
    }
  }
  index_ = std::move(index);
  indexed_.store(true, std::memory_order_release);
  return index_;
}

size_t Snapshot::PlaceHash::operator()(const Place& place) const {
  constexpr size_t kFactor = 31;
  const std::hash<std::string_view> hash;
  return hash(place.first) * kFactor + hash(place.second);
}

const Section* Snapshot::find(std::string_view section) const {
  const auto& sections = index().sections;
  const auto found = sections.find(section);
  return found == sections.end() ? nullptr : found->second;
}

const Option* Snapshot::find(std::string_view section, std::string_view option) const {
  const auto& options = index().options;
  const auto found = options.find(Place(section, option));
  return found == options.end() ? nullptr : found->second;
}

FileStamp::FileStamp(const struct stat& facts)
    : device(facts.st_dev),
      inode(facts.st_ino),
      size(facts.st_size),
      modified(nanoseconds(facts.st_mtim)),
      changed(nanoseconds(facts.st_ctim)) {}

std::string Store::path_of(std::string_view name) const {
  return folder_ + "/" + std::string(name);
}

std::shared_ptr<const Snapshot> Store::load(std::string_view name) {
  {
    const std::shared_lock lock(mutex_);
    const auto entry = entries_.find(name);
    if (entry != entries_.end() && entry->second.settled &&
        stamp_of(entry->second.path) == entry->second.stamp) {
      return entry->second.snapshot;
    }
  }
  return is_package_name(name) ? reload(name) : nullptr;
}

// The stamp is taken before the content is read: should the file change in between, the next call
// finds another stamp and reads it again.
std::shared_ptr<const Snapshot> Store::reload(std::string_view name) {
  const std::string path = path_of(name);
  struct timespec now {};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const auto stamp = stamp_of(path);
  if (!stamp) return nullptr;
  auto text = platform::read_file(path);
  if (!text) return nullptr;

  auto snapshot = known(name);
  if (!snapshot || snapshot->text() != *text) {
    snapshot.reset();
    if (auto package = parse(*text)) {
      snapshot = std::make_shared<const Snapshot>(std::move(*text), std::move(*package));
    }
  }
  const bool settled = is_settled(*stamp, nanoseconds(now));
  const std::unique_lock lock(mutex_);
  entries_.insert_or_assign(std::string(name), Entry{path, snapshot, *stamp, settled});
  return snapshot;
}

std::shared_ptr<const Snapshot> Store::known(std::string_view name) {
  const std::shared_lock lock(mutex_);
  const auto entry = entries_.find(name);
  return entry == entries_.end() ? nullptr : entry->second.snapshot;
}

// After a write: the next load compares the file with `snapshot` instead of parsing it. It has to
// look, as another program may have edited the file already.
void Store::expect(std::string_view name, std::shared_ptr<const Snapshot> snapshot) {
  const std::unique_lock lock(mutex_);
  const auto entry = entries_.find(name);
  if (entry == entries_.end()) return;
  entry->second.snapshot = std::move(snapshot);
  entry->second.settled = false;
}

bool Store::change(std::string_view name, WhenAbsent when_absent,
                   const std::function<Edit(Package&)>& edit) {
  if (!is_package_name(name)) return false;
  const std::string path = path_of(name);
  if (when_absent == WhenAbsent::kFail && !stamp_of(path)) return false;

  const platform::FileLock lock(folder_ + "/." + std::string(name) + ".lock");
  if (!lock.held()) return false;
  Package package;
  if (const auto snapshot = load(name)) {
    package = snapshot->package();
  } else if (when_absent == WhenAbsent::kFail || stamp_of(path) || errno != ENOENT) {
    return false;
  }

  const Edit made = edit(package);
  if (made.change == Change::kImpossible) return false;
  if (made.change == Change::kMade) {
    std::string text = print(package);
    const auto snapshot = std::make_shared<const Snapshot>(std::move(text), std::move(package));
    if (!platform::replace_file(path, snapshot->text())) return false;
    expect(name, snapshot);
  }
  journal::note(made.effect);
  return true;
}

}  // namespace easyuci
