// The library's own lists: text files of one record a line, shared with other programs.
//
// Every change holds one lock, the same for all lists, from the reading to the replacing, so two
// requests at once lose nothing of each other. Readers take none: a list grows by whole lines and
// is replaced by mv, at once where the work file is on the same file system.
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

 private:
  files::File file_;
  std::optional<files::Lock> lock_;
};

// The records in order, each without its line's last character, which is taken for the line end.
// Nothing when the file cannot be opened.
std::optional<std::vector<std::string>> read(const ListFile& list);

// The same, but only a line feed is taken for a line end.
std::optional<std::vector<std::string>> read_whole(const ListFile& list);

enum class Outcome { kDone, kNotRead, kNotWritten };

// Adds a record at the end, in a line of its own. Creates the file when it is missing.
Outcome append(const ChangeLock& lock, const ListFile& list, const std::string& record);

// The same, unless the list has the record already. The file must exist.
Outcome add_once(const ChangeLock& lock, const ListFile& list, const std::string& record);

// Keeps the records that `keep` wants; lines that are no records go as well.
Outcome rewrite(const ChangeLock& lock, const ListFile& list,
                const std::function<bool(const std::string&)>& keep);

// The two halves of a rewrite, for what must happen in between. prepare() leaves nothing behind
// when it fails.
bool prepare(const ChangeLock& lock, const ListFile& list, const std::vector<std::string>& records);
bool replace(const ListFile& list);

// Whether a text can stand as one word of a record: neither empty nor longer than `longest`, and
// without blanks or control characters.
bool is_word(std::string_view text, std::size_t longest);

// Whether a text can stand at the end of a record: no longer than `longest` and without control
// characters.
bool is_rest(std::string_view text, std::size_t longest);

}  // namespace list_file
}  // namespace zelto
