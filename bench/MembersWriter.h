// Writes a class with many members of one kind, to measure how the cost grows with their number.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace bench {

enum class MemberType { plain, positiveInteger, stringSet, method };

// The text of the class `name`, UTF-8. A string set takes two properties: the one that has the set,
// and its companion.
std::string writeMembers(std::string_view name, MemberType type, std::size_t count);

}  // namespace bench
