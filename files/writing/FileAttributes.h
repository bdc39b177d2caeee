// What a file has besides its name and its bytes.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "platform/paths/SourceReader.h"

namespace soca {

// Nanoseconds since 1970, and back.
std::int64_t nanosecondsOf(const timespec& time);
timespec timeOf(std::int64_t nanoseconds);

// Whether the status is that of the file with the stamp, in the state that it had then.
bool isOf(const struct stat& status, const fl::filesystem::FileStamp& stamp);

// Gives the open new file the owner, the permissions and the extended attributes, access lists
// among them, of the old one at `path`, whose status is `old`. False, with errno, if the owner or
// something that grants or denies access can't be had; of the rest, what can.
bool copyAttributes(const std::string& path, const struct stat& old, int newFile);

}  // namespace soca
