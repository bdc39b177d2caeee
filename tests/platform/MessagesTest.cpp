#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/failure/LegacyErrorChannel.h"
#include "platform/failure/Terminate.h"
#include "platform/messages/MessageCatalog.h"
#include "platform/text/Conversions.h"

namespace fl::i18n {
namespace {

using resource_core::BaseMsgID;

constexpr const char* kCatalog = "VELUM:system:Analyzer";

ustring textOf(const BaseMsgID& message) {
  return MessageCatalog::get_message(message, Locale::global());
}

TEST(Messages, ArgumentsAreFilledInOnce) {
  const struct {
    const char* shows;
    BaseMsgID message;
    ustring text;
  } cases[] = {
      {"an 8-bit argument is UTF-8",
       {{std::string("caf\xC3\xA9")}, kCatalog, "NoFileForClass"},
       u"No file on the class path belongs to class 'caf\u00E9'."},
      {"a 16-bit argument stays unchanged",
       {{ustring(u"\U0001F600\u00E9")}, kCatalog, "SyntaxError"},
       u"The file '\U0001F600\u00E9' has syntax errors."},
      {"a number", {{12L}, kCatalog, "SyntaxError"}, u"The file '12' has syntax errors."},
      {"a placeholder inside an argument stays",
       {{ustring(u"{1}"), ustring(u"{0}")}, kCatalog, "ImplNameConflictAfterConversion"},
       u"Method '{1}' is not converted: the class already has a method '{0}'."},
      {"one argument, used twice",
       {{ustring(u"a"), ustring(u"b")}, kCatalog, "LegacyImplReferenced"},
       u"Method 'a' was converted to 'b', and the source code still refers to 'a'. Change these "
       u"references."},
      {"a missing argument leaves its placeholder",
       {{}, kCatalog, "SyntaxError"},
       u"The file '{0}' has syntax errors."},
      {"an unknown id",
       {{ustring(u"x"), 3L}, kCatalog, "NoSuchId"},
       u"Message 'VELUM:system:Analyzer:NoSuchId': x, 3"},
      {"an id of another catalog", {{}, "other", "SyntaxError"}, u"Message 'other:SyntaxError'"},
  };
  for (const auto& c : cases) EXPECT_EQ(textOf(c.message), c.text) << c.shows;
}

TEST(TerminateDeathTest, CallsTheHandlerThenEndsTheProcess) {
  using foundation::core::diag::setTerminateHandler;
  using foundation::core::diag::terminate;
  EXPECT_DEATH(
      {
        // As a host may have it.
        std::setvbuf(stderr, nullptr, _IOFBF, 4096);
        terminate("Broken", "File", 205, "void f()");
      },
      "^File:205: void f\\(\\): Broken\n$");
  EXPECT_DEATH(
      {
        setTerminateHandler([](const char* message, const char*, int, const char*) {
          std::fprintf(stderr, "handler: %s\n", message);
          terminate("again", "Handler", 1, "g");
        });
        terminate("Broken", "File", 205, "f");
      },
      "^handler: Broken\nHandler:1: g: again\n$");
}

}  // namespace
}  // namespace fl::i18n
