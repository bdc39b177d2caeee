#include "service/ActionReport.h"

#include <list>
#include <sstream>
#include <utility>

#include "platform/text/Locale.h"

namespace soca {
namespace {

using Stream = std::basic_ostringstream<char16_t>;

// A long text, put together in pieces, so that no half of it is ever copied into a larger whole.
class PiecedText {
 public:
  // Takes what was printed, if it is enough for a piece.
  void takeIfMuch(Stream& out) {
    constexpr std::size_t pieceSize = std::size_t{1} << 20U;
    if (out.view().size() >= pieceSize) take(out);
  }

  void take(Stream& out) {
    pieces_.push_back(std::move(out).str());
    size_ += pieces_.back().size();
    out.str({});
  }

  fl::ustring join() && {
    if (pieces_.size() == 1) return std::move(pieces_.front());
    fl::ustring text;
    text.reserve(size_);
    for (; !pieces_.empty(); pieces_.pop_front()) text += pieces_.front();
    return text;
  }

 private:
  std::list<fl::ustring> pieces_;
  std::size_t size_ = 0;
};

void printEdit(Stream& out, const SingleAction& action, fl::ustring_view indentation) {
  out << u'\n' << indentation << u"Range: " << action.getExtent() << u'\n';
  out << indentation << u"Replacement: \"" << action.getText() << u"\"\n";
}

void printGroup(Stream& out, const ActionGroup& group) {
  out << u"\nGROUP\nRange: " << group.getExtent() << u'\n';
  for (const auto& child : group.getActions()) {
    if (!child->isGroup()) printEdit(out, static_cast<const SingleAction&>(*child), u"  ");
  }
}

void printAction(Stream& out, const Action& action) {
  if (action.isGroup()) {
    printGroup(out, static_cast<const ActionGroup&>(action));
  } else {
    printEdit(out, static_cast<const SingleAction&>(action), u"");
  }
}

}  // namespace

fl::ustring formatActionReport(std::list<ClassActions> entries) {
  PiecedText text;
  Stream out;
  out.imbue(fl::i18n::facet::get_global_std_locale());
  for (ClassActions& entry : entries) {
    out << u"CLASS: " << entry.analyzedClass->className << u"\n\n";
    out << u"File: " << entry.analyzedClass->metaClass->getClassFile() << u'\n';
    // What is printed goes: the report of a great many actions is long itself.
    for (; !entry.actions.empty(); entry.actions.pop_front()) {
      printAction(out, *entry.actions.front());
      text.takeIfMuch(out);
    }
    out << u"\n\n";
  }
  text.take(out);
  return std::move(text).join();
}

}  // namespace soca
