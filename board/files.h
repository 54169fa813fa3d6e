// Descriptors and file trees.
#pragma once

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace board {

// "What: the text of errno", as the exception that everything of the board throws.
std::runtime_error system_failure(const std::string& what);

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor() { reset(); }

  int get() const { return number_; }
  bool valid() const { return number_ >= 0; }
  int release();
  void reset();

 private:
  int number_ = -1;
};

// Writes all of `text`; false when the descriptor takes no more.
bool write_all(int descriptor, std::string_view text);

// Makes the tree at `target` the same as the one at `pristine`: copies what is missing or differs
// (by type, mode, size or time), removes what is extra. A file that stays keeps its inode. Paths
// in `spared` are left as they are.
void mirror(const std::filesystem::path& pristine, const std::filesystem::path& target,
            const std::set<std::filesystem::path>& spared);

}  // namespace board
