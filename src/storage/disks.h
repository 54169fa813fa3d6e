// The mounted disks, and the small files that the router keeps at their top: settings of the file
// services travel with the disk. What a disk brings along is as foreign as a request.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::disks {

inline constexpr const char* kMountPoints = "/mnt/";
inline constexpr std::size_t kLongestLine = 511;

using Lines = std::vector<std::string>;

// The disks' names, in the order of the directory; nothing when that cannot be read.
std::optional<std::vector<std::string>> names();

// The names of the folders at a disk's top, hidden ones included, in the order of the directory.
std::vector<std::string> folders(const std::string& disk);

// The lines, each without its line end, of the first disk's file that `wanted` takes. Files that
// are no plain files count as missing, and so do lines that is_line() does not take.
std::optional<Lines> read_first(const char* file, const std::function<bool(const Lines&)>& wanted);

// Gives the file, on the first disk that has it, else on the first disk, new lines. When that fails
// it is logged, and the old file stays as it was.
bool write(const char* file, const Lines& lines);

// Whether a text can be kept as a line: neither empty nor too long, and no control characters.
bool is_line(std::string_view text);

// Whether a path names something on a disk, and can be kept as a line.
bool is_on_disk(std::string_view path);

}  // namespace zelto::disks
