// Checksums that identify files.
#pragma once

#include <string>
#include <string_view>

namespace soca::cli {

// The SHA-256 of the bytes, in lower-case hexadecimal digits.
std::string sha256(std::string_view bytes);

}  // namespace soca::cli
