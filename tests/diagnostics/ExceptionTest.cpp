#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "diagnostics/Messages.h"
#include "diagnostics/RaiseErrMsgId.h"

namespace soca {
namespace {

namespace messages = VELUM::system::Analyzer;
using foundation::core::except::Exception;
using foundation::core::except::IException;
using foundation::core::except::IMsgIDException;
using foundation::core::except::LegacyErrorHook;
using foundation::core::except::setLegacyErrorHook;
using resource_core::BaseMsgID;

// Sets the hook for one test.
class HookScope {
 public:
  explicit HookScope(LegacyErrorHook hook) : before_(setLegacyErrorHook(std::move(hook))) {}
  ~HookScope() { setLegacyErrorHook(std::move(before_)); }
  HookScope(const HookScope&) = delete;
  HookScope& operator=(const HookScope&) = delete;

 private:
  LegacyErrorHook before_;
};

template <class Message>
void expectRaised(const Message& message, const std::string& id, const fl::ustring& text) {
  using Raised = Exception<Message, std::exception, void>;
  EXPECT_THROW(raiseErrMsgId(message), Raised);
  EXPECT_THROW(raiseErrMsgId(message), std::exception);
  try {
    raiseErrMsgId(message);
  } catch (const IMsgIDException& failure) {
    EXPECT_EQ(typeid(failure), typeid(Raised));
    EXPECT_EQ(failure.GetID(), "VELUM:system:Analyzer:" + id);
    EXPECT_EQ(failure.GetUnicodeMessageTxt(), text);
    EXPECT_EQ(failure.GetBaseMsgIDObj(), message);
    EXPECT_EQ(failure.GetBaseMsgIDObj().catalog, "VELUM:system:Analyzer");
    EXPECT_EQ(failure.GetBaseMsgIDObj().id, id);
  }
}

TEST(Raise, EachFailureIsAnExceptionOfItsOwnType) {
  const fl::ustring name = u"a.\u00DC";
  expectRaised(messages::NotASystemObject(name), "NotASystemObject",
               u"'a.\u00DC' is not a System object class, so it cannot be updated.");
  expectRaised(messages::NoFileForClass(std::string("a.\xC3\x9C")), "NoFileForClass",
               u"No file on the class path belongs to class 'a.\u00DC'.");
}

TEST(Raise, ArgumentsKeepTheirKind) {
  const fl::ustring name = u"x";
  const char16_t* const nothing = nullptr;
  using Arguments = std::vector<std::variant<long, std::string, fl::ustring>>;
  EXPECT_EQ(messages::NotASystemObject(name).arguments, Arguments{name});
  EXPECT_EQ(messages::NoFileForClass(std::string("x")).arguments, Arguments{std::string("x")});
  EXPECT_EQ(messages::ImplSignatureMismatch(u"old", nothing).arguments,
            (Arguments{fl::ustring(u"old"), fl::ustring()}));
  EXPECT_EQ(messages::DeprecatedImplReferenced(name.c_str()).arguments, Arguments{name});
  static_assert(sizeof(messages::SyntaxError) == sizeof(BaseMsgID));
  static_assert(!std::is_polymorphic_v<messages::SyntaxError>);
}

TEST(Raise, CopiesAreEqual) {
  using Raised = Exception<messages::SyntaxError, std::exception, void>;
  const Raised original(messages::SyntaxError(fl::ustring(u"\u00E9")));
  EXPECT_STREQ(original.what(),
               "VELUM:system:Analyzer:SyntaxError: The file '\xC3\xA9' has syntax errors.");
  const auto expectEqual = [&original](const IException& copy) {
    ASSERT_EQ(typeid(copy), typeid(Raised));
    const auto& raised = dynamic_cast<const Raised&>(copy);
    EXPECT_NE(&raised, &original);
    EXPECT_EQ(raised.GetBaseMsgIDObj(), original.GetBaseMsgIDObj());
    EXPECT_EQ(raised.GetID(), original.GetID());
    EXPECT_STREQ(raised.what(), original.what());
    EXPECT_STREQ(static_cast<const std::exception&>(raised).what(), original.what());
  };
  const std::unique_ptr<IException> clone = original.clone();
  expectEqual(*clone);
  try {
    clone->rethrow();
    FAIL();
  } catch (const IException& copy) {
    EXPECT_NE(&copy, clone.get());
    expectEqual(copy);
  }
}

TEST(Raise, TheLegacyChannelIsCalledFirstAndMayThrowInstead) {
  const messages::SyntaxError message(fl::ustring(u"f"));
  std::string reported;
  {
    const HookScope hook(
        [&reported](const IMsgIDException& failure) { reported = failure.GetID(); });
    EXPECT_THROW(raiseErrMsgId(message), IMsgIDException);
    EXPECT_EQ(reported, "VELUM:system:Analyzer:SyntaxError");
  }
  {
    const HookScope hook([](const IMsgIDException&) { throw std::out_of_range("host"); });
    EXPECT_THROW(raiseErrMsgId(message), std::out_of_range);
  }
  EXPECT_THROW(raiseErrMsgId(message), IMsgIDException);
}

}  // namespace
}  // namespace soca
