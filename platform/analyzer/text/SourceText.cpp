#include "platform/analyzer/text/SourceText.h"

#include <utility>

namespace ca::astapi {
namespace {

class OneString final : public internal::NameStrings {
 public:
  explicit OneString(fl::ustring string) : string_(std::move(string)) {}

  const fl::ustring& stringOf(fl::ustring_view /*name*/) const override { return string_; }

 private:
  fl::ustring string_;
};

}  // namespace

StringId::StringId(const fl::ustring& name) : strings_(std::make_shared<const OneString>(name)) {
  text_ = SourceText(getString());
}

const fl::ustring& StringId::getString() const {
  static const fl::ustring empty;
  return strings_ != nullptr ? strings_->stringOf(text_.view()) : empty;
}

}  // namespace ca::astapi
