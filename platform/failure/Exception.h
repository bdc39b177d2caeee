// Exceptions that carry a message id.
#pragma once

#include <exception>
#include <memory>
#include <string>

#include "platform/messages/BaseMsgID.h"
#include "platform/text/UString.h"

namespace foundation::core::except {

// The base of all exceptions of the environment. It does not derive from std::exception; each
// exception that is thrown also derives from a standard exception.
class IException {
 public:
  // A heap copy with the same exact type.
  virtual std::unique_ptr<IException> clone() const = 0;
  // Throws a copy with the same exact type.
  [[noreturn]] virtual void rethrow() const = 0;
  virtual ~IException() = default;
  // "<full id>: <text>" in UTF-8. Lives as long as the exception.
  virtual const char* what() const noexcept;

 protected:
  explicit IException(std::string what) : what_(std::move(what)) {}
  IException(const IException&) = default;
  IException& operator=(const IException&) = default;

  virtual fl::ustring convert_str(const fl::ustring& text) const;
  virtual fl::ustring convert_str(const std::string& text) const;
  // The text of `what` as a 16-bit string.
  virtual fl::ustring ToUstringImpl() const;

 private:
  std::string what_;
};

// The type to catch: `catch (const IMsgIDException& failure)`.
class IMsgIDException : public IException {
 public:
  // The full error id, such as "VELUM:system:Analyzer:SyntaxError".
  virtual std::string GetID() const = 0;
  // The finished text from the catalog.
  virtual fl::ustring GetUnicodeMessageTxt() const;
  // The message that the exception holds.
  virtual const resource_core::BaseMsgID& GetBaseMsgIDObj() const = 0;

  // The catalog, a colon, and the short id.
  static std::string get_error_id(const resource_core::BaseMsgID& message);

 protected:
  explicit IMsgIDException(const resource_core::BaseMsgID& message);
  IMsgIDException(const IMsgIDException&) = default;
  IMsgIDException& operator=(const IMsgIDException&) = default;
};

// The exception for the message class `Message`, which derives from BaseMsgID and adds no field.
// `Base` is the standard exception from which it also derives.
template <class Message, class Base, class Unused>
class Exception : public IMsgIDException, public Base {
 public:
  explicit Exception(const Message& message)
      : IMsgIDException(message), message_(message), errorId_(get_error_id(message)) {}

  std::unique_ptr<IException> clone() const override { return std::make_unique<Exception>(*this); }
  [[noreturn]] void rethrow() const override { throw Exception(*this); }
  const char* what() const noexcept override { return IException::what(); }
  std::string GetID() const override { return errorId_; }
  const resource_core::BaseMsgID& GetBaseMsgIDObj() const override { return message_; }

 private:
  Message message_;
  std::string errorId_;
};

}  // namespace foundation::core::except
