// The packages of one configuration folder: read through memory, written through one lock.
#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/easyuci/package.h"

namespace easyuci {

// A package as its file had it; never changes, so that threads may share it.
class Snapshot {
 public:
  Snapshot(std::string text, Package package);
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

  const std::string& text() const { return text_; }
  const Package& package() const { return package_; }
  const Section* find(std::string_view section) const;
  const Option* find(std::string_view section, std::string_view option) const;

 private:
  using Place = std::pair<std::string_view, std::string_view>;  // section and option
  struct PlaceHash {
    size_t operator()(const Place& place) const;
  };

  // What finds a place without a search. Made at the first question: of the snapshots between the
  // writes of one request nobody asks anything.
  struct Index {
    std::unordered_map<std::string_view, const Section*> sections;
    std::unordered_map<Place, const Option*, PlaceHash> options;
  };
  const Index& index() const;

  std::string text_;
  Package package_;
  mutable std::mutex index_mutex_;
  mutable std::atomic<bool> indexed_ = false;
  mutable Index index_;  // changes once, before indexed_ does
};

// What tells two states of a file apart without reading it. Times in nanoseconds.
struct FileStamp {
  explicit FileStamp(const struct stat& facts);
  bool operator==(const FileStamp&) const = default;

  uint64_t device;
  uint64_t inode;
  int64_t size;
  int64_t modified;
  int64_t changed;
};

// What a change did to a package, and the journal's line for it.
struct Edit {
  Change change;
  std::string effect;
};

class Store {
 public:
  explicit Store(std::string folder) : folder_(std::move(folder)) {}

  // The package as it is now; null when its file is absent, cannot be read or is malformed.
  std::shared_ptr<const Snapshot> load(std::string_view name);

  enum class WhenAbsent { kFail, kCreate };

  // Lets `edit` change the package, and stores what came of it, with no other writer between the
  // reading and the storing. Notes the effect. False, with the file as it was, when the package
  // cannot be loaded, the change is impossible or the writing fails.
  bool change(std::string_view name, WhenAbsent when_absent,
              const std::function<Edit(Package&)>& edit);

 private:
  struct Entry {
    std::string path;
    std::shared_ptr<const Snapshot> snapshot;
    FileStamp stamp;
    // Whether any later change of the file is sure to change its stamp.
    bool settled;
  };

  std::string path_of(std::string_view name) const;
  std::shared_ptr<const Snapshot> reload(std::string_view name);
  std::shared_ptr<const Snapshot> known(std::string_view name);
  void expect(std::string_view name, std::shared_ptr<const Snapshot> snapshot);

  const std::string folder_;
  std::shared_mutex mutex_;  // guards entries_; never held while a writer waits for its lock
  std::map<std::string, Entry, std::less<>> entries_;
};

}  // namespace easyuci
