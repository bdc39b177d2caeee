// The message classes of the catalog "VELUM:system:Analyzer": the name of each is its short id.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace VELUM::system::Analyzer {

inline constexpr const char* catalogName = "VELUM:system:Analyzer";

namespace internal {

using Argument = std::variant<long, std::string, fl::ustring>;

inline Argument makeArgument(const fl::ustring& text) { return text; }
inline Argument makeArgument(fl::ustring_view text) { return fl::ustring(text); }
inline Argument makeArgument(const char16_t* text) {
  return text == nullptr ? fl::ustring() : fl::ustring(text);
}
inline Argument makeArgument(std::nullptr_t) { return fl::ustring(); }
inline Argument makeArgument(const std::string& text) { return text; }
inline Argument makeArgument(const char* text) { return std::string(text == nullptr ? "" : text); }

// Fills in the fields of `message`; the arguments are converted in order.
template <class... Arguments>
void fillMessage(resource_core::BaseMsgID& message, const char* id, const Arguments&... arguments) {
  message.arguments.resize(sizeof...(arguments));
  message.catalog = catalogName;
  message.id = id;
  [[maybe_unused]] std::size_t index = 0;
  ((message.arguments[index++] = makeArgument(arguments)), ...);
}

}  // namespace internal

// Failures: each ends the call. `Text` is a 16-bit string unless stated otherwise.

// The class's name, or the path of a file without a class.
struct NotASystemObject : resource_core::BaseMsgID {
  template <class Text>
  explicit NotASystemObject(const Text& classNameOrPath) {
    internal::fillMessage(*this, "NotASystemObject", classNameOrPath);
  }
};

// The path of the file.
struct SyntaxError : resource_core::BaseMsgID {
  template <class Text>
  explicit SyntaxError(const Text& path) {
    internal::fillMessage(*this, "SyntaxError", path);
  }
};

// The path of the file.
struct CodeAnalyzerError : resource_core::BaseMsgID {
  template <class Text>
  explicit CodeAnalyzerError(const Text& path) {
    internal::fillMessage(*this, "CodeAnalyzerError", path);
  }
};

// The class's name, as an 8-bit string.
struct NoFileForClass : resource_core::BaseMsgID {
  template <class Text>
  explicit NoFileForClass(const Text& className) {
    internal::fillMessage(*this, "NoFileForClass", className);
  }
};

// The path of the class's source file, whether or not it exists.
struct PFileExists : resource_core::BaseMsgID {
  template <class Text>
  explicit PFileExists(const Text& sourcePath) {
    internal::fillMessage(*this, "PFileExists", sourcePath);
  }
};

// The path of the class's file.
struct OverlappingExtent : resource_core::BaseMsgID {
  template <class Text>
  explicit OverlappingExtent(const Text& path) {
    internal::fillMessage(*this, "OverlappingExtent", path);
  }
};

// Findings: each becomes a text that accompanies the actions. Names are pointers to 16-bit
// characters.

struct ImplNameConflictAfterConversion : resource_core::BaseMsgID {
  template <class OldName, class NewName>
  ImplNameConflictAfterConversion(const OldName& oldName, const NewName& newName) {
    internal::fillMessage(*this, "ImplNameConflictAfterConversion", oldName, newName);
  }
};

struct ImplSignatureMismatch : resource_core::BaseMsgID {
  template <class OldName, class NewName>
  ImplSignatureMismatch(const OldName& oldName, const NewName& newName) {
    internal::fillMessage(*this, "ImplSignatureMismatch", oldName, newName);
  }
};

struct LegacyImplReferenced : resource_core::BaseMsgID {
  template <class OldName, class NewName>
  LegacyImplReferenced(const OldName& oldName, const NewName& newName) {
    internal::fillMessage(*this, "LegacyImplReferenced", oldName, newName);
  }
};

struct DeprecatedImplReferenced : resource_core::BaseMsgID {
  template <class Name>
  explicit DeprecatedImplReferenced(const Name& name) {
    internal::fillMessage(*this, "DeprecatedImplReferenced", name);
  }
};

}  // namespace VELUM::system::Analyzer
