// Flushes files and folders to the disk.
#pragma once

#include <string>
#include <vector>

namespace soca {

// Flushes the contents of the file or folder. Returns false and sets errno on failure.
bool flushPath(const std::string& path);

// Flushes all files or folders, each named once: a few singly; for many, the file systems that
// contain them, which is much faster. Returns false and sets errno if one fails.
bool flushPaths(const std::vector<std::string>& paths);

}  // namespace soca
