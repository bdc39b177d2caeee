// The attributes of a file besides its name and its bytes.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "platform/paths/SourceReader.h"

namespace soca {

// Nanoseconds since 1970 from and to the system's type.
std::int64_t nanosecondsOf(const timespec& time);
timespec timeOf(std::int64_t nanoseconds);

// Whether the status is that of the file with the stamp, unchanged since.
bool isOf(const struct stat& status, const fl::filesystem::FileStamp& stamp);

// Sets the owner, the permissions and the extended attributes, including access lists, of the open
// new file to those of the old one at `path`, whose status is `old`. Returns false and sets errno
// if the owner, or an attribute that grants or denies access, cannot be copied; others are copied
// if possible.
bool copyAttributes(const std::string& path, const struct stat& old, int newFile);

}  // namespace soca
