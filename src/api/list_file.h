// The library's own lists: text files of one record a line, shared with other programs.
//
// Every change holds one lock, the same for all lists, from the reading to the replacing, so two
// requests at once lose nothing of each other. Readers share it: while the command that replaces a
// list is under way, the list may be missing, or be there in part.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "api/files.h"

namespace zelto {

struct ListFile {
  const char* path;
  const char* work_path;        // where a rewrite is prepared
  const char* replacement;      // the shell command that moves it into place
  std::size_t shortest;         // a line of fewer characters, its end included, is no record
  bool rewrites_whole = false;  // a rewrite loses no character of an unended last line
};

namespace list_file {

// Held by whoever changes a list.
class ChangeLock {
 public:
  ChangeLock();

  bool held() const { return lock_ && lock_->held(); }

  // While shared, a command that is run holds the lock as well, to its end: it goes on when this
  // process is killed, and whoever comes next must not meet it.
  void share_with_commands(bool shared) const;

 private:
  files::File file_;
  std::optional<files::Lock> lock_;
};

// The records in order, each without its line's last character, which is taken for the line end.
// Nothing when the file cannot be opened. Without a lock for whoever holds none.
std::optional<std::vector<std::string>> read(const ListFile& list);
std::optional<std::vector<std::string>> read(const ChangeLock& lock, const ListFile& list);

// The same, but only a line feed is taken for a line end.
std::optional<std::vector<std::string>> read_whole(const ListFile& list);
std::optional<std::vector<std::string>> read_whole(const ChangeLock& lock, const ListFile& list);

enum class Outcome { kDone, kMissing, kNotRead, kNotWritten };

// Adds a record at the end, in a line of its own, and has the disk hold it. Creates the file when
// it is missing; leaves it as it was when not the whole record could be written.
Outcome append(const ChangeLock& lock, const ListFile& list, const std::string& record);

// The same, unless the list has the record already. The file must exist.
Outcome add_once(const ChangeLock& lock, const ListFile& list, const std::string& record);

// Keeps the records that `keep` wants; lines that are no records go as well. `added` comes behind
// them: so a record is replaced without a moment in which the list has neither.
Outcome rewrite(const ChangeLock& lock, const ListFile& list,
                const std::function<bool(const std::string&)>& keep,
                const std::optional<std::string>& added = std::nullopt);

// The two halves of a rewrite, for what must happen in between. prepare() leaves nothing behind
// when it fails; replace() puts the old list back when the command has failed half way.
bool prepare(const ChangeLock& lock, const ListFile& list, const std::vector<std::string>& records);
bool replace(const ChangeLock& lock, const ListFile& list);

// Whether a text can stand as one word of a record: neither empty nor longer than `longest`, and
// without blanks or control characters.
bool is_word(std::string_view text, std::size_t longest);

// Whether a text can stand at the end of a record: no longer than `longest` and without control
// characters.
bool is_rest(std::string_view text, std::size_t longest);

}  // namespace list_file
}  // namespace zelto
