// Brings files and folders to the disk.
#pragma once

#include <string>
#include <vector>

namespace soca {

// What the file or folder holds. False, with errno, if that fails.
bool flushPath(const std::string& path);

// All of them, files or folders, each named once: a few one by one; of many, which is far quicker,
// the file systems that they are on. False, with errno, if one fails.
bool flushPaths(const std::vector<std::string>& paths);

}  // namespace soca
