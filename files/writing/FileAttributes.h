// The attributes of a file besides its name and its bytes.
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/paths/SourceReader.h"

namespace soca {

// Nanoseconds since 1970 from and to the system's type.
std::int64_t nanosecondsOf(const timespec& time);
timespec timeOf(std::int64_t nanoseconds);

// Whether the status is that of the file with the stamp, unchanged since.
bool isOf(const struct stat& status, const fl::filesystem::FileStamp& stamp);

// The result of copying the attributes of a file.
struct CopiedAttributes {
  // What could not be copied, and why; empty if all could.
  std::string fault;
  // The names of the extended attributes that the system does not let this user read or set.
  std::vector<std::string> forbidden;
};

// Sets the owner, the permissions and the extended attributes, including access lists, of the open
// new file to those of the old one at `path`, whose status is `old`. Stops at the first fault. An
// access list that cannot be copied is one, even if the system forbids it.
CopiedAttributes copyAttributes(const std::string& path, const struct stat& old, int newFile);

}  // namespace soca
