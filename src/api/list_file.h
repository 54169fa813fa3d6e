// The library's own lists: text files of one record a line, shared with other programs.
//
// Every change holds one lock, the same for all lists, from the reading to the replacing, so two
// requests at once lose nothing of each other. Readers need none: a list is appended to by whole
// lines and replaced by a rename.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

struct ListFile {
  const char* path;
  const char* work_path;    // where a rewrite is prepared
  const char* replacement;  // the shell command that moves it into place
  std::size_t shortest;     // a line of fewer characters, its end included, is no record
};

namespace list_file {

// The records in order, each without its line's last character, which is taken for the line end.
// Nothing when the file cannot be opened.
std::optional<std::vector<std::string>> read(const ListFile& list);

enum class Outcome { kDone, kNotRead, kNotWritten };

// Adds a record at the end, unless the list has it already. The file must exist.
Outcome add_once(const ListFile& list, const std::string& record);

// Keeps the records that `keep` wants; lines that are no records go as well.
Outcome rewrite(const ListFile& list, const std::function<bool(const std::string&)>& keep);

// Whether a text can stand as one word of a record: neither empty nor longer than `longest`, and
// without blanks or control characters.
bool is_word(std::string_view text, std::size_t longest);

}  // namespace list_file
}  // namespace zelto
